// "Map to Game Palette": the dialog itself, and the picture loads of the
// window that open it for a 24/32-bit BMP or a PNG.

#include "AppTestSupport.h"

#include "carset/CarSetPictures.h"
#include "core/graphics/GraphicsTestSupport.h"
#include "graphics/Helmets.h"
#include "graphics/Palette.h"
#include "graphics/RemapDialog.h"
#include "shell/CommandIds.h"

#include <QApplication>
#include <QCheckBox>
#include <QLabel>
#include <QTimer>

namespace tarvel::test {
namespace {

// A colour ramp with a transparent corner.
RgbaPicture ramp(int width, int height) {
    return rgbaPicture(width, height, [](int x, int y) {
        return std::uint32_t(0x300000 + x * 0x10301 + y * 0x30700) << 8 | (x + y < 3 ? 0 : 255);
    });
}

Bytes pixelsOf(const BitmapBuffer& b) { return Bytes(b.pixels(), b.pixels() + b.pixelBytes()); }

TEST(RemapDialog, ShowsBothPicturesDoubledAndRemapsWithDithering) {
    const RgbaPicture picture = ramp(40, 12);
    RemapDialog dialog(picture, PicturePalette::Game);
    EXPECT_EQ(dialog.windowTitle(), "Map to Game Palette");
    EXPECT_EQ(dialog.originalView()->pixmap().size(), QSize(80, 24));
    EXPECT_EQ(pixelsOf(dialog.mapped()), pixelsOf(mapToPalette(picture, PicturePalette::Game, false)));
    auto shownIndex = [&](int x, int y) {
        const QImage shown = dialog.mappedView()->pixmap().toImage();
        const QRgb colour = shown.pixel(2 * x + 1, 2 * y + 1);
        EXPECT_EQ(shown.pixel(2 * x, 2 * y), colour) << "unsmoothed";
        return colour & 0xFFFFFF;
    };
    EXPECT_EQ(shownIndex(0, 0), GamePalette[0]);
    EXPECT_EQ(shownIndex(25, 7), GamePalette[pixelAt(dialog.mapped(), 25, 7)]);

    dialog.ditherBox()->setChecked(true);
    const BitmapBuffer dithered = mapToPalette(picture, PicturePalette::Game, true);
    EXPECT_EQ(pixelsOf(dialog.mapped()), pixelsOf(dithered));
    EXPECT_NE(pixelsOf(dithered), pixelsOf(mapToPalette(picture, PicturePalette::Game, false)));
    EXPECT_EQ(shownIndex(25, 7), GamePalette[pixelAt(dithered, 25, 7)]);
}

class RemapLoadTest : public AppTest {
protected:
    void SetUp() override {
        configureGame();
        window().startUp({});
    }
    // When the dialog opens: ticks "Dithering" if asked, then OK or Cancel.
    void answerDialog(bool dither, bool accept) {
        QTimer::singleShot(0, [this, dither, accept] {
            auto* dialog = qobject_cast<RemapDialog*>(QApplication::activeModalWidget());
            dialogsAnswered += dialog != nullptr;
            if (!dialog) return;
            dialog->ditherBox()->setChecked(dither);
            accept ? dialog->accept() : dialog->reject();
        });
    }
    int dialogsAnswered = 0;
};

// Each load takes the mapped picture on OK, in one change, and nothing on Cancel.
TEST_F(RemapLoadTest, LoadsMapTrueColourPicturesThroughTheDialog) {
    panel().selectTeam(2);
    struct Case {
        int command;
        int width, height;
        Bytes (*write)(const RgbaPicture&);
        bool dither;
        std::function<Bytes()> held;   // the picture's rows as the set holds them
    };
    auto helmet = [this](int n) {
        BitmapBuffer single = blankSingleHelmet();
        EXPECT_TRUE(ExtractHelmet(helmetSheetBitmap(set()), n, single));
        return pixelsOf(single);
    };
    const Case cases[] = {
        {command::CarLoad, 256, 164, [](const RgbaPicture& p) { return pngFile(p); }, false, [this] { return set().liveries[2]; }},
        {command::HelmetsLoad, 256, 180, [](const RgbaPicture& p) { return trueColourBmp(p, 24); }, true,
         [this] { return set().helmetSheet; }},
        {command::SecondHelmetLoad, 74, 15, [](const RgbaPicture& p) { return trueColourBmp(p, 32, true); }, true,
         [&] { return helmet(5); }},
    };
    for (const Case& c : cases) {
        const std::string name = "P" + std::to_string(c.command) + (c.width == 256 && c.height == 164 ? ".png" : ".bmp");
        const Bytes file = c.write(ramp(c.width, c.height));
        writeFileBytes(folder() / name, file);
        const Bytes before = c.held();
        asker.files.push_back(path(name));
        answerDialog(c.dither, false);
        window().runCommand(c.command);
        EXPECT_EQ(c.held(), before) << "cancelled " << c.command;

        asker.files.push_back(path(name));
        answerDialog(c.dither, true);
        window().runCommand(c.command);
        const BitmapBuffer mapped = mapToPalette(*decodeRgbaPicture(file, c.width, c.height), PicturePalette::Game, c.dither);
        EXPECT_EQ(c.held(), pixelsOf(mapped)) << c.command;
    }
    EXPECT_EQ(dialogsAnswered, 6);
    EXPECT_EQ(set().team(2).carBitmap.status, kAssetExternal);
    EXPECT_TRUE(asker.ids.empty());

    // A true-colour picture of the wrong size is refused before any dialog, saying why.
    writeFileBytes(folder() / "WIDE.PNG", pngFile(ramp(300, 164)));
    asker.files.push_back(path("WIDE.PNG"));
    window().runCommand(command::CarLoad);
    EXPECT_EQ(asker.lastText(), "Couldn't Load Bitmap.");
    EXPECT_EQ(asker.details.back(), "WIDE.PNG: 300 x 164 pixels; a livery is 256 x 164");
    EXPECT_EQ(dialogsAnswered, 6);
}

}  // namespace
}  // namespace tarvel::test
