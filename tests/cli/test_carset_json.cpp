#include "CarSetJson.h"

#include "fixtures/CarSetSamples.h"

#include "carset/CarSet.h"
#include "common/Checksum.h"

#include <gtest/gtest.h>

#include <cstdio>

namespace tarvel::cli {
namespace {

// The dump of a default document pinned whole (size and checksum of its text):
// every key, every array length and every default value; a few values spelt out.
TEST(CarSetJson, DumpHasTheDocumentedShape) {
    Json j = carSetToJson(CarSetDocument{});
    const std::string text = j.dump();
    Checksum sum = computeChecksum(std::span(reinterpret_cast<const std::uint8_t*>(text.data()), text.size()));
    char pinned[32];
    std::snprintf(pinned, sizeof pinned, "%zu:%04x%04x", text.size(), sum.sum, sum.hash);
    EXPECT_EQ(std::string(pinned), "19393:84e0fe77");
    EXPECT_EQ(j["format"], "tarvel-carset");
    EXPECT_EQ(j["teams"][2]["driver"], Json::parse("[5, 6]"));
    EXPECT_EQ(j["drivers"][39]["number"], 40);
    EXPECT_EQ(j["drivers"][28]["name"], "");   // spare drivers start unnamed
    EXPECT_EQ(j["assets"]["jams"].size(), 218u);
}

TEST(CarSetJson, TextIsUtf8AndSignedWordsAreSigned) {
    CarSetDocument setDocument;
    CarSet& set = setDocument.set;
    setFieldText(set.teams[1].name, "Ren\xE9 \x80");
    set.information = "\x93Hi\x94";
    set.settings.words[44] = 0xFFFB;       // camera 1 x
    set.settings.words[44 + 5] = 0xFF4C;   // camera 1 roll: -180
    set.settings.words[44 + 6] = 0xFFFF;   // camera 1 detail 1: a tuning value, unsigned
    set.settings.words[188] = 0xFFFF;      // damage
    set.settings.words[0] = 0xFFFF;        // game settings are unsigned
    set.teams[0].teamOrder = -1;
    Json j = carSetToJson(setDocument);
    const Json shown = {j["teams"][1]["name"], j["information"], j["cameras"][0], j["cameras"][5], j["cameras"][6],
                        j["damage"][0],        j["gameSettings"][0], j["teams"][0]["teamOrder"]};
    EXPECT_EQ(shown, Json::parse(R"(["Ren\u00e9 \u20ac", "\u201cHi\u201d", -5, -180, 65535, -1, 65535, -1])"));
}

TEST(CarSetJson, ApplyingADumpToADefaultSetReproducesIt) {
    CarSetDocument originalDocument;
    CarSet& original = originalDocument.set;
    test::scramble(original, 7);
    original.jams[30].status = kAssetExternal;
    setFieldText(original.jams[30].path, "/pics/\xE9t\xE9.bmp");
    original.recountAssets();
    Json dump = carSetToJson(originalDocument);

    CarSetDocument targetDocument;
    CarSet& target = targetDocument.set;
    ASSERT_TRUE(applyCarSetJson(targetDocument, dump));
    test::expectSameStoredData(original, target);
    EXPECT_EQ(target.jams[30].status, kAssetExternal);
    EXPECT_EQ(target.jams[30].path, original.jams[30].path);
    EXPECT_EQ(target.jamCount, 1);
    EXPECT_TRUE(targetDocument.state.dirty);
    // A dump of the result is the same but for the document state.
    Json again = carSetToJson(targetDocument);
    dump.erase("document");
    again.erase("document");
    EXPECT_EQ(again, dump);
}

TEST(CarSetJson, OnlyNamedFieldsChange) {
    CarSetDocument setDocument;
    CarSet& set = setDocument.set;
    test::scramble(set, 3);
    CarSet expected = set;
    Json patch = Json::parse(R"({"teams": [{}, {"powerRace": 900, "teamBytesB": [1, 2]}],
                                 "drivers": [{"number": 1, "name": "Jos\u00e9"}], "cameras": [-1],
                                 "carNumberLayout": [9]})");
    ASSERT_TRUE(applyCarSetJson(setDocument, patch));
    expected.teams[1].powerRace = 900;
    expected.teams[1].teamBytesB[0] = 1;
    expected.teams[1].teamBytesB[1] = 2;
    setFieldText(expected.drivers[1].name, "Jos\xE9");
    expected.settings.words[44] = 0xFFFF;
    expected.carNumbers.partA[0] = 9;
    test::expectSameStoredData(expected, set);
}

TEST(CarSetJson, TextEqualToTheFieldKeepsBytesBehindItsTerminator) {
    CarSetDocument setDocument;
    CarSet& set = setDocument.set;
    set.menuHelmets[4].status = kAssetStored;
    set.menuHelmets[4].path[2] = 4;   // a slot reference, not text
    Json patch = carSetToJson(setDocument);
    ASSERT_TRUE(applyCarSetJson(setDocument, patch));
    EXPECT_EQ(set.menuHelmets[4].path[2], 4);
    ASSERT_TRUE(applyCarSetJson(setDocument, Json::parse(R"({"assets": {"menuHelmets": [{}, {}, {}, {}, {"path": "x"}]}})")));
    EXPECT_EQ(set.menuHelmets[4].path[0], 'x');
    EXPECT_EQ(set.menuHelmets[4].path[2], 0);
}

TEST(CarSetJson, ValuesThatDoNotFitAreRefusedByName) {
    const std::pair<const char*, const char*> cases[] = {
        {R"({"teams": [{}, {}, {}, {"name": "ABCDEFGHIJKLM"}]})", "teams[3].name"},             // 13 > 12
        {R"({"teams": [{"engine": "\u0100"}]})", "teams[0].engine"},                             // not in 1252
        {R"({"teams": [{"name": "a\u0000b"}]})", "teams[0].name"},
        {R"({"teams": [{"powerRace": 65536}]})", "teams[0].powerRace"},
        {R"({"teams": [{"powerQual": -1}]})", "teams[0].powerQual"},
        {R"({"teams": [{"failureProbability": 32768}]})", "teams[0].failureProbability"},
        {R"({"teams": [{"powerRace": 1.5}]})", "teams[0].powerRace"},
        {R"({"teams": [{"powerRace": "760"}]})", "teams[0].powerRace"},
        {R"({"teams": [{"driver": [1, 41]}]})", "teams[0].driver[1]"},
        {R"({"teams": [{"teamBytesA": [1, 2, 3, 4]}]})", "teams[0].teamBytesA"},
        {R"({"teams": [{"teamBytesB": [256]}]})", "teams[0].teamBytesB[0]"},
        {R"({"teams": [{"teamOrder": 256}]})", "teams[0].teamOrder"},
        {R"({"teams": [{"carBitmap": {"status": 5}}]})", "teams[0].carBitmap.status"},
        {R"({"teams": [{"powerrace": 1}]})", "teams[0].powerrace"},
        {R"({"teams": [7]})", "teams[0]"},
        {R"({"drivers": [{}, {"number": 3}]})", "drivers[1].number"},
        {R"({"drivers": [{"name": "123456789012345678901234"}]})", "drivers[0].name"},   // 24 > 23
        {R"({"drivers": [{"gripRandom": 70000}]})", "drivers[0].gripRandom"},
        {R"({"cameras": [0, 0, 0, 0, 0, -32769]})", "cameras[5]"},
        {R"({"cameras": [0, 0, 0, 0, 0, 0, -1]})", "cameras[6]"},                       // tuning is unsigned
        {R"({"damage": [32768]})", "damage[0]"},
        {R"({"laps": [65536]})", "laps[0]"},
        {R"({"points": [0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0]})",
         "points"},
        {R"({"carNumberLayout": [300]})", "carNumberLayout[0]"},
        {R"({"hasInformation": 1})", "hasInformation"},
        {R"({"assets": {"jams": [{"path": 5}]}})", "assets.jams[0].path"},
        {R"({"assets": {"helmets": []}})", "assets.helmets"},
        {R"({"document": {"currentTeam": 14}})", "document.currentTeam"},
        {R"({"format": "other"})", "format"},
        {R"({"version": 2})", "version"},
        {R"({"colour": 1})", "colour"},
    };
    CarSetDocument setDocument;
    CarSet& set = setDocument.set;
    test::scramble(set, 11);
    const Json before = carSetToJson(setDocument);
    for (auto [patch, field] : cases) {
        // A good change ahead of the bad one must not be kept either.
        Json j = Json::parse(patch);
        j["information"] = "changed";
        Status status = applyCarSetJson(setDocument, j);
        ASSERT_FALSE(status) << patch;
        EXPECT_EQ(messageText(status.error()), "Invalid value for " + std::string(field) + ".") << patch;
        EXPECT_EQ(carSetToJson(setDocument), before) << patch;
    }
    std::string longText(kInformationMax + 1, 'i');
    EXPECT_FALSE(applyCarSetJson(setDocument, Json{{"information", longText}}));
    longText.pop_back();
    EXPECT_TRUE(applyCarSetJson(setDocument, Json{{"information", longText}}));
}

}  // namespace
}  // namespace tarvel::cli
