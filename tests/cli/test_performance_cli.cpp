#include "CarSetJson.h"
#include "CliTestSupport.h"

#include "carset/CarSetFile.h"
#include "common/Checksum.h"
#include "fixtures/PerformanceSamples.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <sstream>

namespace tarvel::cli {
namespace {

class PerformanceCliTest : public CliFixture {
protected:
    std::string sampleSet(const CarSet& set = test::calculatorSample(), const std::string& name = "sample.gp2") {
        CarSet copy = set;
        const std::string path = at(name);
        EXPECT_TRUE(saveCarSet(copy, path, CarSetFileOptions{}));
        return path;
    }
};

std::vector<std::string> lines(const std::string& text) {
    std::vector<std::string> out;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);) out.push_back(line);
    return out;
}

std::string pinOf(const std::string& text) {
    const Checksum sum = computeChecksum(std::span(reinterpret_cast<const std::uint8_t*>(text.data()), text.size()));
    char pin[32];
    std::snprintf(pin, sizeof pin, "%zu:%04x%04x", text.size(), sum.sum, sum.hash);
    return pin;
}

// Whole outputs pinned by size and checksum, with their first and last lines
// spelt out. The figures were checked against a separate model of the rules.
TEST_F(PerformanceCliTest, PinnedOutputs) {
    CarSet oneOff = test::calculatorSample();
    oneOff.teams[6].disabled[1] = 1;
    const std::string set = sampleSet(), setOneOff = sampleSet(oneOff, "one-off.gp2");
    const struct {
        std::vector<std::string> args;
        std::size_t lineCount;
        std::string first, last, pin;
    } cases[] = {
        {{"grid", set}, 28, "POLE\tNagy\t(Team L - E11)\t+0.00%", "DNQ\tBerg\t(Team D - E3)\t+8.51%", "946:ddc8f0c8"},
        {{"--set", "NiceGrid=0", "grid", setOneOff, "--random-grip", "--seed", "3"},
         27,
         "1)\tNagy\t(Team L - E11)\t+0.00%",
         "DNQ\tBerg\t(Team D - E3)\t+7.43%",
         "848:c02b01e0"},
        {{"race", set, "--random-grip", "--car-failure", "--seed", "7"},
         28,
         "\tQuist\tTeam E - E4\t+0.64%",
         "\tBerg\tTeam D - E3\tDNQ",
         "724:ae1d919f"},
        {{"race", set, "--seed", "7"},
         28,
         "\tQuist\tTeam E - E4\t+0.00%",
         "\tNagy\tTeam L - E11\t+7.05%",
         "748:affd60fe"},
        {{"race", set, "--runs", "500", "--random-grip", "--car-failure", "--seed", "7"},
         29,
         "driver\tteam\twins\tpodiums\tpoints\tDNF\tDNQ\tmean place",
         "Berg\tTeam D - E3\t0.0%\t0.0%\t0.0%\t0.0%\t100.0%\t28.00",
         "1482:2dfbdc73"},
    };
    for (const auto& c : cases) {
        const Outcome o = cli(c.args);
        ASSERT_EQ(o.status, kExitOk) << o.err;
        EXPECT_EQ(o.err, "");
        const auto text = lines(o.out);
        ASSERT_EQ(text.size(), c.lineCount) << o.out;
        EXPECT_EQ(text.front(), c.first);
        EXPECT_EQ(text.back(), c.last);
        EXPECT_EQ(pinOf(o.out), c.pin) << o.out;
    }
}

TEST_F(PerformanceCliTest, UsageErrors) {
    const std::string set = sampleSet();
    const std::vector<std::string> cases[] = {
        {"grid"},
        {"grid", set, "--car-failure"},
        {"grid", set, "--runs", "3"},
        {"grid", set, "--seed", "x"},
        {"grid", set, "--seed", "-1"},
        {"grid", set, "--seed", "4294967296"},
        {"grid", set, "--json", "--json"},
        {"race", set, "--runs", "0"},
        {"race", set, "--runs", "2x"},
        {"race", set, "--runs", "2", "--runs", "3"},
        {"race", set, "-o", "out"},
    };
    for (const auto& args : cases) {
        const Outcome o = cli(args);
        EXPECT_EQ(o.status, kExitUsage) << args.back();
        EXPECT_EQ(o.out, "");
        EXPECT_TRUE(o.err.starts_with("Usage: tarvel-cli " + args[0] + " SET.GP2")) << o.err;
    }
    const Outcome missing = cli({"race", at("none.gp2"), "--runs", "5"});
    EXPECT_EQ(missing.status, kExitFailed);
    EXPECT_EQ(missing.out, "");
    EXPECT_NE(cli({"--help"}).out.find("grid SET.GP2 [--random-grip] [--seed N] [--json]"), std::string::npos);
}

// The working table as JSON: all 28 entries, disabled ones last.
TEST_F(PerformanceCliTest, JsonWorkingTable) {
    CarSet twoOff = test::calculatorSample();
    twoOff.teams[0].disabled[0] = twoOff.teams[13].disabled[1] = 1;
    setFieldText(twoOff.drivers[3].name, "K\xF6nig");
    const std::string set = sampleSet(twoOff);
    const Json grid = Json::parse(cli({"grid", set, "--json"}).out);
    const Json race = Json::parse(cli({"race", set, "--json", "--car-failure", "--seed", "1"}).out);
    for (const Json* table : {&grid, &race}) {
        const Json& entries = (*table)["entries"];
        ASSERT_EQ(entries.size(), 28u);
        std::vector<std::string> keys;
        for (const auto& item : entries[0].items()) keys.push_back(item.key());
        EXPECT_EQ(keys, (std::vector<std::string>{"slot", "driver", "team", "power", "grip", "failure", "gap", "label",
                                                  "disabled", "dnq", "dnf"}));
        EXPECT_EQ(entries[26]["slot"], 0);
        EXPECT_EQ(entries[27]["slot"], 27);
        EXPECT_EQ(entries[27]["disabled"], 1);
        EXPECT_EQ(entries[27]["driver"], "");
    }
    EXPECT_EQ(grid["entries"][0]["label"], "POLE");
    EXPECT_EQ(grid["entries"][25]["label"], "ROW 13");
    EXPECT_EQ(race["entries"][0]["label"], "");
    EXPECT_EQ(race["entries"][26]["dnq"], 1);   // the disabled cars are the grid's non-qualifiers
    const auto text = cli({"grid", set}).out;
    EXPECT_NE(text.find("K\xC3\xB6nig"), std::string::npos);   // UTF-8
    EXPECT_EQ(lines(text).size(), 26u);
}

// The season table and its JSON tell the same counts; the table is best first.
TEST_F(PerformanceCliTest, SeasonTableAgreesWithItsJson) {
    std::vector<std::string> args = {"race",          sampleSet(),     "--runs", "40",
                                     "--random-grip", "--car-failure", "--seed", "9"};
    const auto table = lines(cli(args).out);
    args.push_back("--json");
    const Json odds = Json::parse(cli(args).out);
    ASSERT_EQ(odds["cars"].size(), 28u);
    ASSERT_EQ(table.size(), 29u);
    auto share = [](const Json& count) {
        char text[16];
        std::snprintf(text, sizeof text, "\t%.1f%%", count.get<double>() * 100.0 / 40.0);
        return std::string(text);
    };
    std::uint64_t previousWins = 40;
    for (std::size_t row = 1; row < table.size(); ++row) {
        const auto car = std::find_if(odds["cars"].begin(), odds["cars"].end(), [&](const Json& c) {
            return table[row].starts_with(c["driver"].get<std::string>() + "\t" + c["team"].get<std::string>() + "\t");
        });
        ASSERT_NE(car, odds["cars"].end()) << table[row];
        char mean[16];
        std::snprintf(mean, sizeof mean, "\t%.2f", (*car)["positionSum"].get<double>() / 40.0);
        EXPECT_EQ(table[row], (*car)["driver"].get<std::string>() + "\t" + (*car)["team"].get<std::string>() +
                                  share((*car)["wins"]) + share((*car)["podiums"]) + share((*car)["points"]) +
                                  share((*car)["dnf"]) + share((*car)["dnq"]) + mean);
        EXPECT_LE((*car)["wins"].get<std::uint64_t>(), std::exchange(previousWins, (*car)["wins"]));
    }
}

}   // namespace
}   // namespace tarvel::cli
