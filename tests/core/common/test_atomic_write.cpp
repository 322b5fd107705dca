// Whole-file writes through a temporary file: the temporary files a killed
// writer left are cleared by the next write, a live writer's are not, and a
// failed write leaves nothing.

#include "common/FileIO.h"
#include "common/Platform.h"
#include "fixtures/GameFixture.h"

#include <gtest/gtest.h>

#include <fstream>

namespace tarvel::test {
namespace {
namespace fs = std::filesystem;

TEST(AtomicWrite, ClearsWhatAKilledWriterLeftAndNothingElse) {
    TempFolder temp("atomic");
    const fs::path target = temp / "SET.GP2";
    const fs::path dead = temp / "SET.GP2.tarvel-tmp-999999999-0";           // no such process
    const fs::path alive = temp / ("SET.GP2.tarvel-tmp-" + std::to_string(currentProcessId()) + "-7");
    const fs::path other = temp / "OTHER.GP2.tarvel-tmp-999999999-0";        // another file's
    for (const fs::path& p : {dead, alive, other}) std::ofstream(p) << "partial";
    const Bytes data{1, 2, 3};
    ASSERT_TRUE(writeFileAtomically(target, data));
    EXPECT_EQ(readFileBytes(target), data);
    EXPECT_FALSE(fs::exists(dead));
    EXPECT_TRUE(fs::exists(alive));
    EXPECT_TRUE(fs::exists(other));

    EXPECT_FALSE(writeFileAtomically(temp / "missing" / "SET.GP2", data));
    EXPECT_FALSE(fs::exists(temp / "missing"));
    EXPECT_FALSE(processMayBeAlive(999999999));
    EXPECT_TRUE(processMayBeAlive(currentProcessId()));
}

}  // namespace
}  // namespace tarvel::test
