#include "graphics/PictureWidgets.h"

#include "carset/CarSet.h"
#include "graphics/Helmets.h"
#include "graphics/Palette.h"

#include <QPainter>
#include <QStyle>

#include <algorithm>
#include <cmath>

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
// Below a screen pixel: what floating-point ratios may miss a whole number by.
constexpr double kRatioSlack = 1e-6;

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

PixelView::PixelView(QSize picture, int minimumScale, Qt::Alignment alignment, QWidget* parent)
    : QWidget(parent), picture_(picture), minimumScale_(minimumScale), alignment_(alignment) {
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
}

QSize PixelView::sizeHint() const { return scaledSize(smallestScale()); }
QSize PixelView::minimumSizeHint() const { return scaledSize(smallestScale()); }

// The screen pixels of a widget unit, 1 without a scale factor.
int PixelView::smallestScale() const {
    return std::max(1, int(std::ceil(minimumScale_ * devicePixelRatioF() - kRatioSlack)));
}

int PixelView::scale() const {
    const double ratio = devicePixelRatioF();
    const int across = int(std::floor(width() * ratio + kRatioSlack)) / picture_.width();
    const int down = int(std::floor(height() * ratio + kRatioSlack)) / picture_.height();
    return std::max(smallestScale(), std::min(across, down));
}

QSize PixelView::scaledSize(int scale) const {
    const double ratio = devicePixelRatioF();
    return {int(std::ceil(picture_.width() * scale / ratio - kRatioSlack)),
            int(std::ceil(picture_.height() * scale / ratio - kRatioSlack))};
}

QRect PixelView::pictureRect() const {
    return QStyle::alignedRect(layoutDirection(), alignment_, scaledSize(scale()), rect());
}

void PixelView::drawPicture(QPainter& painter, const QImage& image) const {
    // Enlarged without smoothing in screen pixels, then drawn one to one.
    const int k = scale();
    QImage enlarged = image.scaled(image.size() * k, Qt::IgnoreAspectRatio, Qt::FastTransformation);
    enlarged.setDevicePixelRatio(devicePixelRatioF());
    painter.drawImage(pictureRect().topLeft(), enlarged);
}

LiveryView::LiveryView(QWidget* parent)
    : PixelView(QSize(kLiveryWidth, kLiveryHeight), 1, Qt::AlignLeft | Qt::AlignTop, parent) {
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
    if (!shown_.isNull()) drawPicture(painter, shown_);
}

void LiveryView::mouseDoubleClickEvent(QMouseEvent*) { emit doubleClicked(); }

// A helmet is small: it is never shown below twice its size.
HelmetView::HelmetView(QWidget* parent)
    : PixelView(QSize(kHelmetWidth, kHelmetHeight), 2, Qt::AlignHCenter | Qt::AlignTop, parent) {}

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
    if (!helmet_.isNull()) drawPicture(painter, helmet_);
}

}  // namespace tarvel
