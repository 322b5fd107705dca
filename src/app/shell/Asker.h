#pragma once
// Everything the editor asks of the user goes through an Asker: messages by
// kind, questions, file dialogs and the dialogs the start-up offers. The
// window uses QtAsker; tests script the answers.

#include "common/Messages.h"

#include <QString>

class QWidget;

namespace tarvel {

class MainWindow;

enum class Answer { Yes, No, Cancel, Ok };
enum class Buttons { Ok, OkCancel, YesNo, YesNoCancel };

class Asker {
public:
    virtual ~Asker() = default;
    // Shows a message of the table with its kind: error = beep + warning icon,
    // information = caption "Tarvel", question = question icon.
    virtual Answer message(QWidget* parent, const Message& message, Buttons buttons = Buttons::Ok) = 0;
    // The same for a text built elsewhere (the disabled cars texts).
    virtual Answer text(QWidget* parent, MessageKind kind, const QString& text, Buttons buttons) = 0;
    // File dialogs: empty when cancelled. `title` and `filter` are the exact texts.
    virtual QString openFile(QWidget* parent, const QString& title, const QString& filter) = 0;
    virtual QString saveFile(QWidget* parent, const QString& title, const QString& filter,
                             const QString& defaultSuffix) = 0;
    // A Yes/No question with a "Don't ask again" box, whose state comes back in
    // `dontAskAgain`.
    virtual Answer confirm(QWidget* parent, const Message& question, bool& dontAskAgain) = 0;
    // The "Program Configuration" dialog on the window's settings; true on OK.
    virtual bool configure(MainWindow& window) = 0;
    // Shows the car set information text read-only.
    virtual void showInformation(QWidget* parent, const QString& text) = 0;
};

// The real dialogs.
class QtAsker : public Asker {
public:
    Answer message(QWidget* parent, const Message& message, Buttons buttons) override;
    Answer text(QWidget* parent, MessageKind kind, const QString& text, Buttons buttons) override;
    Answer confirm(QWidget* parent, const Message& question, bool& dontAskAgain) override;
    QString openFile(QWidget* parent, const QString& title, const QString& filter) override;
    QString saveFile(QWidget* parent, const QString& title, const QString& filter,
                     const QString& defaultSuffix) override;
    bool configure(MainWindow& window) override;
    void showInformation(QWidget* parent, const QString& text) override;

private:
    Answer show(QWidget* parent, MessageKind kind, const QString& body, const QString& detail, Buttons buttons,
               bool* dontAskAgain = nullptr);
};

}  // namespace tarvel
