#pragma once
// The drawn pictures of the main window: the car livery with its mosaic
// reveal, and a driver's helmet from the helmet sheet. Both are drawn at the
// largest whole multiple of their size that fits the room they are given,
// counted in the screen's own pixels (so that under a scale factor such as
// 1.5 every picture pixel is still a square of whole screen pixels), never smoothed.

#include "common/Rand.h"
#include "graphics/MosaicReveal.h"

#include <QImage>
#include <QTimer>
#include <QWidget>

#include <array>
#include <cstdint>
#include <vector>

namespace tarvel {

// An 8-bit picture in the game palette as a QImage; `bottomUp` rows of `width` bytes.
QImage gamePaletteImage(const std::vector<std::uint8_t>& bottomUp, int width, int height);

// A picture of a fixed size in pixels, drawn at a whole multiple of it in
// screen pixels: as large as the widget allows, and never smaller than
// `minimumScale` times its size in the widget's own units.
class PixelView : public QWidget {
    Q_OBJECT
public:
    PixelView(QSize picture, int minimumScale, Qt::Alignment alignment, QWidget* parent);
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;
    // The multiple the picture is drawn at (in screen pixels), the room it
    // takes in the widget's units, and where it lies in the widget.
    int scale() const;
    QSize scaledSize(int scale) const;
    QRect pictureRect() const;
    QSize pictureSize() const { return picture_; }

protected:
    // Draws `image` (of the picture's size) at the current multiple.
    void drawPicture(QPainter& painter, const QImage& image) const;

private:
    int smallestScale() const;

    QSize picture_;
    int minimumScale_;
    Qt::Alignment alignment_;
};

class LiveryView : public PixelView {
    Q_OBJECT
public:
    explicit LiveryView(QWidget* parent = nullptr);
    // Shows a new livery (256 x 164, bottom-up rows): at once when block is 0,
    // else revealed step by step in blocks of `block` pixels.
    void showLivery(const std::vector<std::uint8_t>& bottomUp, int block, Rand& rand);
    bool revealing() const { return timer_.isActive(); }
    void finishReveal();
    const QImage& picture() const { return picture_; }   // the whole livery
    const QImage& shown() const { return shown_; }       // what is on the screen now

signals:
    void doubleClicked();

protected:
    void paintEvent(QPaintEvent*) override;
    void mouseDoubleClickEvent(QMouseEvent*) override;

private:
    void step();

    QImage picture_;
    QImage shown_;
    QTimer timer_;
    std::array<MosaicOffset, kMosaicSteps> order_{};
    int block_ = 0;
    int next_ = 0;
};

class HelmetView : public PixelView {
    Q_OBJECT
public:
    explicit HelmetView(QWidget* parent = nullptr);
    // Helmet n (0-27) of a 256 x 180 bottom-up sheet; -1 shows nothing.
    void showHelmet(const std::vector<std::uint8_t>& sheet, int n);
    const QImage& helmet() const { return helmet_; }

protected:
    void paintEvent(QPaintEvent*) override;

private:
    QImage helmet_;
};

}  // namespace tarvel
