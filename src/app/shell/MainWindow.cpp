#include "shell/MainWindow.h"

#include "carset/FileFlow.h"
#include "carset/TeamList.h"
#include "carset/TeamPanel.h"
#include "shell/CommandIds.h"
#include "shell/Document.h"
#include "shell/Session.h"

#include <QAction>
#include <QCloseEvent>
#include <QCoreApplication>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QLayout>
#include <QMenu>
#include <QGuiApplication>
#include <QMenuBar>
#include <QMimeData>
#include <QProcess>
#include <QScreen>
#include <QStyle>
#include <QToolBar>
#include <QUrl>

#include <algorithm>

namespace tarvel {
namespace {

bool defaultStarter(const QString& program, const QStringList& arguments, const QString& folder) {
    return QProcess::startDetached(program, arguments, folder);
}

QString qText(std::string_view text) { return QString::fromUtf8(text.data(), qsizetype(text.size())); }

// The platform's keys for a standard command, then the command's own key.
QList<QKeySequence> keysOf(const Command& entry) {
    QList<QKeySequence> keys;
    if (entry.key != QKeySequence::UnknownKey) keys = QKeySequence::keyBindings(entry.key);
    if (!entry.shortcut.isEmpty() && !keys.contains(entry.shortcut)) keys.append(entry.shortcut);
    return keys;
}

}  // namespace

MainWindow::MainWindow(Session& session, Asker& asker, QWidget* parent)
    : QMainWindow(parent), document_(std::make_unique<Document>(session)),
      bench_{session, asker, *document_, commands_, *this}, startProcess_(defaultStarter) {
    setAcceptDrops(true);
    addCarSetCommands(bench_);
    addGraphicsCommands(bench_);
    addGameCommands(bench_);
    addSettingsCommands(bench_);
    addPerformanceCommands(bench_);
    addSoundCommands(bench_);
    addCockpitCommands(bench_);
    addViewer3dCommands(bench_);
    addShellCommands(bench_);
    panel_ = new TeamPanel(bench_, this);
    setCentralWidget(panel_);
    buildMenus();
    connect(document_.get(), &Document::changed, this, [this](unsigned what) {
        if (what & (Document::File | Document::Autofile)) setWindowTitle(document_->title());
        updateCommandStates();
    });
    setWindowTitle(document_->title());
    panel_->refreshAll(false);
    updateCommandStates();
}

MainWindow::~MainWindow() = default;

QString MainWindow::programPath() const { return QCoreApplication::applicationFilePath(); }

void MainWindow::buildMenus() {
    std::map<QString, QMenu*> menus;
    // The menu of a path, made on first use; a separator asked for goes before
    // the first submenu the path opens, else before the entry itself.
    auto menuFor = [&](std::string_view path, bool separatorBefore) {
        QString sofar;
        QMenu* parent = nullptr;
        for (const QString& part : qText(path).split('|')) {
            sofar += "|" + part;
            auto found = menus.find(sofar);
            if (found == menus.end()) {
                if (parent && separatorBefore && !parent->isEmpty()) parent->addSeparator();
                if (parent) separatorBefore = false;
                QMenu* menu = parent ? parent->addMenu(part) : menuBar()->addMenu(part);
                found = menus.emplace(sofar, menu).first;
            }
            parent = found->second;
        }
        if (separatorBefore && !parent->isEmpty()) parent->addSeparator();
        return parent;
    };
    QToolBar* toolbar = addToolBar("Commands");
    toolbar->setObjectName("Commands");
    toolbar->setMovable(false);
    toolbar->setIconSize(QSize(16, 16));
    for (const Command* entry : commands_.inMenuOrder()) {
        if (entry->menu.empty() || (entry->available && !entry->available())) continue;
        QMenu* menu = menuFor(entry->menu, entry->separatorBefore);
        const int id = entry->id;
        if (entry->entries) {
            QMenu* submenu = menu->addMenu(qText(entry->text));
            connect(submenu, &QMenu::aboutToShow, this, [this, submenu, id] { fillSubmenu(submenu, id); });
            actions_[id] = submenu->menuAction();
            continue;
        }
        QAction* act = menu->addAction(qText(entry->text));
        act->setShortcuts(keysOf(*entry));
        connect(act, &QAction::triggered, this, [this, id] { runCommand(id); });
        actions_[id] = act;
        if (entry->icon >= 0) {
            act->setIcon(style()->standardIcon(QStyle::StandardPixmap(entry->icon)));
            toolbar->addAction(act);
        }
    }
}

void MainWindow::fillSubmenu(QMenu* submenu, int id) {
    submenu->clear();
    const Command* entry = commands_.find(id);
    if (!entry || !entry->entries) return;
    for (const MenuEntry& item : entry->entries()) {
        QAction* act = submenu->addAction(item.text);
        connect(act, &QAction::triggered, this, [this, run = item.run] {
            run();
            updateCommandStates();
        });
    }
}

QAction* MainWindow::action(int id) const {
    auto found = actions_.find(id);
    return found == actions_.end() ? nullptr : found->second;
}

void MainWindow::runCommand(int id) {
    commands_.run(id);
    updateCommandStates();
}

void MainWindow::updateCommandStates() {
    for (const auto& [id, act] : actions_) {
        act->setEnabled(commands_.isEnabled(id));
        if (const Command* entry = commands_.find(id); entry && entry->label) act->setText(entry->label());
    }
    panel_->updateButtons();
}

void MainWindow::startUp(const QString& commandLine) {
    Session& session = bench_.session;
    if (!session.config.gameFolder.empty()) session.detectGame();
    updateCommandStates();
    bool openedFromCommandLine = false;
    if (!commandLine.isEmpty()) {
        WaitCursor wait;
        openedFromCommandLine = loadCarSetFile(bench_, commandLine);
    }
    if (!session.config.autoFile.empty()) {
        if (openedFromCommandLine) {
            document_->setAutofileLive(true);
        } else {
            WaitCursor wait;
            document_->setAutofileLive(loadCarSetFile(bench_, document_->autofile()));
        }
    }
    updateCommandStates();
    const bool maximized = restorePlacement();
    if (maximized)
        showMaximized();
    else
        show();
    panel_->teamList()->setFocus();
    if (session.config.gameFolder.empty() || !session.gameKnown()) runCommand(command::ProgramConfiguration);
    showInformationIfWanted(bench_);
}

bool MainWindow::restorePlacement() {
    const std::optional<WindowPlacement> saved = bench_.session.readWindowPlacement();
    if (!saved) return false;
    document_->setCurrentTeam(std::clamp(saved->team, 0, kRacingTeams - 1));
    panel_->refreshAll(false);   // its livery at once, not revealed
    // On the screen that holds the middle of the saved rectangle, else on the
    // primary one (a monitor may have gone since).
    const WindowRect rect = saved->rect();
    const QScreen* screen = QGuiApplication::screenAt(QPoint(rect.x + rect.width / 2, rect.y + rect.height / 2));
    if (!screen) screen = QGuiApplication::primaryScreen();
    if (screen) {
        // The frame is not known before the window is first shown: allow for a
        // title bar above the client area, as tall as the style draws one, so
        // that it stays on the screen too.
        const int titleBar = style()->pixelMetric(QStyle::PM_TitleBarHeight, nullptr, this);
        const QRect area = screen->availableGeometry();
        const WindowRect fitted = fitOnScreen(WindowRect{rect.x, rect.y - titleBar, rect.width, rect.height + titleBar},
                                              WindowRect{area.x(), area.y(), area.width(), area.height()});
        setGeometry(fitted.x, fitted.y + titleBar, fitted.width, fitted.height - titleBar);
    }
    return saved->maximized;
}

WindowPlacement MainWindow::placement() const {
    // The client area's rectangle, as setGeometry() takes it back; a maximised
    // window keeps the rectangle it returns to.
    const QRect normal = isMaximized() ? normalGeometry() : geometry();
    return WindowPlacement{normal.x(), normal.y(), normal.width(), normal.height(), isMaximized(),
                           document_->currentTeam()};
}

void MainWindow::closeEvent(QCloseEvent* event) {
    if (!maybeSave(bench_)) {
        event->ignore();
        return;
    }
    if (const Status written = bench_.session.writeWindowPlacement(placement()); !written)
        showMessage(bench_, written.error());
    event->accept();
}

void MainWindow::dragEnterEvent(QDragEnterEvent* event) {
    if (event->mimeData()->hasUrls()) event->acceptProposedAction();
}

void MainWindow::dropEvent(QDropEvent* event) {
    const QList<QUrl> urls = event->mimeData()->urls();
    if (urls.isEmpty() || !urls.front().isLocalFile()) return;
    event->acceptProposedAction();
    openDropped(urls);
}

bool MainWindow::openDropped(const QList<QUrl>& urls) {
    if (urls.isEmpty() || !urls.front().isLocalFile() || !maybeSave(bench_)) return false;
    const bool loaded = loadCarSetFile(bench_, urls.front().toLocalFile());
    updateCommandStates();
    return loaded;
}

}  // namespace tarvel
