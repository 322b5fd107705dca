#pragma once
// The main window: the menu bar and toolbar built from the command registry,
// the team panel, start-up, and the close and drop events. What each command
// does lives in its feature folder. It opens where it was closed (the
// configuration's section "Window"), resizes and maximises.

#include "shell/Command.h"
#include "shell/Workbench.h"

#include "common/WindowPlacement.h"

#include <QMainWindow>

#include <functional>
#include <map>
#include <memory>

class QAction;
class QMenu;
class QUrl;

namespace tarvel {

class Asker;
class Document;
class TeamPanel;
struct Session;

class MainWindow : public QMainWindow {
    Q_OBJECT
public:
    // Starts a process: program, arguments, working folder; true when it started.
    using ProcessStarter = std::function<bool(const QString&, const QStringList&, const QString&)>;

    MainWindow(Session& session, Asker& asker, QWidget* parent = nullptr);
    ~MainWindow() override;

    // Start-up from the default car set on: detect the game, open the command
    // line's set or the Autofile, show the window, offer the configuration and
    // the information text.
    void startUp(const QString& commandLine);

    Session& session() { return bench_.session; }
    Document& document() { return *document_; }
    Workbench& bench() { return bench_; }
    TeamPanel& panel() { return *panel_; }
    const CommandRegistry& commands() const { return commands_; }
    QAction* action(int id) const;
    // Runs a command as its menu entry would (nothing when it is disabled).
    void runCommand(int id);
    void updateCommandStates();

    void setProcessStarter(ProcessStarter starter) { startProcess_ = std::move(starter); }
    bool startProcess(const QString& program, const QStringList& arguments, const QString& folder) const {
        return startProcess_(program, arguments, folder);
    }
    QString programPath() const;

    // Opens the first local file of a drop (after the save question).
    bool openDropped(const QList<QUrl>& urls);

    // Where the window is now (its normal rectangle when maximised) and the
    // team on show: what closing keeps in the configuration.
    WindowPlacement placement() const;

protected:
    void closeEvent(QCloseEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    void buildMenus();
    // Fills a submenu whose entries change (the recent car sets) as it opens.
    void fillSubmenu(QMenu* submenu, int id);
    // Applies the saved placement, kept on a screen, and its team; true when
    // the window is to open maximised.
    bool restorePlacement();

    std::unique_ptr<Document> document_;
    CommandRegistry commands_;
    Workbench bench_;
    TeamPanel* panel_ = nullptr;
    ProcessStarter startProcess_;
    std::map<int, QAction*> actions_;
};

}  // namespace tarvel
