#pragma once
// The small popup of the " Car Bitmap... " button: Load, Save as, Import,
// Export, View and a close button; each closes the popup with its command.

#include <QDialog>

#include <functional>

namespace tarvel {

class CarBitmapPopup : public QDialog {
    Q_OBJECT
public:
    // `enabled` tells whether a command can run now; its button is greyed otherwise.
    explicit CarBitmapPopup(const std::function<bool(int)>& enabled, QWidget* parent = nullptr);
    int chosen() const { return chosen_; }

private:
    int chosen_ = 0;
};

}  // namespace tarvel
