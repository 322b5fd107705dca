#pragma once
// A fixture that runs the command-line tool in a scratch folder, with a
// configuration file of the test's own.

#include "Cli.h"
#include "fixtures/GameFixture.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <sstream>
#include <string>
#include <vector>

namespace tarvel::cli {

struct Outcome {
    int status;
    std::string out;
    std::string err;
};

class CliFixture : public ::testing::Test {
protected:
    // Exports back up the game; the backups go to the test's own folder.
    CliFixture() { setBackupsRoot(at("backups")); }
    ~CliFixture() override { setBackupsRoot(""); }
    static void setBackupsRoot(const std::string& folder) {
#if defined(_WIN32)
        _putenv_s("TARVEL_BACKUPS", folder.c_str());
#else
        if (folder.empty())
            ::unsetenv("TARVEL_BACKUPS");
        else
            ::setenv("TARVEL_BACKUPS", folder.c_str(), 1);
#endif
    }

    // Runs the tool; `input` is its standard input.
    Outcome cli(std::vector<std::string> args, const std::string& input = {}) {
        args.insert(args.begin(), {"--config", at("tarvel32.ini")});
        std::istringstream in(input);
        std::ostringstream out, err;
        int status = run(args, in, out, err);
        return {status, out.str(), err.str()};
    }
    std::string at(const std::string& name) const { return (folder / name).string(); }
    // A new default car set in the folder.
    std::string newSet() {
        std::string path = at("in.gp2");
        EXPECT_EQ(cli({"new", path}).status, kExitOk);
        return path;
    }

    test::TempFolder folder{"cli"};
};

}  // namespace tarvel::cli
