#pragma once
// The undo history of a car set: every change is one named step, kept as a
// snapshot of the set before it (undo) or after it (redo). The fixed tables are
// copied; pictures are held in shared buffers, so a step that leaves a picture
// alone shares it with its neighbours instead of copying it.

#include "carset/CarSet.h"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <memory>
#include <string>
#include <vector>

namespace tarvel {

// A car set as it stood at one point of the history, plus the team on show.
class CarSetSnapshot {
public:
    using Picture = std::shared_ptr<const std::vector<std::uint8_t>>;

    // Takes `set`; pictures equal to those of `neighbour` share its buffers.
    CarSetSnapshot(const CarSet& set, int team, const CarSetSnapshot* neighbour);
    void restoreInto(CarSet& set) const;
    int team() const { return team_; }
    const std::vector<const Picture*> pictures() const;
    // Bytes of the copied tables and text, without the pictures.
    std::size_t tableBytes() const;

private:
    std::shared_ptr<const CarSet> tables_;   // the set with its picture vectors empty
    std::array<Picture, kRacingTeams> liveries_;
    Picture helmetSheet_;
    std::array<Picture, kCockpitSlots> cockpitDesigns_;
    int team_ = 0;
};

// How much the history keeps: the oldest steps go first when either is passed.
struct EditHistoryLimits {
    std::size_t steps = 100;
    std::size_t bytes = std::size_t(64) << 20;
};

class EditHistory {
public:
    using Limits = EditHistoryLimits;
    EditHistory() = default;
    explicit EditHistory(Limits limits) : limits_(limits) {}

    // Takes the set as it stands before a change.
    CarSetSnapshot capture(const CarSet& set, int team) const;
    // Records a change that happened after `before` was captured. A step with a
    // merge key equal to the last step's (typing in one field) extends that step
    // instead, unless the set was saved in between or something was undone.
    void commit(CarSetSnapshot before, std::string name, std::string mergeKey = {});

    bool canUndo() const { return !undo_.empty(); }
    bool canRedo() const { return !redo_.empty(); }
    const std::string& undoName() const;
    const std::string& redoName() const;
    // Put the set back one step; give the team that was on show, or -1 when
    // there was nothing to do.
    int undo(CarSet& set, int team);
    int redo(CarSet& set, int team);

    // Forgets every step (a new or opened set); the set as it is counts as saved.
    void clear();
    void markSaved() { savedId_ = currentId_; }
    bool atSavedPoint() const { return savedId_ == currentId_; }

    std::size_t undoCount() const { return undo_.size(); }
    std::size_t redoCount() const { return redo_.size(); }
    // The memory the snapshots hold, shared pictures counted once.
    std::size_t memoryUse() const;

private:
    struct Step {
        std::string name;
        std::string mergeKey;
        CarSetSnapshot state;   // before the step (undo list) or after it (redo list)
        std::uint64_t stateId;  // the id of that state
    };
    const CarSetSnapshot* newest() const;
    void enforceLimits();

    Limits limits_;
    std::deque<Step> undo_;   // oldest first
    std::vector<Step> redo_;  // next redo last
    std::uint64_t nextId_ = 1;
    std::uint64_t currentId_ = 0;
    std::uint64_t savedId_ = 0;
};

}  // namespace tarvel
