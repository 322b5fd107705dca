#pragma once
// The editors of the game-wide settings the car set carries: "Game Settings",
// "Number of Laps Editor", "Championship Points Editor", "Global Car
// Settings" and "Onboard Camera Editor". Each works on a scratch copy of its
// settings words; "OK" stores it as one undoable step, "Cancel" drops it.

#include "carset/CarSet.h"
#include "carset/FieldSchema.h"
#include "game/GameFileAccess.h"

#include <QDialog>

#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

class QCheckBox;
class QLabel;
class QListWidget;
class QPushButton;
class QRadioButton;
class QScrollBar;

namespace tarvel {

struct Workbench;
class ValueSpinBox;

using WordsTransfer = std::function<Status(std::span<std::uint16_t>, TransferDirection, const GameAccess&)>;

// What every settings editor shares: the scratch words, the buttons and their work.
class SettingsDialog : public QDialog {
    Q_OBJECT
public:
    const std::vector<std::uint16_t>& words() const { return words_; }
    QPushButton* button(const QString& text) const;

protected:
    SettingsDialog(Workbench& bench, const QString& title, SettingsRange range, WordsTransfer transfer,
                   std::function<void(std::uint16_t*)> defaults, bool withUndo, QWidget* parent);
    // Adds the buttons under `content` and shows the words.
    void finish(QLayout* content);
    // Shows the scratch words in the controls.
    virtual void showWords() = 0;
    // Takes the controls into the scratch words; false (after the range
    // message, with the field focused) when a field is refused.
    virtual bool takeWords() = 0;

    // A number field for a rule of the schema.
    ValueSpinBox* numberField(const ElementRule& rule, int width);
    // Reads a field by its rule: empty counts as 0; a refusal shows the rule's message.
    std::optional<int> readField(ValueSpinBox* field, const ElementRule& rule);
    GameAccess gameAccess() const;

    Workbench& bench_;
    std::vector<std::uint16_t> words_;

private:
    void importWords();
    void exportWords();
    void accept() override;

    SettingsRange range_;
    WordsTransfer transfer_;
    std::function<void(std::uint16_t*)> defaults_;
    std::vector<std::uint16_t> opening_;
    bool withUndo_;
    QString title_;
};

class GameSettingsDialog : public SettingsDialog {
    Q_OBJECT
public:
    GameSettingsDialog(Workbench& bench, QWidget* parent = nullptr);
    QCheckBox* aid(int level, int aid) const { return aids_[std::size_t(level * 7 + aid)]; }
    QScrollBar* quickRace() const { return quickRace_; }
    QScrollBar* turns() const { return turns_; }
    QLabel* stateFileReason() const { return reason_; }
    ValueSpinBox* fuel(int which) const { return fuel_[std::size_t(which)]; }
    QCheckBox* trackRecords() const { return records_; }
    QCheckBox* computerFuel() const { return computerFuel_; }

private:
    void showWords() override;
    bool takeWords() override;
    std::vector<QCheckBox*> aids_;
    QScrollBar *quickRace_, *turns_;
    QLabel *quickRaceValue_, *turnsValue_, *reason_;
    std::array<ValueSpinBox*, 2> fuel_{};
    QCheckBox *records_, *computerFuel_;
    bool stateFile_;
};

// The laps (16 circuits) and the points (26 positions): one field per entry.
class TableDialog : public SettingsDialog {
    Q_OBJECT
public:
    enum Kind { Laps, Points };
    TableDialog(Workbench& bench, Kind kind, QWidget* parent = nullptr);
    ValueSpinBox* field(int index) const { return fields_[std::size_t(index)]; }

private:
    void showWords() override;
    bool takeWords() override;
    const FieldSpec* spec_;
    std::vector<ValueSpinBox*> fields_;
};

class GlobalCarDialog : public SettingsDialog {
    Q_OBJECT
public:
    GlobalCarDialog(Workbench& bench, QWidget* parent = nullptr);
    QScrollBar* bar(int word) const;
    QLabel* label(int word) const;
    QCheckBox* check(int word) const;
    QRadioButton* mode(int index) const { return modes_[std::size_t(index)]; }

private:
    void showWords() override;
    bool takeWords() override;
    void showLabel(int word);
    std::array<QScrollBar*, 11> bars_{};
    std::array<QLabel*, 11> labels_{};
    std::array<QCheckBox*, 11> checks_{};
    std::array<QRadioButton*, 3> modes_{};
};

class CameraDialog : public SettingsDialog {
    Q_OBJECT
public:
    CameraDialog(Workbench& bench, QWidget* parent = nullptr);
    QListWidget* list() const { return list_; }
    ValueSpinBox* field(int index) const { return fields_[std::size_t(index)]; }
    int currentCamera() const { return current_; }

private:
    void showWords() override;
    bool takeWords() override;
    void chooseCamera(int camera);
    QListWidget* list_;
    std::array<ValueSpinBox*, 8> fields_{};
    int current_ = 0;
    bool settingUp_ = true;
};

}  // namespace tarvel
