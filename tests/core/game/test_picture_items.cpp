#include "GameTestSupport.h"
#include "common/Messages.h"
#include "game/GameTransfer.h"
#include "graphics/Jam.h"
#include "graphics/JamCatalogue.h"
#include "graphics/MenuHelmet.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <tuple>

namespace tarvel {
namespace {
namespace fs = std::filesystem;
using namespace test;

class PictureItems : public ::testing::Test {
protected:
    void SetUp() override {
        GameFixtureOptions options;
        options.release = 2;
        context.gameFolder = makeTestGame(folder.path() / "game", options);
        context.version = 2;
        context.workingFolder = folder.path() / "work";
        fs::create_directories(context.workingFolder);
    }
    void select(std::initializer_list<int> items) {
        selection.fill(0);
        for (int item : items) selection[std::size_t(item)] = 1;
    }
    fs::path game(const std::string& relative) const { return folder.path() / "game" / relative; }

    TempFolder folder{"pictures"};
    GameContext context;
    CarSet set;
    TransferSelection selection{};
    bool changed = false;
    RecordingProgress progress;
};

// The import fills team 1's livery, wheel 0, menu helmets 0 and 27 and JAM 19,
// each slot pointing at its working file.
TEST_F(PictureItems, ImportFillsLiveriesSlotsAndMenuHelmets) {
    select({1, 15, 16, 43, 48, 158});
    auto imported = ImportFromGame(set, selection, context, progress, changed);
    ASSERT_TRUE(imported) << messageText(imported.error()) << " after " << progress.categories.size() << " items";
    EXPECT_EQ(progress.categories,
              (std::vector<std::string>{"Car JAMs", "Helmets JAM", "Menu Helmets", "Menu Helmets", "Wheel JAMs", "JAM Files"}));
    ASSERT_EQ(set.liveries[0].size(), std::size_t(kLiveryPixels));
    EXPECT_NE(set.liveries[0], CarSet().liveries[0]) << "team 1's car file replaced the default livery";
    EXPECT_EQ(set.liveries[1], CarSet().liveries[1]);
    EXPECT_EQ(set.teams[0].carBitmap.status, kAssetExternal);

    // Slot, status and the working file's name (empty slots have none).
    const std::tuple<const AssetSlot*, int, std::string> slots[] = {
        {&set.wheels[0], kAssetExternal, "JAM015.BMP"}, {&set.jams[19], kAssetExternal, "JAM019.BMP"}, {&set.jams[20], kAssetEmpty, ""},
        {&set.menuHelmets[27], kAssetExternal, "MENU27.BMP"}, {&set.menuHelmets[1], kAssetEmpty, ""}};
    for (const auto& [slot, status, name] : slots) {
        EXPECT_EQ(slot->status, status) << name;
        EXPECT_EQ(fs::path(fieldText(slot->path)).filename(), name);
        if (!name.empty()) {
            EXPECT_TRUE(fs::exists(fieldText(slot->path))) << name;
        }
    }
    EXPECT_EQ((std::array<int, 3>{set.menuHelmetCount, set.wheelCount, set.jamCount}), (std::array<int, 3>{2, 1, 1}));
}

// Slots that hold a picture are exported from their files (a solid picture for
// menu helmet 5 and wheel 1; the files pinned whole); empty slots (menu helmet
// 0, wheel 0) leave the game's own; an unreadable picture fails the item.
TEST_F(PictureItems, ExportWritesOnlySlotsThatHoldAPicture) {
    const auto solid = [&](AssetSlot& slot, int width, int height, const char* name) {
        BitmapBuffer picture(width, height);
        std::fill(picture.pixels(), picture.pixels() + picture.pixelBytes(), 0x27);
        ASSERT_TRUE(SaveBitmap8(folder.path() / name, picture, graphicsOptions(context.options)));
        slot.status = kAssetExternal;
        setFieldText(slot.path, (folder.path() / name).string());
    };
    solid(set.menuHelmets[5], 104, 104, "helmet.bmp");
    solid(set.wheels[1], 256, JamInfo(16).canvasHeight, "wheel.bmp");
    const Bytes wheelBefore = readFileBytes(game("GAMEJAMS/B1FTR.JAM"));
    select({16, 21, 48, 49});
    ASSERT_TRUE(ExportToGame(set, selection, context, progress));
    EXPECT_EQ(readFileBytes(game("GAMEJAMS/B1FTR.JAM")), wheelBefore);
    EXPECT_EQ(digest(readFileBytes(game("GAMEJAMS/B2FTR.JAM"))), "25520:f9b6ff06b43a9171");
    EXPECT_EQ(digest(readFileBytes(game("BITMAPS/F1PCSVGA.BIN"))), "43194:7a1194a438d1dc2e");
    setFieldText(set.wheels[1].path, (folder.path() / "missing.bmp").string());
    select({49});
    EXPECT_FALSE(ExportToGame(set, selection, context, progress));
}

// A missing file is refused before any item writes; a damaged one fails the
// import with its message and no item runs after it.
TEST_F(PictureItems, MissingJamIsRefusedBeforeAnythingIsWritten) {
    fs::remove(game("GAMEJAMS/WILLIAMS.JAM"));
    Bytes exeBefore = readFileBytes(game("GP2.EXE"));
    Bytes stateBefore = readFileBytes(game("F1GSTATE.SAV"));
    select({0, 1});
    EXPECT_EQ(messageText(ExportToGame(set, selection, context, progress).error()), "File Not Found - WILLIAMS.JAM.");
    EXPECT_EQ(readFileBytes(game("GP2.EXE")), exeBefore);
    EXPECT_EQ(readFileBytes(game("F1GSTATE.SAV")), stateBefore);
}

TEST_F(PictureItems, DamagedJamFailsTheImportWithItsMessage) {
    fs::resize_file(game("GAMEJAMS/TYRRELL.JAM"), 10);
    select({1, 2, 3});
    auto result = ImportFromGame(set, selection, context, progress, changed);
    ASSERT_FALSE(result);
    EXPECT_EQ(messageText(result.error()), "Failed to Convert JAM File.");
    EXPECT_EQ(progress.categories, (std::vector<std::string>{"Car JAMs", "Car JAMs"})) << "item 3 never runs";
}

}  // namespace
}  // namespace tarvel
