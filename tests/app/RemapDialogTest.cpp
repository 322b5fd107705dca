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

// Both pictures at twice their size, unsmoothed; the box maps again with dithering.
TEST(RemapDialog, ShowsBothPicturesDoubledAndRemapsWithDithering) {
    const RgbaPicture picture = ramp(40, 12);
    RemapDialog dialog(picture, PicturePalette::Game);
    EXPECT_EQ(dialog.windowTitle(), "Map to Game Palette");
    EXPECT_EQ(dialog.originalView()->pixmap().size(), QSize(80, 24));
    for (bool dither : {false, true}) {
        dialog.ditherBox()->setChecked(dither);
        const BitmapBuffer expected = mapToPalette(picture, PicturePalette::Game, dither);
        EXPECT_EQ(pixelsOf(dialog.mapped()), pixelsOf(expected));
        const QImage shown = dialog.mappedView()->pixmap().toImage();
        for (auto [x, y] : {std::pair{0, 0}, {25, 7}, {39, 11}}) {
            EXPECT_EQ(shown.pixel(2 * x, 2 * y) & 0xFFFFFF, GamePalette[pixelAt(expected, x, y)]) << x << dither;
            EXPECT_EQ(shown.pixel(2 * x + 1, 2 * y + 1), shown.pixel(2 * x, 2 * y));
        }
    }
    EXPECT_NE(pixelsOf(dialog.mapped()), pixelsOf(mapToPalette(picture, PicturePalette::Game, false)));
}

class RemapLoadTest : public AppTest {
protected:
    void SetUp() override {
        configureGame();
        window().startUp({});
    }
    // Runs a load whose dialog gets "Dithering" set as asked, then OK or Cancel.
    void load(int command, const QString& file, bool dither, bool accept) {
        asker.files.push_back(file);
        QTimer::singleShot(0, [this, dither, accept] {
            auto* dialog = qobject_cast<RemapDialog*>(QApplication::activeModalWidget());
            if (!dialog) return;
            ++dialogs;
            dialog->ditherBox()->setChecked(dither);
            accept ? dialog->accept() : dialog->reject();
        });
        window().runCommand(command);
    }
    int dialogs = 0;
};

// Each load takes the mapped picture on OK and nothing on Cancel; a picture
// of the wrong size is refused, saying why, before any dialog.
TEST_F(RemapLoadTest, LoadsMapTrueColourPicturesThroughTheDialog) {
    panel().selectTeam(2);
    auto firstHelmet = [this] {
        BitmapBuffer single = blankSingleHelmet();
        EXPECT_TRUE(ExtractHelmet(helmetSheetBitmap(set()), 4, single));
        return pixelsOf(single);
    };
    // Command, size, bits (0: a PNG), dithering, and the picture as the set holds it.
    const std::tuple<int, int, int, int, bool, std::function<Bytes()>> cases[] = {
        {command::CarLoad, 256, 164, 0, false, [this] { return set().liveries[2]; }},
        {command::HelmetsLoad, 256, 180, 24, true, [this] { return set().helmetSheet; }},
        {command::FirstHelmetLoad, 74, 15, 32, true, firstHelmet}};
    for (const auto& [command, width, height, bits, dither, held] : cases) {
        const Bytes file = bits ? trueColourBmp(ramp(width, height), bits) : pngFile(ramp(width, height));
        writeFileBytes(folder() / "IN", file);
        const Bytes before = held();
        load(command, path("IN"), dither, false);
        EXPECT_EQ(held(), before) << "cancelled " << command;
        load(command, path("IN"), dither, true);
        EXPECT_EQ(held(), pixelsOf(mapToPalette(*decodeRgbaPicture(file, width, height), PicturePalette::Game, dither))) << command;
    }
    EXPECT_EQ(dialogs, 6);
    EXPECT_EQ(set().team(2).carBitmap.status, kAssetExternal);
    EXPECT_TRUE(asker.ids.empty());

    writeFileBytes(folder() / "WIDE.PNG", pngFile(ramp(300, 164)));
    load(command::CarLoad, path("WIDE.PNG"), false, true);
    EXPECT_EQ(asker.lastText(), "Couldn't Load Bitmap.");
    EXPECT_EQ(asker.details.back(), "WIDE.PNG: 300 x 164 pixels; a livery is 256 x 164");
    EXPECT_EQ(dialogs, 6);
}

}  // namespace
}  // namespace tarvel::test
