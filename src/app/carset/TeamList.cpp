#include "carset/TeamList.h"

#include "carset/CarSet.h"

#include <QMouseEvent>
#include <QPainter>
#include <QScrollBar>

namespace tarvel {

TeamList::TeamList(QWidget* parent) : QListWidget(parent) {
    // Rows as high as the text, so that the whole grid fits in a short list.
    setStyleSheet("QListWidget::item { padding: 0px; margin: 0px; }");
    // Never narrower than a name; shorter than the grid it scrolls.
    setSizePolicy(QSizePolicy::Minimum, QSizePolicy::Preferred);
    scrollTimer_.setInterval(100);
    connect(&scrollTimer_, &QTimer::timeout, this, &TeamList::scrollStep);
}

int TeamList::gapAt(int y) const {
    for (int row = 0; row < count(); ++row) {
        const QRect r = visualItemRect(item(row));
        if (y < r.center().y()) return row;
    }
    return count();
}

QSize TeamList::sizeHint() const {
    const QFontMetrics metrics(font());
    const int row = count() > 0 ? sizeHintForRow(0) : metrics.height();
    const int frame = 2 * frameWidth();
    const int longestName = metrics.horizontalAdvance(QString(kTeamNameSize - 1, QLatin1Char('W')));
    return {longestName + frame + 2 * spacing() + 4, kRacingTeams * row + frame};
}

void TeamList::mousePressEvent(QMouseEvent* event) {
    QListWidget::mousePressEvent(event);
    if (!swapping_ || event->button() != Qt::LeftButton) return;
    const QModelIndex index = indexAt(event->position().toPoint());
    if (!index.isValid()) return;
    pressed_ = true;
    active_ = false;
    from_ = index.row();
    gap_ = -1;
}

void TeamList::mouseMoveEvent(QMouseEvent* event) {
    if (!pressed_) {
        QListWidget::mouseMoveEvent(event);
        return;
    }
    lastY_ = int(event->position().y());
    const QRect band = visualItemRect(item(from_));
    if (!active_ && (lastY_ < band.top() || lastY_ > band.bottom())) active_ = true;
    if (!active_) return;
    const bool outside = lastY_ < 0 || lastY_ >= viewport()->height();
    if (outside && !scrollTimer_.isActive()) scrollTimer_.start();
    if (!outside) scrollTimer_.stop();
    gap_ = gapAt(lastY_);
    viewport()->update();
}

void TeamList::mouseReleaseEvent(QMouseEvent* event) {
    if (!pressed_) {
        QListWidget::mouseReleaseEvent(event);
        return;
    }
    const bool wasActive = active_;
    const int from = from_;
    const int gap = gapAt(int(event->position().y()));
    reset();
    QListWidget::mouseReleaseEvent(event);
    if (!wasActive) return;
    const int to = gap > from ? gap - 1 : gap;
    if (to != from && to >= 0 && to < count()) emit moveRequested(from, to);
}

void TeamList::paintEvent(QPaintEvent* event) {
    QListWidget::paintEvent(event);
    if (!active_ || gap_ < 0) return;
    int y = 0;
    if (gap_ < count())
        y = visualItemRect(item(gap_)).top();
    else if (count() > 0)
        y = visualItemRect(item(count() - 1)).bottom() + 1;
    QPainter painter(viewport());
    painter.fillRect(QRect(0, y - 2, viewport()->width(), 4), palette().text());
}

void TeamList::scrollStep() {
    QScrollBar* bar = verticalScrollBar();
    if (lastY_ < 0)
        bar->setValue(bar->value() - 1);
    else if (lastY_ >= viewport()->height())
        bar->setValue(bar->value() + 1);
    gap_ = gapAt(lastY_);
    viewport()->update();
}

void TeamList::reset() {
    pressed_ = false;
    active_ = false;
    from_ = -1;
    gap_ = -1;
    scrollTimer_.stop();
    viewport()->update();
}

}  // namespace tarvel
