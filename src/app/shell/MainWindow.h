#pragma once
// The main window: one team of the car set at a time, the menu and toolbar
// built from the command table, the document state (file, title, save
// questions, Autofile) and the dispatch of every command.

#include "carset/CarSet.h"
#include "shell/Asker.h"
#include "shell/Session.h"

#include <QMainWindow>

#include <array>
#include <functional>
#include <map>
#include <memory>
#include <optional>

class QAction;
class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QMenu;
class QPushButton;
class QScrollBar;
class QUrl;

namespace tarvel {

class HelmetView;
class LiveryView;
class TeamList;

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

    Session& session() { return session_; }
    CarSet& carSet() { return *set_; }
    QAction* action(int id) const;
    void runCommand(int id);
    void setProcessStarter(ProcessStarter starter) { startProcess_ = std::move(starter); }
    QString programPath() const;

    // Document operations (also reached through the commands).
    bool loadFile(const QString& path);      // shows its own failure
    bool save();                             // 6002
    bool saveAs();                           // 6003
    bool maybeSave();                        // the save-changes question; false = stop
    void selectTeam(int team);
    // Asks "Move team here?" and moves the team when the answer is Yes.
    void requestTeamMove(int from, int to);
    // Opens the first local file of a drop (after the save question).
    bool openDropped(const QList<QUrl>& urls);
    // Ticks or clears " Disabled " of a car as the box would.
    void toggleDisabled(int car);

    // Widgets, for the tests.
    TeamList* teamList() const { return teamList_; }
    QLineEdit* teamName() const { return teamName_; }
    QLineEdit* engine() const { return engine_; }
    QLineEdit* driverName(int car) const { return drivers_[std::size_t(car)].name; }
    QLineEdit* driverNumber(int car) const { return drivers_[std::size_t(car)].number; }
    QComboBox* driverList(int car) const { return drivers_[std::size_t(car)].list; }
    QLineEdit* gripField(int car, int which) const { return drivers_[std::size_t(car)].gripValue[std::size_t(which)]; }
    QScrollBar* gripBar(int car, int which) const { return drivers_[std::size_t(car)].gripBar[std::size_t(which)]; }
    QCheckBox* disabledBox(int car) const { return drivers_[std::size_t(car)].disabled; }
    QCheckBox* flagBox(int car) const { return drivers_[std::size_t(car)].flag; }
    QScrollBar* performanceBar(int which) const { return perfBar_[std::size_t(which)]; }
    QLabel* performanceValue(int which) const { return perfValue_[std::size_t(which)]; }
    QCheckBox* highNose() const { return highNose_; }
    QPushButton* undoButton() const { return undo_; }
    LiveryView* liveryView() const { return livery_; }
    HelmetView* helmetView(int car) const { return helmets_[std::size_t(car)]; }
    QWidget* canvas() const { return canvas_; }

    // Refreshes everything the window shows from the model.
    void refreshAll();
    void updateCommandStates();

protected:
    void closeEvent(QCloseEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    struct DriverControls {
        QComboBox* list = nullptr;
        QLineEdit* number = nullptr;
        QLineEdit* name = nullptr;
        std::array<QLabel*, 3> gripCaption{};
        std::array<QLineEdit*, 3> gripValue{};
        std::array<QScrollBar*, 3> gripBar{};
        QCheckBox* flag = nullptr;
        QCheckBox* disabled = nullptr;
    };
    struct LiveryUndo {
        int team = 0;
        std::vector<std::uint8_t> pixels;
        AssetSlot slot;
    };

    void buildControls();
    void buildDriverControls(int car, int top);
    void buildMenus();
    void refreshTeamList();
    void refreshTeam();
    void refreshDrivers();
    void refreshDriver(int car);
    void refreshHelmets();
    void refreshTitle();
    void refreshAutofileMenu();
    void showCurrentLivery(int block);
    void afterLoad();
    bool saveTo(const QString& path);
    bool confirmReplace(const QString& path);
    void showMessage(const Message& message);
    void showStatus(const Status& status);
    void rememberLivery();

    // Command handlers.
    void newCarSet();
    void newEditorWindow();
    void openFile();
    void openInNewWindow();
    void autofileSetAs();
    void autofileRemove();
    void autofileOpen();
    void carLoad();
    void carSaveAs();
    void carImport();
    void carExport();
    void undoLivery();
    void helmetsLoad();
    void helmetsSaveAs();
    void helmetsImport();
    void helmetsExport();
    void singleHelmetLoad(int car);
    void singleHelmetSaveAs(int car);
    void importFromGame();
    void exportToGame();
    void launchGame();
    void programConfiguration();
    void openHelp();
    void aboutCarSet();
    void about();
    void showEnlargedLivery();
    void showCarPopup();

    // Edits from the controls.
    void teamTextEdited(bool engine, const QString& text);
    void performanceChanged(int which, int value);
    void driverChosen(int car, int listIndex);
    void driverNumberTyped(int car);
    void driverNameEdited(int car, const QString& text);
    void gripBarMoved(int car, int which, int value);
    void gripTyped(int car, int which);
    void flagToggled(int car, bool on);

    Session& session_;
    Asker& asker_;
    std::unique_ptr<CarSet> set_;
    ProcessStarter startProcess_;
    std::map<int, QAction*> actions_;
    QMenu* helpMenu_ = nullptr;
    bool updating_ = false;
    bool autofileLoaded_ = false;   // the Autofile entries are live
    std::optional<LiveryUndo> liveryUndo_;

    QWidget* canvas_ = nullptr;
    TeamList* teamList_ = nullptr;
    QLineEdit* teamName_ = nullptr;
    QLineEdit* engine_ = nullptr;
    QPushButton* carSettings_ = nullptr;
    QPushButton* gameSettings_ = nullptr;
    QPushButton* carBitmap_ = nullptr;
    QPushButton* undo_ = nullptr;
    QCheckBox* highNose_ = nullptr;
    std::array<QLabel*, 3> perfValue_{};
    std::array<QScrollBar*, 3> perfBar_{};
    std::array<DriverControls, 2> drivers_{};
    LiveryView* livery_ = nullptr;
    std::array<HelmetView*, 2> helmets_{};
};

}  // namespace tarvel
