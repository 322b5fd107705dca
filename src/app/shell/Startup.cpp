#include "shell/Startup.h"

#include "shell/Asker.h"
#include "shell/MainWindow.h"
#include "shell/Session.h"

#include "carset/WorkingFolder.h"
#include "game/GameBackup.h"
#include "common/Platform.h"

#include <QApplication>
#include <QSocketNotifier>
#include <QStringList>

#include <ctime>
#include <system_error>

#ifndef _WIN32
#include <unistd.h>
#endif

namespace tarvel {

void prepareSession(Session& session, const std::filesystem::path& programFolder, long long startTime) {
    std::error_code ec;
    session.helpFile = programFolder / "tarvel32.hlp";
    session.helpExists = std::filesystem::exists(session.helpFile, ec);
    session.rand.seed(std::uint32_t(startTime));
    session.workingFolder = workingFolderPath(std::time_t(startTime));
    session.backupsRoot = defaultBackupsRoot();
    session.configPath = defaultConfigPath();
    session.readConfiguration();
}

QString commandLineCarSet(const QStringList& arguments) {
    // Everything after the program, as one path: names with blanks arrive unquoted.
    return arguments.mid(1).join(' ');
}

bool createWorkingFolder(const Session& session) {
    std::error_code ec;
    std::filesystem::create_directories(session.workingFolder, ec);
    if (!std::filesystem::is_directory(session.workingFolder, ec)) return false;
    // Folders that editors which no longer run left behind go; this one is marked as ours.
    sweepStaleWorkingFolders(session.workingFolder.parent_path(), session.workingFolder);
    return markWorkingFolderOwner(session.workingFolder, currentProcessId());
}

// SIGTERM and SIGINT end the editor as its window's close would, without the
// save question: the exit status is 128 + the signal's number.
void endOnTerminationRequest(int& code) {
#ifdef _WIN32
    (void)code;
#else
    const int fd = terminationRequestDescriptor();
    if (fd < 0) return;
    auto* notifier = new QSocketNotifier(fd, QSocketNotifier::Read, QCoreApplication::instance());
    QObject::connect(notifier, &QSocketNotifier::activated, notifier, [fd, &code] {
        unsigned char signal = 0;
        if (::read(fd, &signal, 1) != 1) return;
        // Ends every event loop, a dialog's too; nothing is saved, and the
        // working folder goes on the way out as after a normal end.
        code = 128 + signal;
        QCoreApplication::exit(code);
    });
#endif
}

void removeWorkingFolder(const Session& session) {
    if (session.workingFolder.empty()) return;
    deleteTemporaryAssetFiles(session.workingFolder);
    std::error_code ec;
    std::filesystem::remove_all(session.workingFolder, ec);
}

int runEditor(int argc, char** argv) {
    QApplication app(argc, argv);
    // No display name: Qt would append it to every window title, and the
    // titles are the program's own texts.
    QApplication::setApplicationName("Tarvel");
    Session session;
    prepareSession(session, std::filesystem::path(QCoreApplication::applicationDirPath().toStdString()),
                   static_cast<long long>(std::time(nullptr)));
    int terminated = 0;
    endOnTerminationRequest(terminated);
    // A working folder that cannot be made ends the process quietly.
    if (!createWorkingFolder(session)) return 0;
    int code = 0;
    {
        QtAsker asker;
        MainWindow window(session, asker);
        window.startUp(commandLineCarSet(QCoreApplication::arguments()));
        // A request to end during start-up (a dialog) ends the process before the loop.
        code = terminated ? terminated : app.exec();
    }
    removeWorkingFolder(session);
    return code;
}

}  // namespace tarvel
