#pragma once
// What a feature's commands and dialogs work with: the process's settings,
// the user, the document, the command registry and the main window.

#include "common/Result.h"

#include <QString>

#include <filesystem>
#include <string>

class QWidget;

namespace tarvel {

class Asker;
class CommandRegistry;
class Document;
class MainWindow;
struct Session;

struct Workbench {
    Session& session;
    Asker& asker;
    Document& document;
    CommandRegistry& commands;
    MainWindow& window;
};

// Shown with the message's kind; showStatus shows a failure and says whether it succeeded.
void showMessage(Workbench& bench, const Message& message);
bool showStatus(Workbench& bench, const Status& status);
// A line in the window's status bar saying what a command did.
void showReport(Workbench& bench, const std::string& text);
// "Replace Existing File?" when `path` exists; true to go on.
bool confirmReplace(Workbench& bench, const QString& path);
QWidget* windowWidget(Workbench& bench);

// The wait cursor for as long as the object lives.
struct WaitCursor {
    WaitCursor();
    ~WaitCursor();
    WaitCursor(const WaitCursor&) = delete;
    WaitCursor& operator=(const WaitCursor&) = delete;
};

// Text and paths across the Qt edge: the model holds Windows-1252 bytes.
QString fromModel(const std::string& windows1252);
std::string toModel(const QString& text);
std::filesystem::path toPath(const QString& path);

// Each feature folder adds its commands (Features.cpp calls them in turn).
void addCarSetCommands(Workbench& bench);
void addGraphicsCommands(Workbench& bench);
void addGameCommands(Workbench& bench);
void addSettingsCommands(Workbench& bench);
void addPerformanceCommands(Workbench& bench);
void addSoundCommands(Workbench& bench);
void addCockpitCommands(Workbench& bench);
void addViewer3dCommands(Workbench& bench);
void addShellCommands(Workbench& bench);

}  // namespace tarvel
