#include "CarSetJson.h"
#include "fixtures/CarSetSamples.h"
#include "CliTestSupport.h"

#include "carset/CarSetFile.h"
#include "common/ByteIO.h"
#include "common/FileIO.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>

namespace tarvel::cli {
namespace {
namespace fs = std::filesystem;

class CliTest : public CliFixture {
protected:
    Bytes bytesOf(const std::string& name) { return readWholeFile(at(name)).value_or(Bytes{}); }
    void writeBytes(const std::string& name, const Bytes& data) { ASSERT_TRUE(writeFileAtomically(at(name), data)); }

    CarSet loaded(const std::string& name) {
        CarSet set;
        EXPECT_TRUE(loadCarSet(set, at(name), CarSetFileOptions{}));
        return set;
    }
};

TEST_F(CliTest, UsageErrorsExitWithTwo) {
    EXPECT_EQ(cli({}).status, kExitUsage);
    Outcome unknown = cli({"frobnicate"});
    EXPECT_EQ(unknown.status, kExitUsage);
    EXPECT_NE(unknown.err.find("frobnicate"), std::string::npos);
    EXPECT_EQ(cli({"--bogus", "new", at("a.GP2")}).status, kExitUsage);
    EXPECT_EQ(cli({"--set", "ClearJam", "new", at("a.GP2")}).status, kExitUsage);   // no '='
    std::ostringstream out, err;
    EXPECT_EQ(run({"--config"}, out, err), kExitUsage);
    EXPECT_NE(err.str().find("--config"), std::string::npos);
    EXPECT_EQ(cli({"new"}).status, kExitUsage);
    EXPECT_EQ(cli({"new", at("a.GP2"), at("b.GP2")}).status, kExitUsage);
    EXPECT_EQ(cli({"check", at("a.GP2"), "-x"}).status, kExitUsage);
    EXPECT_EQ(cli({"convert", at("a.GP2")}).status, kExitUsage);
    Outcome noOutput = cli({"apply", at("a.GP2"), at("p.json")});   // -o is required
    EXPECT_EQ(noOutput.status, kExitUsage);
    EXPECT_NE(noOutput.err.find("apply FILE.GP2 PATCH.json -o OUT.GP2"), std::string::npos);
    EXPECT_EQ(cli({"dump", at("a.GP2"), "-o"}).status, kExitUsage);
    EXPECT_FALSE(fs::exists(at("a.GP2")));
}

TEST_F(CliTest, HelpForTheToolAndEachCommand) {
    Outcome help = cli({"--help"});
    EXPECT_EQ(help.status, kExitOk);
    for (const char* command : {"new OUT.GP2", "check FILE.GP2", "dump FILE.GP2", "apply FILE.GP2", "convert IN.GP2"})
        EXPECT_NE(help.out.find(command), std::string::npos) << command;
    Outcome dumpHelp = cli({"dump", "--help"});
    EXPECT_EQ(dumpHelp.status, kExitOk);
    EXPECT_NE(dumpHelp.out.find("Usage: tarvel-cli dump FILE.GP2 [-o OUT.json]"), std::string::npos);
    EXPECT_EQ(cli({"new", "--help"}).status, kExitOk);
    EXPECT_FALSE(fs::exists(at("tarvel32.ini")));   // reading the configuration never writes it
}

TEST_F(CliTest, NewThenCheckPrintsTheVersion) {
    ASSERT_EQ(cli({"new", at("a.GP2")}).status, kExitOk);
    Outcome check = cli({"check", at("a.GP2")});
    EXPECT_EQ(check.status, kExitOk);
    EXPECT_EQ(check.out, "180\n");
    EXPECT_EQ(check.err, "");
    CarSet fresh;
    test::expectSameStoredData(fresh, loaded("a.GP2"));
}

TEST_F(CliTest, CheckReportsUnreadableFiles) {
    Outcome missing = cli({"check", at("none.GP2")});
    EXPECT_EQ(missing.status, kExitFailed);
    EXPECT_EQ(missing.err, "Couldn't Open Car Set File.\n");
    EXPECT_EQ(missing.out, "");

    writeBytes("junk.GP2", Bytes(300, 0x41));
    Outcome junk = cli({"check", at("junk.GP2")});
    EXPECT_EQ(junk.status, kExitFailed);
    EXPECT_EQ(junk.err, "File is not a valid Tarvel Car Set.\n");
}

TEST_F(CliTest, ChecksumSettingComesFromConfigurationAndCommandLine) {
    ASSERT_EQ(cli({"new", at("a.GP2")}).status, kExitOk);
    Bytes data = bytesOf("a.GP2");
    ASSERT_GT(data.size(), 600u);
    data[500] ^= 0x5A;   // inside the team livery items: the checksum no longer matches
    writeBytes("bad.GP2", data);
    EXPECT_EQ(cli({"check", at("bad.GP2")}).status, kExitFailed);
    Outcome unchecked = cli({"--set", "CheckSum=0", "check", at("bad.GP2")});
    EXPECT_EQ(unchecked.status, kExitOk);
    EXPECT_EQ(unchecked.out, "180\n");

    std::ofstream(at("tarvel32.ini")) << "[Config]\r\nCheckSum=0\r\n";
    EXPECT_EQ(cli({"check", at("bad.GP2")}).status, kExitOk);
    EXPECT_EQ(cli({"--set", "checksum=1", "check", at("bad.GP2")}).status, kExitFailed);
}

TEST_F(CliTest, NewerVersionIsNoticedThenRefused) {
    ASSERT_EQ(cli({"new", at("a.GP2")}).status, kExitOk);
    Bytes data = bytesOf("a.GP2");
    storeU16(&data[7], 181);
    writeBytes("new.GP2", data);
    Outcome check = cli({"--set", "CheckSum=0", "check", at("new.GP2")});
    EXPECT_EQ(check.status, kExitFailed);
    EXPECT_EQ(check.err, "This file requires Tarvel v1.81.\nFile is not a valid Tarvel Car Set.\n");
}

TEST_F(CliTest, DumpThenApplyGivesTheSameSet) {
    CarSet original;
    test::scramble(original, 42);
    ASSERT_TRUE(saveCarSet(original, at("orig.GP2"), CarSetFileOptions{}));
    Outcome dump = cli({"dump", at("orig.GP2")});
    ASSERT_EQ(dump.status, kExitOk) << dump.err;
    ASSERT_EQ(cli({"dump", at("orig.GP2"), "-o", at("orig.json")}).status, kExitOk);
    const Bytes file = bytesOf("orig.json");
    EXPECT_EQ(std::string(file.begin(), file.end()), dump.out);
    Json parsed = Json::parse(dump.out);
    EXPECT_EQ(parsed["document"]["loadedVersion"], 180);
    EXPECT_EQ(parsed["teams"][0]["name"], "\xC3\x89quipe 0");

    ASSERT_EQ(cli({"new", at("blank.GP2")}).status, kExitOk);
    Outcome apply = cli({"apply", at("blank.GP2"), at("orig.json"), "-o", at("copy.GP2")});
    ASSERT_EQ(apply.status, kExitOk) << apply.err;
    test::expectSameStoredData(loaded("orig.GP2"), loaded("copy.GP2"));

    // The same patch from standard input.
    Outcome piped = cli({"apply", at("blank.GP2"), "-", "-o", at("piped.GP2")}, dump.out);
    ASSERT_EQ(piped.status, kExitOk) << piped.err;
    test::expectSameStoredData(loaded("orig.GP2"), loaded("piped.GP2"));
}

TEST_F(CliTest, DumpSurvivesAFileNameThatIsNotUtf8) {
    ASSERT_EQ(cli({"new", at("caf\xE9.GP2")}).status, kExitOk);
    Outcome dump = cli({"dump", at("caf\xE9.GP2")});
    ASSERT_EQ(dump.status, kExitOk) << dump.err;
    EXPECT_NE(Json::parse(dump.out)["document"]["path"].get<std::string>().find("caf\xEF\xBF\xBD.GP2"),
              std::string::npos);
}

TEST_F(CliTest, ApplyRefusesBadValuesAndWritesNothing) {
    ASSERT_EQ(cli({"new", at("a.GP2")}).status, kExitOk);
    std::ofstream(at("bad.json")) << R"({"teams": [{}, {}, {}, {"name": "Much Too Long Team"}]})";
    Outcome bad = cli({"apply", at("a.GP2"), at("bad.json"), "-o", at("out.GP2")});
    EXPECT_EQ(bad.status, kExitFailed);
    EXPECT_EQ(bad.err, "Invalid value for teams[3].name.\n");
    EXPECT_FALSE(fs::exists(at("out.GP2")));

    // An existing output stays as it was.
    writeBytes("out.GP2", Bytes{1, 2, 3});
    Outcome range = cli({"apply", at("a.GP2"), "-", "-o", at("out.GP2")}, R"({"drivers": [{"gripRace": 65536}]})");
    EXPECT_EQ(range.status, kExitFailed);
    EXPECT_EQ(range.err, "Invalid value for drivers[0].gripRace.\n");
    EXPECT_EQ(bytesOf("out.GP2"), (Bytes{1, 2, 3}));

    Outcome notJson = cli({"apply", at("a.GP2"), "-", "-o", at("out.GP2")}, "{\"teams\": [");
    EXPECT_EQ(notJson.status, kExitFailed);
    EXPECT_EQ(notJson.err.substr(0, notJson.err.find('\n')), "Couldn't Load File.");
    Outcome noPatch = cli({"apply", at("a.GP2"), at("none.json"), "-o", at("out.GP2")});
    EXPECT_EQ(noPatch.status, kExitFailed);
    EXPECT_EQ(noPatch.err, "File Not Found - " + at("none.json") + ".\n");
    EXPECT_EQ(bytesOf("out.GP2"), (Bytes{1, 2, 3}));

    Outcome noSet = cli({"apply", at("none.GP2"), "-", "-o", at("out2.GP2")}, "{}");
    EXPECT_EQ(noSet.status, kExitFailed);
    EXPECT_EQ(noSet.err, "Couldn't Open Car Set File.\n");
    EXPECT_FALSE(fs::exists(at("out2.GP2")));
}

TEST_F(CliTest, ConvertSavesTheCurrentVersion) {
    CarSet original;
    test::scramble(original, 9);
    ASSERT_TRUE(saveCarSet(original, at("a.GP2"), CarSetFileOptions{}));
    EXPECT_EQ(cli({"convert", at("a.GP2"), at("b.GP2")}).status, kExitOk);
    EXPECT_EQ(cli({"check", at("b.GP2")}).out, "180\n");
    test::expectSameStoredData(loaded("a.GP2"), loaded("b.GP2"));
    Outcome missing = cli({"convert", at("none.GP2"), at("c.GP2")});
    EXPECT_EQ(missing.status, kExitFailed);
    EXPECT_FALSE(fs::exists(at("c.GP2")));
}

}  // namespace
}  // namespace tarvel::cli
