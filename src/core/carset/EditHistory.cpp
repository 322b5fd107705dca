#include "carset/EditHistory.h"

#include <unordered_set>

namespace tarvel {
namespace {

using Picture = CarSetSnapshot::Picture;

// The picture `pixels` as a shared buffer: the neighbour's when equal, else
// its own (taking the vector's storage).
Picture share(std::vector<std::uint8_t>& pixels, const Picture* neighbour) {
    if (neighbour && *neighbour && **neighbour == pixels) return *neighbour;
    return std::make_shared<const std::vector<std::uint8_t>>(std::move(pixels));
}

const std::string kNoName;

}  // namespace

CarSetSnapshot::CarSetSnapshot(const CarSet& set, int team, const CarSetSnapshot* neighbour) : team_(team) {
    auto tables = std::make_shared<CarSet>(set);
    for (std::size_t i = 0; i < liveries_.size(); ++i)
        liveries_[i] = share(tables->liveries[i], neighbour ? &neighbour->liveries_[i] : nullptr);
    helmetSheet_ = share(tables->helmetSheet, neighbour ? &neighbour->helmetSheet_ : nullptr);
    for (std::size_t i = 0; i < cockpitDesigns_.size(); ++i)
        cockpitDesigns_[i] = share(tables->cockpitDesigns[i], neighbour ? &neighbour->cockpitDesigns_[i] : nullptr);
    for (auto& livery : tables->liveries) livery = {};
    tables->helmetSheet = {};
    for (auto& design : tables->cockpitDesigns) design = {};
    tables_ = std::move(tables);
}

void CarSetSnapshot::restoreInto(CarSet& set) const {
    CarSet restored = *tables_;
    for (std::size_t i = 0; i < liveries_.size(); ++i) restored.liveries[i] = *liveries_[i];
    restored.helmetSheet = *helmetSheet_;
    for (std::size_t i = 0; i < cockpitDesigns_.size(); ++i) restored.cockpitDesigns[i] = *cockpitDesigns_[i];
    set = std::move(restored);
}

const std::vector<const Picture*> CarSetSnapshot::pictures() const {
    std::vector<const Picture*> all;
    for (const Picture& livery : liveries_) all.push_back(&livery);
    all.push_back(&helmetSheet_);
    for (const Picture& design : cockpitDesigns_) all.push_back(&design);
    return all;
}

std::size_t CarSetSnapshot::tableBytes() const { return sizeof(CarSet) + tables_->information.capacity(); }

CarSetSnapshot EditHistory::capture(const CarSet& set, int team) const { return CarSetSnapshot(set, team, newest()); }

const CarSetSnapshot* EditHistory::newest() const {
    if (!redo_.empty()) return &redo_.back().state;
    if (!undo_.empty()) return &undo_.back().state;
    return nullptr;
}

void EditHistory::commit(CarSetSnapshot before, std::string name, std::string mergeKey) {
    const bool merge = !mergeKey.empty() && redo_.empty() && !undo_.empty() && undo_.back().mergeKey == mergeKey &&
                       !atSavedPoint();
    const std::uint64_t beforeId = currentId_;
    currentId_ = nextId_++;
    if (merge) return;
    redo_.clear();
    undo_.push_back(Step{std::move(name), std::move(mergeKey), std::move(before), beforeId});
    enforceLimits();
}

const std::string& EditHistory::undoName() const { return undo_.empty() ? kNoName : undo_.back().name; }
const std::string& EditHistory::redoName() const { return redo_.empty() ? kNoName : redo_.back().name; }

int EditHistory::undo(CarSet& set, int team) {
    if (undo_.empty()) return -1;
    Step step = std::move(undo_.back());
    undo_.pop_back();
    redo_.push_back(Step{step.name, {}, CarSetSnapshot(set, team, &step.state), currentId_});
    step.state.restoreInto(set);
    currentId_ = step.stateId;
    return step.state.team();
}

int EditHistory::redo(CarSet& set, int team) {
    if (redo_.empty()) return -1;
    Step step = std::move(redo_.back());
    redo_.pop_back();
    // A redone step never merges with the typing that follows it.
    undo_.push_back(Step{step.name, {}, CarSetSnapshot(set, team, &step.state), currentId_});
    step.state.restoreInto(set);
    currentId_ = step.stateId;
    return step.state.team();
}

void EditHistory::clear() {
    undo_.clear();
    redo_.clear();
    currentId_ = nextId_++;
    savedId_ = currentId_;
}

std::size_t EditHistory::memoryUse() const {
    std::unordered_set<const void*> seen;
    std::size_t bytes = 0;
    auto count = [&](const Step& step) {
        bytes += sizeof(Step) + step.name.capacity() + step.state.tableBytes();
        for (const Picture* picture : step.state.pictures())
            if (*picture && seen.insert(picture->get()).second) bytes += (*picture)->capacity();
    };
    for (const Step& step : undo_) count(step);
    for (const Step& step : redo_) count(step);
    return bytes;
}

void EditHistory::enforceLimits() {
    while (undo_.size() > limits_.steps) undo_.pop_front();
    while (undo_.size() > 1 && memoryUse() > limits_.bytes) undo_.pop_front();
}

}  // namespace tarvel
