#include "graphics/PictureWidgets.h"

#include "carset/CarSet.h"
#include "graphics/Helmets.h"
#include "graphics/Palette.h"

#include <QPainter>

#include <cstring>
#include <span>

namespace tarvel {
namespace {

QList<QRgb> gameColourTable() {
    QList<QRgb> table;
    table.reserve(256);
    for (std::uint32_t colour : GamePalette) table.push_back(0xFF000000u | colour);
    return table;
}

constexpr int kStepsPerTick = 2;

}  // namespace

QImage gamePaletteImage(const std::vector<std::uint8_t>& bottomUp, int width, int height) {
    QImage image(width, height, QImage::Format_Indexed8);
    image.setColorTable(gameColourTable());
    const std::size_t needed = std::size_t(width) * std::size_t(height);
    if (bottomUp.size() < needed) {
        image.fill(0);
        return image;
    }
    for (int y = 0; y < height; ++y)
        std::memcpy(image.scanLine(y), bottomUp.data() + std::size_t(height - 1 - y) * std::size_t(width),
                    std::size_t(width));
    return image;
}

LiveryView::LiveryView(QWidget* parent) : QWidget(parent) {
    setFixedSize(kLiveryWidth, kLiveryHeight);
    timer_.setInterval(5);
    connect(&timer_, &QTimer::timeout, this, &LiveryView::step);
}

void LiveryView::showLivery(const std::vector<std::uint8_t>& bottomUp, int block, Rand& rand) {
    timer_.stop();
    picture_ = gamePaletteImage(bottomUp, kLiveryWidth, kLiveryHeight);
    block_ = mosaicBlockSize(block);
    if (block_ == 0 || shown_.isNull()) {
        shown_ = picture_;
        update();
        return;
    }
    // The old picture stays on screen while the new one is copied over it.
    shown_ = shown_.convertToFormat(QImage::Format_Indexed8, picture_.colorTable());
    order_ = mosaicOrder(block_, rand);
    next_ = 0;
    timer_.start();
}

void LiveryView::step() {
    const std::span<const std::uint8_t> source(picture_.constBits(), std::size_t(picture_.sizeInBytes()));
    const std::span<std::uint8_t> target(shown_.bits(), std::size_t(shown_.sizeInBytes()));
    // Indexed8 rows of 256 pixels carry no padding, so the rows are contiguous.
    for (int i = 0; i < kStepsPerTick && next_ < kMosaicSteps; ++i, ++next_)
        copyMosaicStep(source, target, kLiveryWidth, kLiveryHeight, block_, order_[std::size_t(next_)]);
    if (next_ >= kMosaicSteps) finishReveal();
    update();
}

void LiveryView::finishReveal() {
    timer_.stop();
    shown_ = picture_;
    update();
}

void LiveryView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    if (!shown_.isNull()) painter.drawImage(0, 0, shown_);
}

void LiveryView::mouseDoubleClickEvent(QMouseEvent*) { emit doubleClicked(); }

HelmetView::HelmetView(QWidget* parent) : QWidget(parent) { setFixedSize(146, 30); }

void HelmetView::showHelmet(const std::vector<std::uint8_t>& sheet, int n) {
    if (n < 0 || n >= kHelmetCount || sheet.size() < std::size_t(kHelmetSheetPixels)) {
        helmet_ = QImage();
        update();
        return;
    }
    const QImage whole = gamePaletteImage(sheet, kHelmetSheetWidth, kHelmetSheetHeight);
    const int top = kHelmetSheetHeight - kHelmetHeight - helmetBottomRow(n);
    helmet_ = whole.copy(helmetLeft(n), top, kHelmetWidth, kHelmetHeight);
    update();
}

void HelmetView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(rect(), palette().window());
    if (!helmet_.isNull()) painter.drawImage(rect(), helmet_);
}

}  // namespace tarvel
