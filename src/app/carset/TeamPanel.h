#pragma once
// The main window's client area: the team list, the current team's name,
// engine, livery and performance, and its two drivers with their helmets and
// grips. It shows the document and changes it only through Document::edit.
// Three columns laid out by Qt layouts: it grows with the window, the pictures
// at whole multiples of their size, and the room left goes to the gaps between
// groups of controls.

#include <QWidget>

#include <array>
#include <string_view>

class QCheckBox;
class QComboBox;
class QLayout;
class QLineEdit;
class QPushButton;
class QScrollBar;

namespace tarvel {

struct StepName;

struct ElementRule;
class HelmetView;
class LiveryView;
class PixelView;
class TeamList;
class ValueSpinBox;
struct Workbench;

class TeamPanel : public QWidget {
    Q_OBJECT
public:
    explicit TeamPanel(Workbench& bench, QWidget* parent = nullptr);

    // Redraws everything from the document; the livery at once (block 0) or
    // with the configured mosaic.
    void refreshAll(bool mosaic);
    // After the configuration changed (team swapping, grip range).
    void applySettings();
    void selectTeam(int team);
    // Asks "Move team here?" and moves the team when the answer is Yes.
    void requestTeamMove(int from, int to);
    // Ticks or clears " Disabled " of a car as the box would.
    void toggleDisabled(int car);
    void showEnlargedLivery();

    // Controls, for the tests.
    TeamList* teamList() const { return teamList_; }
    QLineEdit* teamName() const { return teamName_; }
    QLineEdit* engine() const { return engine_; }
    QLineEdit* driverName(int car) const { return drivers_[std::size_t(car)].name; }
    QLineEdit* driverNumber(int car) const { return drivers_[std::size_t(car)].number; }
    QComboBox* driverList(int car) const { return drivers_[std::size_t(car)].list; }
    ValueSpinBox* gripField(int car, int which) const {
        return drivers_[std::size_t(car)].gripValue[std::size_t(which)];
    }
    QScrollBar* gripBar(int car, int which) const { return drivers_[std::size_t(car)].gripBar[std::size_t(which)]; }
    QCheckBox* disabledBox(int car) const { return drivers_[std::size_t(car)].disabled; }
    QCheckBox* flagBox(int car) const { return drivers_[std::size_t(car)].flag; }
    QScrollBar* performanceBar(int which) const { return perfBar_[std::size_t(which)]; }
    ValueSpinBox* performanceValue(int which) const { return perfValue_[std::size_t(which)]; }
    QCheckBox* highNose() const { return highNose_; }
    QPushButton* undoButton() const { return undo_; }
    QPushButton* carSettingsButton() const { return carSettings_; }
    QPushButton* gameSettingsButton() const { return gameSettings_; }
    LiveryView* liveryView() const { return livery_; }
    HelmetView* helmetView(int car) const { return helmets_[std::size_t(car)]; }

    // Enables the buttons that run commands.
    void updateButtons();

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    struct DriverControls {
        QComboBox* list = nullptr;
        QLineEdit* number = nullptr;
        QLineEdit* name = nullptr;
        std::array<ValueSpinBox*, 3> gripValue{};
        std::array<QScrollBar*, 3> gripBar{};
        QCheckBox* flag = nullptr;
        QCheckBox* disabled = nullptr;
    };

    void buildControls();
    QLayout* buildTeamColumn();
    QLayout* buildLiveryColumn();
    QLayout* buildDriverColumn();
    QLayout* buildDriverControls(int car);
    // The pictures' heights for the room the layout now gives them.
    void fitPictures();
    void documentChanged(unsigned what);
    void refreshTeamList();
    void refreshTeam();
    void refreshDrivers();
    void refreshDriver(int car);
    void refreshDriverLists();
    void refreshHelmets();
    void showCurrentLivery(int block);
    void showCarPopup();

    // Edits from the controls.
    void teamTextEdited(bool engine, const QString& text);
    void performanceChanged(int which, int value);
    void driverChosen(int car, int listIndex);
    void driverNumberTyped(int car);
    void driverNameEdited(int car, const QString& text);
    void gripBarMoved(int car, int which, int value);
    void valueTypedOutside(ValueSpinBox* field, const ElementRule& rule, bool refocus);
    void flagToggled(int car, bool on);
    int currentDriverNumber(int car) const;
    // Runs an edit of the panel's own making: the panel redraws what it needs itself.
    template <class F>
    auto ownEdit(const StepName& step, unsigned what, F&& change);
    StepName teamStep(std::string_view what, std::string_view field = {}) const;
    StepName driverStep(std::string_view what, int number, std::string_view field = {}) const;
    StepName gripStep(int which, int number) const;

    Workbench& bench_;
    bool updating_ = false;   // the controls are being filled from the model
    bool editing_ = false;    // an edit of the panel's own is under way

    TeamList* teamList_ = nullptr;
    QLineEdit* teamName_ = nullptr;
    QLineEdit* engine_ = nullptr;
    QPushButton* carSettings_ = nullptr;
    QPushButton* gameSettings_ = nullptr;
    QPushButton* carBitmap_ = nullptr;
    QPushButton* undo_ = nullptr;
    QCheckBox* highNose_ = nullptr;
    std::array<ValueSpinBox*, 3> perfValue_{};
    std::array<QScrollBar*, 3> perfBar_{};
    std::array<DriverControls, 2> drivers_{};
    LiveryView* livery_ = nullptr;
    std::array<HelmetView*, 2> helmets_{};
};

}  // namespace tarvel
