#include "shell/Asker.h"

#include "shell/ConfigDialog.h"
#include "shell/MainWindow.h"

#include "common/CodePage.h"

#include <QApplication>
#include <QDialog>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QCheckBox>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QVBoxLayout>

namespace tarvel {
namespace {

// The caption of errors and questions.
const char* const kProgramCaption = "Tarvel-32";

QMessageBox::StandardButtons standardButtons(Buttons buttons) {
    switch (buttons) {
        case Buttons::Ok: return QMessageBox::Ok;
        case Buttons::OkCancel: return QMessageBox::Ok | QMessageBox::Cancel;
        case Buttons::YesNo: return QMessageBox::Yes | QMessageBox::No;
        case Buttons::YesNoCancel: return QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel;
    }
    return QMessageBox::Ok;
}

Answer toAnswer(int button) {
    switch (button) {
        case QMessageBox::Yes: return Answer::Yes;
        case QMessageBox::No: return Answer::No;
        case QMessageBox::Cancel: return Answer::Cancel;
        default: return Answer::Ok;
    }
}

}  // namespace

Answer QtAsker::message(QWidget* parent, const Message& m, Buttons buttons) {
    return show(parent, messageKind(m.id), QString::fromStdString(windows1252ToUtf8(messageText(m))),
                QString::fromStdString(m.detail), buttons);
}

Answer QtAsker::text(QWidget* parent, MessageKind kind, const QString& body, Buttons buttons) {
    return show(parent, kind, body, QString(), buttons);
}

Answer QtAsker::confirm(QWidget* parent, const Message& m, bool& dontAskAgain) {
    return show(parent, messageKind(m.id), QString::fromStdString(windows1252ToUtf8(messageText(m))),
                QString::fromStdString(m.detail), Buttons::YesNo, &dontAskAgain);
}

Answer QtAsker::show(QWidget* parent, MessageKind kind, const QString& body, const QString& detail, Buttons buttons,
                     bool* dontAskAgain) {
    QString shown = body;
    shown.replace("\r\n", "\n");
    QMessageBox box(parent);
    box.setText(shown);
    box.setInformativeText(detail);
    box.setStandardButtons(standardButtons(buttons));
    switch (kind) {
        case MessageKind::Error:
            QApplication::beep();
            box.setIcon(QMessageBox::Warning);
            box.setWindowTitle(kProgramCaption);
            break;
        case MessageKind::Information:
            box.setIcon(QMessageBox::Information);
            box.setWindowTitle("Tarvel");
            break;
        case MessageKind::Question:
            box.setIcon(QMessageBox::Question);
            box.setWindowTitle(kProgramCaption);
            break;
    }
    QCheckBox* check = nullptr;
    if (dontAskAgain) {
        check = new QCheckBox("Don't ask again", &box);
        box.setCheckBox(check);
    }
    const Answer answer = toAnswer(box.exec());
    if (check) *dontAskAgain = check->isChecked();
    return answer;
}

QString QtAsker::openFile(QWidget* parent, const QString& title, const QString& filter) {
    return QFileDialog::getOpenFileName(parent, title, QString(), filter);
}

QString QtAsker::saveFile(QWidget* parent, const QString& title, const QString& filter, const QString& suffix) {
    QFileDialog dialog(parent, title, QString(), filter);
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setDefaultSuffix(suffix);
    // The window asks "Replace Existing File?" itself.
    dialog.setOption(QFileDialog::DontConfirmOverwrite);
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty()) return {};
    return dialog.selectedFiles().front();
}

bool QtAsker::configure(MainWindow& window) {
    ConfigDialog dialog(window.session(), *this, &window);
    return dialog.exec() == QDialog::Accepted;
}

void QtAsker::showInformation(QWidget* parent, const QString& body) {
    QDialog dialog(parent);
    dialog.setWindowTitle("Car Set Information");
    auto* layout = new QVBoxLayout(&dialog);
    auto* view = new QPlainTextEdit(&dialog);
    view->setReadOnly(true);
    QString shown = body;
    shown.replace("\r\n", "\n");
    view->setPlainText(shown);
    layout->addWidget(view);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok, &dialog);
    QObject::connect(buttons, &QDialogButtonBox::accepted, &dialog, &QDialog::accept);
    layout->addWidget(buttons);
    dialog.resize(420, 320);
    dialog.exec();
}

}  // namespace tarvel
