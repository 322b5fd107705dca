#pragma once
// The drawn pictures of the main window: the car livery with its mosaic
// reveal, and a driver's helmet from the helmet sheet.

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

class LiveryView : public QWidget {
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

class HelmetView : public QWidget {
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
