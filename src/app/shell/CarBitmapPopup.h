#pragma once
// The small popup of the " Car Bitmap... " button: Load, Save as, Import,
// Export, View and a close button; each closes the popup with its command.

#include <QDialog>

namespace tarvel {

class CarBitmapPopup : public QDialog {
    Q_OBJECT
public:
    explicit CarBitmapPopup(QWidget* parent = nullptr);
    int chosen() const { return chosen_; }

private:
    int chosen_ = 0;
};

}  // namespace tarvel
