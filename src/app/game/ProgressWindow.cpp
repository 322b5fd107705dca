#include "game/ProgressWindow.h"

#include <QApplication>
#include <QGridLayout>
#include <QKeyEvent>
#include <QLabel>

#include <cstdio>

namespace tarvel {

ProgressWindow::ProgressWindow(const QString& caption, QWidget* parent) : QDialog(parent) {
    setWindowTitle(caption);
    setModal(true);
    auto* grid = new QGridLayout(this);
    category_ = new QLabel(this);
    file_ = new QLabel(this);
    subImage_ = new QLabel(this);
    palette_ = new QLabel(this);
    for (QLabel* value : {file_, subImage_, palette_}) value->setMinimumWidth(160);
    grid->addWidget(category_, 0, 0, 1, 2);
    grid->addWidget(new QLabel("FILE :", this), 1, 0);
    grid->addWidget(file_, 1, 1);
    grid->addWidget(new QLabel("SUB-IMAGE :", this), 2, 0);
    grid->addWidget(subImage_, 2, 1);
    grid->addWidget(new QLabel("PALETTE :", this), 3, 0);
    grid->addWidget(palette_, 3, 1);
    auto* hint = new QLabel("(Press ESC to Abort)", this);
    hint->setAlignment(Qt::AlignCenter);
    grid->addWidget(hint, 4, 0, 1, 2);
    setFixedSize(sizeHint());
}

void ProgressWindow::setCategory(std::string_view label) {
    category_->setText(QString::fromUtf8(label.data(), qsizetype(label.size())));
    subImage_->clear();
    palette_->clear();
}

void ProgressWindow::setFile(std::string_view name) {
    file_->setText(QString::fromUtf8(name.data(), qsizetype(name.size())));
}

void ProgressWindow::setSubImage(int index, int count) {
    char text[32];
    std::snprintf(text, sizeof text, "%.2d / %.2d", index, count);
    subImage_->setText(text);
}

void ProgressWindow::setColours(int found, int max) {
    char text[48];
    std::snprintf(text, sizeof text, "%.3d      [max:%.3d]", found, max);
    palette_->setText(text);
}

void ProgressWindow::beep() { QApplication::beep(); }

bool ProgressWindow::aborted() {
    QApplication::processEvents();
    return abort_;
}

QString ProgressWindow::categoryText() const { return category_->text(); }
QString ProgressWindow::fileText() const { return file_->text(); }

void ProgressWindow::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape) {
        abort_ = true;
        return;
    }
    QDialog::keyPressEvent(event);
}

void ProgressWindow::reject() { abort_ = true; }

}  // namespace tarvel
