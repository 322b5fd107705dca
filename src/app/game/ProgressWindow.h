#pragma once
// The modal progress window of the import and export: category, "FILE :",
// "SUB-IMAGE :", "PALETTE :" and "(Press ESC to Abort)". Escape or the
// window's close button sets the abort flag that the transfer polls.

#include "common/Progress.h"

#include <QDialog>

class QLabel;

namespace tarvel {

class ProgressWindow : public QDialog, public Progress {
    Q_OBJECT
public:
    ProgressWindow(const QString& caption, QWidget* parent = nullptr);

    void setCategory(std::string_view label) override;
    void setFile(std::string_view name) override;
    void setSubImage(int index, int count) override;
    void setColours(int found, int max) override;
    void beep() override;
    bool aborted() override;

    void requestAbort() { abort_ = true; }
    QString categoryText() const;
    QString fileText() const;

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void reject() override;

private:
    QLabel* category_;
    QLabel* file_;
    QLabel* subImage_;
    QLabel* palette_;
    bool abort_ = false;
};

}  // namespace tarvel
