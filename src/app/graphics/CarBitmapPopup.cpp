#include "graphics/CarBitmapPopup.h"

#include "shell/CommandIds.h"

#include <QPushButton>
#include <QVBoxLayout>

#include <array>

namespace tarvel {
namespace {

struct PopupButton {
    const char* text;
    int id;
};
constexpr std::array<PopupButton, 6> kButtons{{
    {"Load", command::CarLoad},
    {"Save as", command::CarSaveAs},
    {"Import", command::CarImport},
    {"Export", command::CarExport},
    {"View", command::CarPopupView},
    {"Close", 0},
}};

}  // namespace

CarBitmapPopup::CarBitmapPopup(const std::function<bool(int)>& enabled, QWidget* parent)
    : QDialog(parent, Qt::Popup) {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(1, 1, 1, 1);
    layout->setSpacing(0);
    for (const PopupButton& entry : kButtons) {
        auto* button = new QPushButton(entry.text, this);
        button->setMinimumWidth(100);
        button->setEnabled(entry.id == 0 || enabled(entry.id));
        const int id = entry.id;
        connect(button, &QPushButton::clicked, this, [this, id] {
            chosen_ = id;
            accept();
        });
        layout->addWidget(button);
    }
    layout->setSizeConstraint(QLayout::SetFixedSize);
}

}  // namespace tarvel
