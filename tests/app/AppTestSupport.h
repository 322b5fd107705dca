#pragma once
// A scripted user for the editor window, and a fixture that gives each test
// its own configuration file and working folder.

#include "carset/FileFlow.h"
#include "carset/TeamPanel.h"
#include "shell/Asker.h"
#include "shell/ConfigDialog.h"
#include "shell/MainWindow.h"
#include "shell/Document.h"
#include "shell/Session.h"

#include "common/CodePage.h"
#include "common/Messages.h"
#include "fixtures/GameFixture.h"

#include <QLineEdit>
#include <QString>

#include <gtest/gtest.h>

#include <deque>
#include <fstream>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace tarvel::test {

inline std::string readText(const std::filesystem::path& path) {
    std::ifstream in(path);
    return std::string(std::istreambuf_iterator<char>(in), {});
}

class ScriptedAsker : public Asker {
public:
    // Answers for questions, in order; a question without a scripted answer fails the test.
    std::deque<Answer> answers;
    // Paths returned by the file dialogs, in order; none left = cancelled.
    std::deque<QString> files;
    std::vector<MessageId> ids;          // every table message shown
    std::vector<std::string> texts;      // every text shown (UTF-8)
    std::vector<std::string> details;    // the detail under each table message
    std::vector<QString> fileTitles;     // titles of the file dialogs
    int configureCalls = 0;
    std::function<bool(MainWindow&)> onConfigure;
    std::vector<QString> information;

    Answer message(QWidget*, const Message& m, Buttons buttons) override {
        ids.push_back(m.id);
        texts.push_back(windows1252ToUtf8(messageText(m)));
        details.push_back(m.detail);
        return next(buttons);
    }
    Answer text(QWidget*, MessageKind, const QString& body, Buttons buttons) override {
        texts.push_back(body.toStdString());
        return next(buttons);
    }
    bool checkDontAskAgain = false;      // what the user does with "Don't ask again"
    Answer confirm(QWidget* parent, const Message& m, bool& dontAskAgain) override {
        dontAskAgain = checkDontAskAgain;
        return message(parent, m, Buttons::YesNo);
    }
    QString openFile(QWidget*, const QString& title, const QString&) override { return nextFile(title); }
    QString saveFile(QWidget*, const QString& title, const QString&, const QString&) override {
        return nextFile(title);
    }
    bool configure(MainWindow& window) override {
        ++configureCalls;
        return onConfigure ? onConfigure(window) : false;
    }
    void showInformation(QWidget*, const QString& body) override { information.push_back(body); }

    bool shown(MessageId id) const { return std::find(ids.begin(), ids.end(), id) != ids.end(); }
    std::string lastText() const { return texts.empty() ? std::string() : texts.back(); }

private:
    Answer next(Buttons buttons) {
        if (buttons == Buttons::Ok) return Answer::Ok;
        if (answers.empty()) {
            ADD_FAILURE() << "unexpected question: " << lastText();
            return Answer::Cancel;
        }
        Answer a = answers.front();
        answers.pop_front();
        return a;
    }
    QString nextFile(const QString& title) {
        fileTitles.push_back(title);
        if (files.empty()) return {};
        QString f = files.front();
        files.pop_front();
        return f;
    }
};

class AppTest : public ::testing::Test {
protected:
    AppTest() : temp_("app") {
        session.configPath = temp_.path() / "tarvel32.ini";
        session.workingFolder = temp_.path() / "work";
        session.backupsRoot = temp_.path() / "backups";
        std::filesystem::create_directories(session.workingFolder);
        session.rand.seed(7);
    }

    // Writes the configuration file and reads it into the session.
    void writeConfig(const std::string& text) {
        std::FILE* f = std::fopen(session.configPath.string().c_str(), "wb");
        ASSERT_NE(f, nullptr);
        std::fputs(text.c_str(), f);
        std::fclose(f);
        session.readConfiguration();
    }

    MainWindow& window() {
        if (!window_) {
            window_ = std::make_unique<MainWindow>(session, asker);
            window_->setProcessStarter([this](const QString& program, const QStringList& args, const QString& dir) {
                started.push_back({program, args, dir});
                return startSucceeds;
            });
        }
        return *window_;
    }

    TeamPanel& panel() { return window().panel(); }
    const CarSet& set() { return window().document().set(); }
    // Changes the set through the document, as an editor would (the set becomes dirty).
    void change(const std::function<void(CarSet&)>& edit, const std::string& step = "Test edit") {
        window().document().edit(StepName{step}, Document::Everything, [&](CarSet& s) {
            edit(s);
            return true;
        });
    }

    // A configured, known game; start-up then offers no dialog.
    std::string configureGame(int release = 0) {
        const std::string folder = makeTestGame(temp_.path() / "game", GameFixtureOptions{release});
        writeConfig("[Files]\nLocate GP2.EXE=" + folder + "\n");
        return folder;
    }

    QString path(const std::string& name) const { return QString::fromStdString((temp_.path() / name).string()); }
    const std::filesystem::path& folder() const { return temp_.path(); }

    struct Started {
        QString program;
        QStringList arguments;
        QString folder;
    };

    Session session;
    ScriptedAsker asker;
    std::vector<Started> started;
    bool startSucceeds = true;

private:
    TempFolder temp_;
    std::unique_ptr<MainWindow> window_;
};

}  // namespace tarvel::test
