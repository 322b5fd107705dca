#include "carset/WorkingFolder.h"

#include <gtest/gtest.h>

#include <fstream>

namespace tarvel {
namespace {

namespace fs = std::filesystem;

TEST(WorkingFolder, NameIsTheStartTimeInNineHexDigits) {
    EXPECT_EQ(workingFolderPath(0x7fffffff).filename().string(), "tarvel-07fffffff");
    EXPECT_EQ(jamBitmapFile("w", 7).filename().string(), "JAM007.BMP");
    EXPECT_EQ(menuHelmetFile("w", 3).filename().string(), "MENU03.BMP");
    EXPECT_EQ(soundFile("w", 42).filename().string(), "WAV42.WAV");
}

TEST(WorkingFolder, DeletesOnlyTheTemporaryAssetFiles) {
    fs::path folder = fs::temp_directory_path() / ("tarvel-wf-test-" + std::to_string(::testing::UnitTest::GetInstance()->random_seed()));
    fs::remove_all(folder);
    fs::create_directories(folder);
    const char* temporary[] = {"TEAM00.BMP", "JAM123.BMP", "WAV07.WAV", "MENU12.BMP", "THEL03.BMP", "TARVEL.TMP"};
    const char* kept[] = {"TEAM0.BMP", "JAM12.BMP", "JAM1234.BMP", "TEAMAB.BMP", "WAV07.BMP", "notes.txt", "TEAM00.BMPX"};
    for (const char* name : temporary) std::ofstream(folder / name) << "x";
    for (const char* name : kept) std::ofstream(folder / name) << "x";

    deleteTemporaryAssetFiles(folder);

    for (const char* name : temporary) EXPECT_FALSE(fs::exists(folder / name)) << name;
    for (const char* name : kept) EXPECT_TRUE(fs::exists(folder / name)) << name;
    fs::remove_all(folder);
}

}  // namespace
}  // namespace tarvel
