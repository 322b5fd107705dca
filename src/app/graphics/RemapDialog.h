#pragma once
// "Map to Game Palette": a 24/32-bit BMP or a PNG beside the same picture
// mapped to the palette (both at twice their size, unsmoothed), with a
// "Dithering" box that maps it again. OK takes the mapped picture.

#include "graphics/Bitmap.h"
#include "graphics/PaletteMapping.h"
#include "graphics/PictureFile.h"

#include <QDialog>

#include <optional>

class QCheckBox;
class QLabel;

namespace tarvel {

class RemapDialog : public QDialog {
    Q_OBJECT
public:
    RemapDialog(RgbaPicture picture, PicturePalette palette, QWidget* parent = nullptr);

    const BitmapBuffer& mapped() const { return mapped_; }
    QCheckBox* ditherBox() const { return dither_; }
    QLabel* originalView() const { return original_; }
    QLabel* mappedView() const { return mappedView_; }

private:
    void remap();

    RgbaPicture picture_;
    PicturePalette palette_;
    BitmapBuffer mapped_;
    QLabel* original_;
    QLabel* mappedView_;
    QCheckBox* dither_;
};

// Shows the dialog; the mapped picture on OK, nothing on Cancel.
std::optional<BitmapBuffer> mapInDialog(QWidget* parent, RgbaPicture picture, PicturePalette palette);

}  // namespace tarvel
