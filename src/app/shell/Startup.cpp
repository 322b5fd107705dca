#include "shell/Startup.h"

#include "shell/Asker.h"
#include "shell/MainWindow.h"
#include "shell/Session.h"

#include "carset/WorkingFolder.h"
#include "game/GameBackup.h"

#include <QApplication>
#include <QStringList>

#include <ctime>
#include <system_error>

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
    return std::filesystem::is_directory(session.workingFolder, ec);
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
    // A working folder that cannot be made ends the process quietly.
    if (!createWorkingFolder(session)) return 0;
    int code = 0;
    {
        QtAsker asker;
        MainWindow window(session, asker);
        window.startUp(commandLineCarSet(QCoreApplication::arguments()));
        code = app.exec();
    }
    removeWorkingFolder(session);
    return code;
}

}  // namespace tarvel
