// The undo history: any walk of undo and redo through a sequence of edits
// gives back the set as it stood at each point, pictures included; the dirty
// flag follows the saved point; merged typing, the bounds and shared pictures.

#include "CarSetJson.h"
#include "carset/CarSetDocument.h"
#include "common/Rand.h"
#include "fixtures/CarSetSamples.h"
#include "fixtures/GameFixture.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

namespace tarvel {
namespace {

using cli::Json;

// The whole model as the dump gives it, with the pictures, without the file state.
struct ModelState {
    Json tables;
    std::array<std::vector<std::uint8_t>, kRacingTeams> liveries;
    std::vector<std::uint8_t> helmets;
    bool operator==(const ModelState&) const = default;
};

ModelState stateOf(const CarSetDocument& document) {
    Json json = cli::carSetToJson(document);
    json.erase("document");
    return {json, document.set.liveries, document.set.helmetSheet};
}

// Edits of every kind: tables, settings, text, asset slots, pictures.
const std::vector<std::function<void(CarSet&)>> kEdits = {
    [](CarSet& s) { setFieldText(s.team(2).name, "Renamed"); },
    [](CarSet& s) { test::scramble(s, 7); },
    [](CarSet& s) { s.liveries[3].assign(s.liveries[3].size(), 0x41); },
    [](CarSet& s) { s.settings.words[settings::kLaps.first] = 77; },
    [](CarSet& s) { s.helmetSheet[100] ^= 0xFF; },
    [](CarSet& s) { s.information = "Notes"; s.hasInformation = true; },
    [](CarSet& s) { s.jams[40] = AssetSlot{kAssetExternal, {'A', '.', 'B', 'M', 'P'}}; },
    [](CarSet& s) { s.driver(9).gripRace = 30000; },
    [](CarSet& s) { std::swap(s.liveries[0], s.liveries[13]); },
};

TEST(EditHistory, AnyWalkOfUndoAndRedoGivesBackEachPoint) {
    test::TempFolder folder("history");
    CarSetDocument document;
    std::vector<ModelState> points{stateOf(document)};
    for (std::size_t i = 0; i < kEdits.size(); ++i) {
        editDocument(document, StepName{"Edit " + std::to_string(i)}, [&](CarSet& s) { kEdits[i](s); return true; });
        // Saved after the fourth edit: the dirty flag follows that point.
        if (i == 3) {
            ASSERT_TRUE(saveDocumentAs(document, folder / "saved.GP2", {}));
        }
        points.push_back(stateOf(document));
    }
    const std::size_t saved = 4;
    std::size_t at = points.size() - 1;
    Rand rand(99);
    for (int move = 0; move < 200; ++move) {
        const bool back = rand() % 2 == 0;
        const bool moved = back ? undoDocument(document) : redoDocument(document);
        ASSERT_EQ(moved, back ? at > 0 : at + 1 < points.size()) << "move " << move;
        if (moved) at = back ? at - 1 : at + 1;
        ASSERT_EQ(stateOf(document), points[at]) << "at point " << at;
        EXPECT_EQ(document.state.dirty, at != saved) << "at point " << at;
        EXPECT_EQ(document.history.undoName(), at > 0 ? "Edit " + std::to_string(at - 1) : "");
    }
    // A new edit after undoing drops the steps that were undone.
    while (at > 2) {
        ASSERT_TRUE(undoDocument(document));
        --at;
    }
    editDocument(document, StepName{"Branch"}, [](CarSet& s) { s.team(0).powerRace = 1; return true; });
    EXPECT_FALSE(document.history.canRedo());
    EXPECT_TRUE(undoDocument(document));
    EXPECT_EQ(stateOf(document), points[2]);
}

TEST(EditHistory, OnlyChangesAreStepsAndTypingInOneFieldIsOne) {
    test::TempFolder folder("history");
    CarSetDocument document;
    const ModelState original = stateOf(document);
    // Outcomes that report no change leave no step and no dirty mark.
    editDocument(document, StepName{"Nothing"}, [](CarSet&) { return false; });
    EXPECT_FALSE(editDocument(document, StepName{"Refused"}, [](CarSet&) -> Status { return fail(MessageId::CouldntLoadBitmap); }));
    EXPECT_TRUE(editDocument(document, StepName{"Same"}, [](CarSet&) -> Result<bool> { return false; }));
    EXPECT_FALSE(document.history.canUndo());
    EXPECT_FALSE(document.state.dirty);

    auto type = [&](const std::string& text, const std::string& key) {
        editDocument(document, StepName{"Rename team 1", key}, [&](CarSet& s) {
            setFieldText(s.team(0).name, text);
            return true;
        });
    };
    type("F", "team 1 name");
    type("Fe", "team 1 name");
    type("Fer", "team 1 name");
    EXPECT_EQ(document.history.undoCount(), 1u);
    // A save ends the typing's step, so that undo can come back to the saved text.
    {
        ASSERT_TRUE(saveDocumentAs(document, folder / "a.GP2", {}));
    }
    type("Ferr", "team 1 name");
    type("Ferr", "team 1 engine");
    EXPECT_EQ(document.history.undoCount(), 3u);
    ASSERT_TRUE(undoDocument(document));
    ASSERT_TRUE(undoDocument(document));
    EXPECT_EQ(fieldText(document.set.team(0).name), "Fer");
    EXPECT_FALSE(document.state.dirty);
    ASSERT_TRUE(undoDocument(document));
    EXPECT_EQ(stateOf(document), original);
    EXPECT_TRUE(document.state.dirty);

    // Opening or starting a new set forgets the history.
    resetDocument(document);
    EXPECT_FALSE(document.history.canUndo() || document.history.canRedo());
    EXPECT_FALSE(document.state.dirty);
}

TEST(EditHistory, KeepsTheNewestStepsWithinItsBoundsAndSharesPictures) {
    struct Case {
        EditHistoryLimits limits;
        bool paint;              // each step repaints a livery (else renames a team)
        std::size_t minSteps, maxSteps;
    };
    const std::size_t pictures = kRacingTeams * std::size_t(kLiveryPixels) + std::size_t(kHelmetSheetPixels);
    const std::size_t paintStep = sizeof(CarSet) + std::size_t(kLiveryPixels);
    const Case cases[] = {
        {{5, std::size_t(64) << 20}, false, 5, 5},
        {{100, std::size_t(64) << 20}, false, 30, 30},
        // Room for the pictures and five and a half repainting steps.
        {{100, pictures + paintStep * 11 / 2}, true, 4, 5},
    };
    for (const Case& c : cases) {
        CarSetDocument document;
        document.history = EditHistory(c.limits);
        for (int i = 0; i < 30; ++i) {
            editDocument(document, StepName{"Step " + std::to_string(i)}, [&](CarSet& s) {
                if (c.paint)
                    s.liveries[0].assign(s.liveries[0].size(), std::uint8_t(i + 1));
                else
                    setFieldText(s.team(1).name, std::to_string(i));
                return true;
            });
        }
        const EditHistory& history = document.history;
        EXPECT_LE(history.undoCount(), c.maxSteps);
        EXPECT_GE(history.undoCount(), c.minSteps);
        EXPECT_LE(history.memoryUse(), c.limits.bytes);
        // The newest steps are the ones kept.
        EXPECT_EQ(history.undoName(), "Step 29");
        if (!c.paint) {
            // Pictures that no step changed are held once, not once per step.
            EXPECT_LT(history.memoryUse(), pictures + history.undoCount() * (sizeof(CarSet) + 4096));
        }
    }
}

}  // namespace
}  // namespace tarvel
