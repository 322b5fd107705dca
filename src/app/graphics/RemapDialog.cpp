#include "graphics/RemapDialog.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QGridLayout>
#include <QLabel>
#include <QPainter>
#include <QPixmap>
#include <QVBoxLayout>

namespace tarvel {
namespace {

constexpr int kZoom = 2;

QPixmap enlarged(const QImage& image) {
    return QPixmap::fromImage(
        image.scaled(image.width() * kZoom, image.height() * kZoom, Qt::IgnoreAspectRatio, Qt::FastTransformation));
}

// The picture over the palette's colour 0, which its transparent pixels become.
QImage originalImage(const RgbaPicture& picture, PicturePalette palette) {
    const QImage rgba(picture.rgba.data(), picture.width, picture.height, 4 * picture.width, QImage::Format_RGBA8888);
    QImage image(picture.width, picture.height, QImage::Format_RGB32);
    image.fill(QColor::fromRgb(paletteColours(palette)[0]));
    QPainter painter(&image);
    painter.drawImage(0, 0, rgba);
    return image;
}

QImage indexedImage(const BitmapBuffer& bitmap, PicturePalette palette) {
    QImage image(bitmap.width, bitmap.height, QImage::Format_Indexed8);
    QList<QRgb> table;
    for (std::uint32_t rgb : paletteColours(palette)) table.append(0xFF000000u | rgb);
    image.setColorTable(table);
    for (int y = 0; y < bitmap.height; ++y) std::copy_n(bitmap.topRow(y), bitmap.width, image.scanLine(y));
    return image;
}

QString paletteTitle(PicturePalette palette) {
    return palette == PicturePalette::Game ? QStringLiteral("Game Palette") : QStringLiteral("Menu Palette");
}

}  // namespace

RemapDialog::RemapDialog(RgbaPicture picture, PicturePalette palette, QWidget* parent)
    : QDialog(parent), picture_(std::move(picture)), palette_(palette), original_(new QLabel(this)),
      mappedView_(new QLabel(this)), dither_(new QCheckBox(QStringLiteral("&Dithering"), this)) {
    setWindowTitle(QStringLiteral("Map to ") + paletteTitle(palette));
    auto* pictures = new QGridLayout;
    pictures->addWidget(new QLabel(QStringLiteral("Original"), this), 0, 0);
    pictures->addWidget(new QLabel(QStringLiteral("In the ") + paletteTitle(palette).toLower(), this), 0, 1);
    pictures->addWidget(original_, 1, 0);
    pictures->addWidget(mappedView_, 1, 1);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(pictures);
    layout->addWidget(dither_);
    layout->addWidget(buttons);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(dither_, &QCheckBox::toggled, this, &RemapDialog::remap);
    original_->setPixmap(enlarged(originalImage(picture_, palette_)));
    remap();
}

void RemapDialog::remap() {
    mapped_ = mapToPalette(picture_, palette_, dither_->isChecked());
    mappedView_->setPixmap(enlarged(indexedImage(mapped_, palette_)));
}

std::optional<BitmapBuffer> mapInDialog(QWidget* parent, RgbaPicture picture, PicturePalette palette) {
    RemapDialog dialog(std::move(picture), palette, parent);
    if (dialog.exec() != QDialog::Accepted) return std::nullopt;
    return dialog.mapped();
}

}  // namespace tarvel
