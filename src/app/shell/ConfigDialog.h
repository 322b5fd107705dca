#pragma once
// "Program Configuration": the game's executable, the option boxes, the grip
// range, the mosaic speed and the command that starts the game.

#include <QDialog>

class QCheckBox;
class QLabel;
class QLineEdit;
class QRadioButton;
class QSlider;

namespace tarvel {

class Asker;
struct Session;

class ConfigDialog : public QDialog {
    Q_OBJECT
public:
    ConfigDialog(Session& session, Asker& asker, QWidget* parent = nullptr);

    // The controls, for the tests.
    QLineEdit* exeField() const { return exe_; }
    QCheckBox* box(const QString& caption) const;
    QRadioButton* lowGrip() const { return lowGrip_; }
    QRadioButton* highGrip() const { return highGrip_; }
    QSlider* mosaic() const { return mosaic_; }
    QLabel* mosaicValue() const { return mosaicValue_; }
    QLineEdit* launchField() const { return launch_; }
    // Why the named game cannot be used; hidden when it can.
    QLabel* gameProblem() const { return problem_; }

public slots:
    void accept() override;
    void reject() override;
    void browse();

private:
    void showMosaic(int value);
    void showGameProblem(const QString& executable);
    void reportWrite(bool written);

    Session& session_;
    Asker& asker_;
    std::string rememberedFolder_;
    QLineEdit* exe_;
    QLabel* problem_;
    QList<QCheckBox*> boxes_;
    QRadioButton* lowGrip_;
    QRadioButton* highGrip_;
    QSlider* mosaic_;
    QLabel* mosaicValue_;
    QLineEdit* launch_;
};

}  // namespace tarvel
