#pragma once
// The team list: a plain list box, or, while team swapping is allowed, a list
// whose entries can be dragged to another place.

#include <QListWidget>
#include <QTimer>

namespace tarvel {

class TeamList : public QListWidget {
    Q_OBJECT
public:
    explicit TeamList(QWidget* parent = nullptr);
    void setSwapping(bool on) { swapping_ = on; }
    bool swapping() const { return swapping_; }
    bool dragActive() const { return active_; }
    // The gap (0 = above the first entry, count() = below the last) for a
    // viewport position.
    int gapAt(int y) const;
    // Room for every racing team at once, each with a name of the longest kind.
    QSize sizeHint() const override;

signals:
    // The entry at `from` was dropped so that it ends up at position `to`.
    void moveRequested(int from, int to);

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void scrollStep();
    void reset();

    bool swapping_ = false;
    bool pressed_ = false;
    bool active_ = false;
    int from_ = -1;
    int gap_ = -1;
    int lastY_ = 0;
    QTimer scrollTimer_;
};

}  // namespace tarvel
