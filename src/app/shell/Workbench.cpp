#include "shell/Workbench.h"

#include "shell/Asker.h"
#include "shell/MainWindow.h"

#include "common/CodePage.h"

#include <QApplication>
#include <QFileInfo>
#include <QStatusBar>

namespace tarvel {

void showMessage(Workbench& bench, const Message& message) { bench.asker.message(&bench.window, message); }

bool showStatus(Workbench& bench, const Status& status) {
    if (!status) showMessage(bench, status.error());
    return status.has_value();
}

void showReport(Workbench& bench, const std::string& text) {
    bench.window.statusBar()->showMessage(QString::fromStdString(text));
}

bool confirmReplace(Workbench& bench, const QString& path) {
    if (!QFileInfo::exists(path)) return true;
    return bench.asker.message(&bench.window, Message{MessageId::ReplaceExistingFile, {}}, Buttons::YesNo) ==
           Answer::Yes;
}

QWidget* windowWidget(Workbench& bench) { return &bench.window; }

WaitCursor::WaitCursor() { QApplication::setOverrideCursor(Qt::WaitCursor); }
WaitCursor::~WaitCursor() { QApplication::restoreOverrideCursor(); }

QString fromModel(const std::string& text) { return QString::fromStdString(windows1252ToUtf8(text)); }
std::string toModel(const QString& text) { return utf8ToWindows1252(text.toStdString()); }
std::filesystem::path toPath(const QString& path) { return std::filesystem::path(path.toStdString()); }

}  // namespace tarvel
