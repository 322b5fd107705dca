// The editor as a process: asked to end by SIGTERM or SIGINT it leaves
// nothing behind, and at start it removes what killed editors left.

#include "carset/WorkingFolder.h"
#include "fixtures/GameFixture.h"

#include <QProcess>
#include <QProcessEnvironment>
#include <QThread>

#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>

namespace tarvel::test {
namespace {

namespace fs = std::filesystem;

std::vector<fs::path> workingFolders(const fs::path& temp) {
    std::vector<fs::path> found;
    for (const auto& entry : fs::directory_iterator(temp))
        if (entry.path().filename().string().starts_with("tarvel-")) found.push_back(entry.path());
    return found;
}

#ifndef _WIN32
TEST(EditorProcess, EndsCleanlyWhenAskedAndSweepsWhatKilledEditorsLeft) {
    struct Case {
        int signal;
        bool game;   // without a game the configuration dialog is open when the signal comes
    };
    for (const Case c : {Case{SIGTERM, true}, Case{SIGINT, false}, Case{SIGTERM, false}}) {
        SCOPED_TRACE(c.signal);
        TempFolder folder("process");
        const fs::path temp = folder / "tmp";
        fs::create_directories(temp / "tarvel-000000002");
        ASSERT_TRUE(markWorkingFolderOwner(temp / "tarvel-000000002", 0x7ffffff0));   // its editor has ended
        if (c.game) {
            const std::string game = makeTestGame(folder / "game", GameFixtureOptions{});
            std::ofstream(folder / "tarvel32.ini") << "[Files]\nLocate GP2.EXE=" << game << "\n";
        }
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert("QT_QPA_PLATFORM", "offscreen");
        environment.insert("TARVEL_CONFIG", QString::fromStdString((folder / "tarvel32.ini").string()));
        environment.insert("TARVEL_BACKUPS", QString::fromStdString((folder / "backups").string()));
        environment.insert("TMPDIR", QString::fromStdString(temp.string()));
        QProcess editor;
        editor.setProcessEnvironment(environment);
        editor.start(TARVEL_EDITOR, {});
        ASSERT_TRUE(editor.waitForStarted(20000));
        // Up once its working folder names it as the owner, and the old one is gone.
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(30);
        auto up = [&] {
            const auto folders = workingFolders(temp);
            return folders.size() == 1 && fs::exists(folders[0] / "tarvel.pid");
        };
        while (!up() && std::chrono::steady_clock::now() < deadline) QThread::msleep(20);
        ASSERT_TRUE(up()) << "the editor did not start";
        QThread::msleep(300);   // into its event loop or dialog
        ::kill(pid_t(editor.processId()), c.signal);
        ASSERT_TRUE(editor.waitForFinished(30000));
        EXPECT_EQ(editor.exitStatus(), QProcess::NormalExit);
        EXPECT_EQ(editor.exitCode(), 128 + c.signal);
        EXPECT_TRUE(workingFolders(temp).empty());
    }
}
#endif

}  // namespace
}  // namespace tarvel::test
