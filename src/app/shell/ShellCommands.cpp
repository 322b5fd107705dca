// The window's own commands: the configuration dialog, help and About.

#include "carset/TeamPanel.h"
#include "shell/Asker.h"
#include "shell/Command.h"
#include "shell/CommandIds.h"
#include "shell/MainWindow.h"
#include "shell/Session.h"
#include "shell/Workbench.h"

#include <QDesktopServices>
#include <QMessageBox>
#include <QUrl>

namespace tarvel {
namespace {

void programConfiguration(Workbench& bench) {
    bench.asker.configure(bench.window);
    bench.session.detectStateFile();
    bench.window.panel().applySettings();
}

void about(Workbench& bench) {
    QMessageBox::about(&bench.window, "About Tarvel",
                       QStringLiteral("<b>Tarvel-32 v" TARVEL_VERSION "</b><p>Car set editor for the Grand Prix "
                                      "racing game GP2.EXE.</p>"));
}

}  // namespace

void addShellCommands(Workbench& bench) {
    namespace c = command;
    CommandRegistry& r = bench.commands;
    Workbench* b = &bench;
    r.add({.id = c::ProgramConfiguration, .order = 502, .menu = "&Window", .text = "&Program configuration",
           .run = [b] { programConfiguration(*b); }, .icon = QStyle::SP_FileDialogDetailedView});
    r.add({.id = c::Help, .order = 600, .menu = "&Help", .text = "&Help",
           .run = [b] { QDesktopServices::openUrl(QUrl::fromLocalFile(QString::fromStdString(b->session.helpFile.string()))); },
           .available = [b] { return b->session.helpExists; }, .key = QKeySequence::HelpContents});
    r.add({.id = c::About, .order = 602, .menu = "&Help", .text = "&About...", .run = [b] { about(*b); },
           .icon = QStyle::SP_MessageBoxInformation});
}

}  // namespace tarvel
