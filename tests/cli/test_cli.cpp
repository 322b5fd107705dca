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
    const std::vector<std::string> cases[] = {
        {},
        {"--bogus", "new", at("a.GP2")},
        {"--set", "ClearJam", "new", at("a.GP2")},   // no '='
        {"new"},
        {"new", at("a.GP2"), at("b.GP2")},
        {"check", at("a.GP2"), "-x"},
        {"convert", at("a.GP2")},
        {"dump", at("a.GP2"), "-o"},
    };
    for (const auto& args : cases) EXPECT_EQ(cli(args).status, kExitUsage) << args.size();
    Outcome unknown = cli({"frobnicate"});
    EXPECT_EQ(unknown.status, kExitUsage);
    EXPECT_NE(unknown.err.find("frobnicate"), std::string::npos);
    std::ostringstream out, err;
    EXPECT_EQ(run({"--config"}, out, err), kExitUsage);
    EXPECT_NE(err.str().find("--config"), std::string::npos);
    Outcome noOutput = cli({"apply", at("a.GP2"), at("p.json")});   // -o is required
    EXPECT_EQ(noOutput.status, kExitUsage);
    EXPECT_NE(noOutput.err.find("apply FILE.GP2 PATCH.json -o OUT.GP2"), std::string::npos);
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

// What check prints for good and damaged sets, with the checksum setting from
// the command line and the configuration file.
TEST_F(CliTest, CheckPrintsTheVersionOrWhyNot) {
    ASSERT_EQ(cli({"new", at("a.GP2")}).status, kExitOk);
    test::expectSameStoredData(CarSet{}, loaded("a.GP2"));
    Bytes data = bytesOf("a.GP2");
    data[500] ^= 0x5A;   // inside the team livery items: the checksum no longer matches
    writeBytes("bad.GP2", data);
    data = bytesOf("a.GP2");
    storeU16(&data[7], 181);
    writeBytes("new.GP2", data);
    writeBytes("junk.GP2", Bytes(300, 0x41));
    const std::string invalid = "File is not a valid Tarvel Car Set.\n";
    const struct {
        std::vector<std::string> args;
        int status;
        std::string out, err;
    } cases[] = {
        {{"check", at("a.GP2")}, kExitOk, "180\n", ""},
        {{"new", at("no/folder/b.GP2")}, kExitFailed, "", "Couldn't Save Car Set.\nb.GP2: no such file or directory\n"},
        {{"check", at("none.GP2")}, kExitFailed, "", "Couldn't Open Car Set File.\nnone.GP2: no such file\n"},
        {{"check", at("junk.GP2")}, kExitFailed, "",
         invalid + "junk.GP2: not a car set file: it does not start with a car set header\n"},
        {{"check", at("bad.GP2")}, kExitFailed, "",
         invalid + "bad.GP2: checksum does not match: the file was changed or damaged\n"},
        {{"--set", "CheckSum=0", "check", at("bad.GP2")}, kExitOk, "180\n", ""},
        {{"--set", "CheckSum=0", "check", at("new.GP2")}, kExitFailed, "",
         "This file requires Tarvel v1.81.\n" + invalid + "new.GP2: format version 181 is newer than this program reads\n"},
    };
    for (const auto& c : cases) {
        Outcome o = cli(c.args);
        EXPECT_EQ(o.status, c.status) << c.args.back();
        EXPECT_EQ(o.out, c.out) << c.args.back();
        EXPECT_EQ(o.err, c.err) << c.args.back();
    }
    std::ofstream(at("tarvel32.ini")) << "[Config]\r\nCheckSum=0\r\n";
    EXPECT_EQ(cli({"check", at("bad.GP2")}).status, kExitOk);
    EXPECT_EQ(cli({"--set", "checksum=1", "check", at("bad.GP2")}).status, kExitFailed);
}

TEST_F(CliTest, DumpThenApplyAndConvertGiveTheSameSet) {
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

    EXPECT_EQ(cli({"convert", at("orig.GP2"), at("b.GP2")}).status, kExitOk);
    test::expectSameStoredData(loaded("orig.GP2"), loaded("b.GP2"));
    EXPECT_EQ(cli({"convert", at("none.GP2"), at("c.GP2")}).status, kExitFailed);
    EXPECT_FALSE(fs::exists(at("c.GP2")));
}

TEST_F(CliTest, DumpSurvivesAFileNameThatIsNotUtf8) {
    ASSERT_EQ(cli({"new", at("caf\xE9.GP2")}).status, kExitOk);
    Outcome dump = cli({"dump", at("caf\xE9.GP2")});
    ASSERT_EQ(dump.status, kExitOk) << dump.err;
    EXPECT_NE(Json::parse(dump.out)["document"]["path"].get<std::string>().find("caf\xEF\xBF\xBD.GP2"),
              std::string::npos);
}

// A refused apply says why in one message and leaves the output as it was.
TEST_F(CliTest, ApplyRefusesBadPatchesAndWritesNothing) {
    ASSERT_EQ(cli({"new", at("a.GP2")}).status, kExitOk);
    std::ofstream(at("bad.json")) << R"({"teams": [{}, {}, {}, {"name": "Much Too Long Team"}]})";
    std::ofstream(at("cut.json")) << "{\n  \"teams\": [\n    {\"name\": ";
    std::ofstream(at("typo.json")) << "{\"teams\": [{}],\n \"laps\": [3,, 4]}";
    const struct {
        std::string patch, input, err;
    } cases[] = {
        {at("bad.json"), "", "Invalid value for teams[3].name.\n"},
        {"-", R"({"drivers": [{"gripRace": 65536}]})", "Invalid value for drivers[0].gripRace.\n"},
        {at("cut.json"), "", "Not Valid JSON - " + at("cut.json") + ", line 3, column 14.\n"},
        {at("typo.json"), "", "Not Valid JSON - " + at("typo.json") + ", line 2, column 13.\n"},
        {"-", "{\"teams\": [", "Not Valid JSON - standard input, line 1, column 12.\n"},
        {"-", "[1]", "Couldn't Load File.\ntarvel-cli: - is not a JSON object\n"},
        {at("none.json"), "", "File Not Found - " + at("none.json") + ".\n"},
    };
    for (const auto& c : cases) {
        Outcome o = cli({"apply", at("a.GP2"), c.patch, "-o", at("out.GP2")}, c.input);
        EXPECT_EQ(o.status, kExitFailed) << c.patch << c.input;
        EXPECT_EQ(o.err, c.err);
        EXPECT_FALSE(fs::exists(at("out.GP2")));
    }
    // An existing output stays as it was.
    writeBytes("out.GP2", Bytes{1, 2, 3});
    EXPECT_EQ(cli({"apply", at("a.GP2"), at("cut.json"), "-o", at("out.GP2")}).status, kExitFailed);
    EXPECT_EQ(bytesOf("out.GP2"), (Bytes{1, 2, 3}));
    Outcome noSet = cli({"apply", at("none.GP2"), "-", "-o", at("out2.GP2")}, "{}");
    EXPECT_EQ(noSet.status, kExitFailed);
    EXPECT_EQ(noSet.err, "Couldn't Open Car Set File.\nnone.GP2: no such file\n");
    EXPECT_FALSE(fs::exists(at("out2.GP2")));
}

}  // namespace
}  // namespace tarvel::cli
