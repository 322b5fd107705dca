// The document: file state around the set, the window title, the
// save-changes question and the working folder.
#include "carset/CarSetDocument.h"
#include "carset/DocumentTitle.h"
#include "carset/WorkingFolder.h"
#include "common/Platform.h"

#include "CarSetTestSupport.h"

#include <gtest/gtest.h>

#include <chrono>

#include <fstream>

namespace tarvel {
namespace {

using test::ScratchFolder;

TEST(CarSetDocument, OpenSaveAndResetKeepSetAndStateTogether) {
    ScratchFolder dir;
    std::filesystem::create_directories(dir / "work");
    std::ofstream(jamBitmapFile(dir / "work", 19)) << "temporary";
    std::ofstream(dir / "work" / "KEEP.TXT") << "not ours";

    CarSetDocument document;
    document.state.workingFolder = dir / "work";
    document.state.currentTeam = 6;
    document.state.transferItems[3] = 1;
    document.set.teams[2].powerRace = 1234;
    document.state.dirty = true;
    ASSERT_TRUE(saveDocumentAs(document, dir / "a.gp2", {}));
    EXPECT_FALSE(document.state.dirty);
    EXPECT_TRUE(document.state.hasFile);
    EXPECT_EQ(document.state.path, dir / "a.gp2");
    EXPECT_TRUE(document.set.storedItems);

    // A failed open leaves set and state as they were, temporary files included.
    document.state.dirty = true;
    const CarSetDocument before = document;
    EXPECT_EQ(openDocument(document, dir / "missing.gp2", {}).error().id, MessageId::CouldntOpenCarSetFile);
    EXPECT_TRUE(document.state.dirty);
    EXPECT_EQ(document.state.path, before.state.path);
    EXPECT_EQ(document.set.storedItems, before.set.storedItems);
    EXPECT_TRUE(std::filesystem::exists(jamBitmapFile(dir / "work", 19)));

    // An open takes the file's set and resets the file state; the team shown,
    // the working folder and the selection stay; temporary files go.
    document.set.teams[2].powerRace = 1;
    ASSERT_TRUE(openDocument(document, dir / "a.gp2", {}));
    EXPECT_EQ(document.set.teams[2].powerRace, 1234);
    EXPECT_FALSE(document.state.dirty);
    EXPECT_EQ(document.state.loadedVersion, 180);
    EXPECT_EQ(document.state.currentTeam, 6);
    EXPECT_EQ(document.state.transferItems[3], 1);
    EXPECT_FALSE(std::filesystem::exists(jamBitmapFile(dir / "work", 19)));
    EXPECT_TRUE(std::filesystem::exists(dir / "work" / "KEEP.TXT"));

    // A failed save keeps the unsaved changes and the old file name.
    document.state.dirty = true;
    EXPECT_EQ(saveDocumentAs(document, dir / "no-such-folder" / "b.gp2", {}).error().id, MessageId::CouldntSaveCarSet);
    EXPECT_TRUE(document.state.dirty);
    EXPECT_EQ(document.state.path, dir / "a.gp2");
    ASSERT_TRUE(saveDocument(document, {}));
    EXPECT_FALSE(document.state.dirty);

    std::ofstream(soundFile(dir / "work", 3)) << "temporary";
    resetDocument(document);
    EXPECT_EQ(document.set.teams[2].powerRace, 760);
    EXPECT_TRUE(!document.set.storedItems && !document.state.hasFile && document.state.path.empty());
    EXPECT_EQ(document.state.currentTeam, 0);
    EXPECT_EQ(document.state.workingFolder, dir / "work");
    EXPECT_FALSE(std::filesystem::exists(soundFile(dir / "work", 3)));
    EXPECT_EQ(saveDocument(document, {}).error().id, MessageId::CouldntSaveCarSet);   // no file to save to
}

TEST(DocumentTitle, NameAndAssetCounts) {
    struct Case {
        const char* path;        // nullptr: no file
        std::array<int, 5> counts;   // wheels, cockpits, JAM files, menu helmets, sounds
        const char* title;
        const char* question;
    };
    const Case cases[] = {
        {nullptr, {0, 0, 0, 0, 0}, "Tarvel-32 v1.86 - [ ..... ]", "Save Changes to Car Set?"},
        {nullptr, {0, 0, 0, 1, 100}, "Tarvel-32 v1.86 - [ ..... ] - H(1) - S(100)", "Save Changes to Car Set?"},
        {"/some/where/my set.gp2", {4, 2, 199, 36, 0}, "Tarvel-32 v1.86 - [ my set.gp2 ] - W(4) - C(2) - J(199) - H(36)",
         "Save Changes to MY SET.GP2?"},
    };
    for (const Case& c : cases) {
        CarSetDocument document;
        if (c.path) {
            document.state.hasFile = true;
            document.state.path = c.path;
        }
        document.set.wheelCount = std::uint8_t(c.counts[0]);
        document.set.cockpitCount = std::uint8_t(c.counts[1]);
        document.set.jamCount = std::uint8_t(c.counts[2]);
        document.set.menuHelmetCount = std::uint8_t(c.counts[3]);
        document.set.soundCount = std::uint8_t(c.counts[4]);
        EXPECT_EQ(documentTitle(document), c.title);
        EXPECT_EQ(messageText(saveChangesQuestion(document)), c.question);
    }
}

TEST(WorkingFolder, NameIsTheStartTimeInNineHexDigits) {
    EXPECT_EQ(workingFolderPath(0x7fffffff).filename().string(), "tarvel-07fffffff");
    EXPECT_EQ(jamBitmapFile("w", 7).filename().string(), "JAM007.BMP");
    EXPECT_EQ(menuHelmetFile("w", 3).filename().string(), "MENU03.BMP");
    EXPECT_EQ(soundFile("w", 42).filename().string(), "WAV42.WAV");
}

TEST(WorkingFolder, DeletesOnlyTheTemporaryAssetFiles) {
    std::filesystem::path folder = std::filesystem::temp_directory_path() / ("tarvel-wf-test-" + std::to_string(::testing::UnitTest::GetInstance()->random_seed()));
    std::filesystem::remove_all(folder);
    std::filesystem::create_directories(folder);
    const char* temporary[] = {"TEAM00.BMP", "JAM123.BMP", "WAV07.WAV", "MENU12.BMP", "THEL03.BMP", "TARVEL.TMP"};
    const char* kept[] = {"TEAM0.BMP", "JAM12.BMP", "JAM1234.BMP", "TEAMAB.BMP", "WAV07.BMP", "notes.txt", "TEAM00.BMPX"};
    for (const char* name : temporary) std::ofstream(folder / name) << "x";
    for (const char* name : kept) std::ofstream(folder / name) << "x";

    deleteTemporaryAssetFiles(folder);

    for (const char* name : temporary) EXPECT_FALSE(std::filesystem::exists(folder / name)) << name;
    for (const char* name : kept) EXPECT_TRUE(std::filesystem::exists(folder / name)) << name;
    std::filesystem::remove_all(folder);
}

// Folders of editors that no longer run go; the living, our own and what is
// not a working folder stay.
TEST(WorkingFolder, SweepRemovesOnlyFoldersOfEndedEditors) {
    namespace fs = std::filesystem;
    ScratchFolder temp;
    const long ended = 0x7ffffff0;   // no process has this id
    const struct {
        const char* name;
        long owner;        // 0: no owner file
        int ageHours;
        bool removed;
    } cases[] = {
        {"tarvel-000000001", 0, 0, false},          // ours (below)
        {"tarvel-000000002", ended, 0, true},
        {"tarvel-000000003", currentProcessId(), 0, false},
        {"tarvel-00000000a", 0, 1, false},          // unowned, young: perhaps starting now
        {"tarvel-00000000b", 0, 48, true},          // unowned, old
        {"tarvel-00000000x", ended, 48, false},     // not a working folder's name
        {"tarvel-0000000001", ended, 48, false},
        {"other-000000004", ended, 48, false},
    };
    for (const auto& c : cases) {
        const fs::path folder = temp / c.name;
        fs::create_directories(folder);
        std::ofstream(folder / "JAM100.BMP") << "x";
        if (c.owner != 0) {
            ASSERT_TRUE(markWorkingFolderOwner(folder, c.owner));
        }
        fs::last_write_time(folder, fs::file_time_type::clock::now() - std::chrono::hours(c.ageHours));
    }
    std::ofstream(temp / "tarvel-00000000c") << "a file, not a folder";
    const auto removed = sweepStaleWorkingFolders(temp.path(), temp / "tarvel-000000001");
    for (const auto& c : cases) EXPECT_EQ(fs::exists(temp / c.name), !c.removed) << c.name;
    EXPECT_EQ(removed.size(), 2u);
    EXPECT_TRUE(fs::exists(temp / "tarvel-00000000c"));
}

}  // namespace
}  // namespace tarvel
