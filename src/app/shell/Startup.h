#pragma once
// One editor process from start to end: help file, random seed, working
// folder, configuration, main window, command line car set, Autofile, the
// configuration dialog when the game is not known, the message loop, and the
// removal of the working folder at the end.

#include <filesystem>

#include <QStringList>

namespace tarvel {

struct Session;

// Fills a session for this process: configuration path and contents, help
// file, working folder path for `startTime`, random seed.
void prepareSession(Session& session, const std::filesystem::path& programFolder, long long startTime);

// The command line's car set: the whole rest of the line after the program.
QString commandLineCarSet(const QStringList& arguments);

// Creates the working folder; false when it cannot be made.
bool createWorkingFolder(const Session& session);
// Deletes the temporary files and the folder.
void removeWorkingFolder(const Session& session);

int runEditor(int argc, char** argv);

}  // namespace tarvel
