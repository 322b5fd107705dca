#pragma once
// The document of one editor window: the car set, the file it came from, its
// dirty flag, the team on show, the undo history, the Autofile and the
// one-step livery undo of the livery buttons. Every change to the car set goes
// through edit(), so the window and every editor stay in step through the
// changed() signal, and every change is one step of the history.

#include "carset/CarSetDocument.h"
#include "common/Result.h"

#include <QObject>
#include <QString>

#include <memory>
#include <optional>
#include <type_traits>
#include <vector>

namespace tarvel {

struct Session;

class Document : public QObject {
    Q_OBJECT
public:
    // What a change touched, so that views redraw only their part.
    enum Change : unsigned {
        Teams = 1u << 0,       // team names, performance, flags
        Drivers = 1u << 1,     // driver records and seats
        Livery = 1u << 2,      // the liveries
        Helmets = 1u << 3,     // the helmet sheet
        File = 1u << 4,        // path, dirty flag, title, asset counts
        CurrentTeam = 1u << 5,
        Autofile = 1u << 6,
        Everything = ~0u,
    };

    explicit Document(Session& session, QObject* parent = nullptr);
    ~Document() override;

    const CarSet& set() const { return doc_->set; }
    Session& session() const { return session_; }

    // Runs `change` on the car set as one undoable step named `step`. When it
    // reports a change (true, a successful Status, a Result<bool> holding
    // true) the step is kept, the set is dirty and changed(what | File) is
    // emitted. Returns what `change` returned.
    template <class F>
    auto edit(const StepName& step, unsigned what, F&& change) -> std::invoke_result_t<F, CarSet&> {
        auto result = editDocument(*doc_, step, std::forward<F>(change));
        if (reportsChange(result)) emit changed(what | File);
        return result;
    }
    // The undo history: names of the next steps ("" when none), and taking
    // one back or doing it again (the team on show follows).
    QString undoName() const;
    QString redoName() const;
    bool undo();
    bool redo();
    const EditHistory& history() const { return doc_->history; }

    // File state.
    bool hasFile() const;
    bool isDirty() const;
    QString path() const;
    QString title() const;
    Message saveChangesQuestion() const;
    CarSetFileOptions fileOptions() const;

    // Which import/export items take part: every item this build can transfer.
    const TransferSelection& transferItems();

    // The team on show (0-13).
    int currentTeam() const;
    void setCurrentTeam(int team);

    // Loading and saving. A failed load leaves the document as it was; the
    // notices a load leaves (a newer version) come first in `notices`.
    Status load(const QString& path, std::vector<Message>* notices);
    Status saveTo(const QString& path);
    // A new set from the editor defaults.
    void reset();

    // Autofile: the set opened at start-up, kept in the configuration.
    QString autofile() const;
    bool autofileLive() const { return autofileLive_; }
    void setAutofileLive(bool live);
    bool setOpenFileAsAutofile();
    bool removeAutofile();

    // The one-step undo of the last livery change of a team.
    void rememberLivery();
    void forgetLivery();
    bool canUndoLivery() const;
    void undoLivery();

signals:
    void changed(unsigned what);

private:
    void afterFileChange();

    struct LiveryUndo {
        int team = 0;
        std::vector<std::uint8_t> pixels;
        AssetSlot slot;
    };

    Session& session_;
    std::unique_ptr<CarSetDocument> doc_;
    bool autofileLive_ = false;
    std::optional<LiveryUndo> liveryUndo_;
};

}  // namespace tarvel
