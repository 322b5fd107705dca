// Picture commands: team liveries and the helmet sheet of a car set, the
// game's JAM files and its driver menu helmets.
#include "Cli.h"

#include "carset/CarSet.h"
#include "carset/CarSetFile.h"
#include "carset/CarSetPictures.h"
#include "common/FileIO.h"
#include "common/Progress.h"
#include "graphics/Bitmap.h"
#include "graphics/Jam.h"
#include "graphics/JamCatalogue.h"
#include "graphics/MenuHelmet.h"

#include <charconv>
#include <cstdio>
#include <optional>
#include <ostream>

namespace tarvel::cli {
namespace {

std::optional<int> parseNumber(const std::string& text, int low, int high) {
    int value = 0;
    auto [end, ec] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (ec != std::errc() || end != text.data() + text.size() || value < low || value > high) return std::nullopt;
    return value;
}

// Progress on standard error, one line redrawn in place.
class TerminalProgress : public Progress {
public:
    explicit TerminalProgress(std::ostream& err) : err_(err) {}
    ~TerminalProgress() override {
        if (shown_) err_ << "\n";
    }
    void setFile(std::string_view name) override {
        file_ = std::string(name);
        show();
    }
    void setSubImage(int index, int count) override {
        char text[32];
        std::snprintf(text, sizeof text, "%.2d / %.2d", index, count);
        image_ = text;
        show();
    }
    void setColours(int found, int max) override {
        char text[48];
        std::snprintf(text, sizeof text, "%.3d      [max:%.3d]", found, max);
        colours_ = text;
        show();
    }
    void beep() override { err_ << '\a'; }

private:
    void show() {
        err_ << "\r" << file_ << "  " << image_ << "  " << colours_ << "   " << std::flush;
        shown_ = true;
    }
    std::ostream& err_;
    std::string file_, image_, colours_;
    bool shown_ = false;
};

struct ProgressChoice {
    explicit ProgressChoice(Context& context) {
        if (context.progressToTerminal) terminal.emplace(context.err);
    }
    Progress* get() { return terminal ? &*terminal : nullptr; }
    std::optional<TerminalProgress> terminal;
};

int finish(Context& context, const Status& status) { return status ? kExitOk : failed(context, status.error()); }

constexpr std::string_view kLiveryExportUsage = "livery export SET TEAM OUT.BMP";
constexpr std::string_view kLiveryImportUsage = "livery import SET TEAM IN.BMP -o OUT.GP2";
constexpr std::string_view kHelmetsExportUsage = "helmets export SET OUT.BMP";
constexpr std::string_view kHelmetsImportUsage = "helmets import SET IN.BMP -o OUT.GP2";
constexpr std::string_view kJamInfoUsage = "jam info NUMBER";
constexpr std::string_view kJamScrambleUsage = "jam scramble IN OUT";
constexpr std::string_view kJamDecodeUsage = "jam decode --game DIR NUMBER OUT.BMP";
constexpr std::string_view kJamPatchUsage = "jam patch --game DIR NUMBER IN.BMP";
constexpr std::string_view kMenuDecodeUsage = "menuhelmet decode --game DIR SLOT OUT.BMP";
constexpr std::string_view kMenuPatchUsage = "menuhelmet patch --game DIR SLOT IN.BMP";

int runLiveryExport(Context& context, const std::vector<std::string>& args) {
    auto parsed = parseArguments(args, 3);
    if (!parsed) return usageError(context, kLiveryExportUsage);
    auto team = parseNumber(parsed->positional[1], 0, kRacingTeams - 1);
    if (!team) return usageError(context, kLiveryExportUsage);
    auto set = loadSet(context, parsed->positional[0]);
    if (!set) return kExitFailed;
    return finish(context, saveTeamLivery(*set, *team, parsed->positional[2], graphicsOptions(context.config)));
}

int runLiveryImport(Context& context, const std::vector<std::string>& args) {
    auto parsed = parseArguments(args, 3, kOptionOutputRequired);
    if (!parsed) return usageError(context, kLiveryImportUsage);
    auto team = parseNumber(parsed->positional[1], 0, kRacingTeams - 1);
    if (!team) return usageError(context, kLiveryImportUsage);
    auto set = loadSet(context, parsed->positional[0]);
    if (!set) return kExitFailed;
    Status loaded = loadTeamLivery(*set, *team, parsed->positional[2]);
    if (!loaded) return failed(context, loaded.error());
    return finish(context, saveCarSet(*set, *parsed->output, fileOptions(context)));
}

int runHelmetsExport(Context& context, const std::vector<std::string>& args) {
    auto parsed = parseArguments(args, 2);
    if (!parsed) return usageError(context, kHelmetsExportUsage);
    auto set = loadSet(context, parsed->positional[0]);
    if (!set) return kExitFailed;
    return finish(context, saveHelmetSheetFile(*set, parsed->positional[1], graphicsOptions(context.config)));
}

int runHelmetsImport(Context& context, const std::vector<std::string>& args) {
    auto parsed = parseArguments(args, 2, kOptionOutputRequired);
    if (!parsed) return usageError(context, kHelmetsImportUsage);
    auto set = loadSet(context, parsed->positional[0]);
    if (!set) return kExitFailed;
    Status loaded = loadHelmetSheetFile(*set, parsed->positional[1]);
    if (!loaded) return failed(context, loaded.error());
    return finish(context, saveCarSet(*set, *parsed->output, fileOptions(context)));
}

int runJamInfo(Context& context, const std::vector<std::string>& args) {
    auto parsed = parseArguments(args, 1);
    if (!parsed) return usageError(context, kJamInfoUsage);
    auto number = parseNumber(parsed->positional[0], 0, kJamCatalogueSize - 1);
    if (!number) return usageError(context, kJamInfoUsage);
    const JamFileInfo info = JamInfo(*number);
    context.out << info.cataloguePath << " " << info.canvasHeight << " " << info.imageCount << " " << info.maxPalette
                << "\n";
    return kExitOk;
}

int runJamScramble(Context& context, const std::vector<std::string>& args) {
    auto parsed = parseArguments(args, 2);
    if (!parsed) return usageError(context, kJamScrambleUsage);
    auto bytes = readWholeFile(parsed->positional[0]);
    if (!bytes) return failed(context, Message{MessageId::FileNotFound, parsed->positional[0]});
    JamScramble(*bytes);
    if (!writeFileAtomically(parsed->positional[1], *bytes))
        return failed(context, Message{MessageId::CouldntWriteFile, parsed->positional[1]});
    return kExitOk;
}

int runJamDecode(Context& context, const std::vector<std::string>& args) {
    auto parsed = parseArguments(args, 2, kOptionGame);
    if (!parsed) return usageError(context, kJamDecodeUsage);
    auto number = parseNumber(parsed->positional[0], 0, kJamCatalogueSize - 1);
    if (!number) return usageError(context, kJamDecodeUsage);
    ProgressChoice progress(context);
    return finish(context, ExportJamToBitmap(*parsed->game, *number, parsed->positional[1],
                                             graphicsOptions(context.config), progress.get()));
}

int runJamPatch(Context& context, const std::vector<std::string>& args) {
    auto parsed = parseArguments(args, 2, kOptionGame);
    if (!parsed) return usageError(context, kJamPatchUsage);
    auto number = parseNumber(parsed->positional[0], 0, kJamCatalogueSize - 1);
    if (!number) return usageError(context, kJamPatchUsage);
    auto bitmap = LoadBitmap8(parsed->positional[1], kJamCanvasWidth, JamInfo(*number).canvasHeight);
    if (!bitmap) return failed(context, bitmap.error());
    ProgressChoice progress(context);
    return finish(context, PatchGameJam(*parsed->game, *bitmap, *number, graphicsOptions(context.config), progress.get()));
}

int runMenuDecode(Context& context, const std::vector<std::string>& args) {
    auto parsed = parseArguments(args, 2, kOptionGame);
    if (!parsed) return usageError(context, kMenuDecodeUsage);
    auto slot = parseNumber(parsed->positional[0], 0, kMenuHelmetCount - 1);
    if (!slot) return usageError(context, kMenuDecodeUsage);
    ProgressChoice progress(context);
    return finish(context, ImportMenuHelmetFromGame(*parsed->game, *slot, parsed->positional[1], progress.get()));
}

int runMenuPatch(Context& context, const std::vector<std::string>& args) {
    auto parsed = parseArguments(args, 2, kOptionGame);
    if (!parsed) return usageError(context, kMenuPatchUsage);
    auto slot = parseNumber(parsed->positional[0], 0, kMenuHelmetCount - 1);
    if (!slot) return usageError(context, kMenuPatchUsage);
    // Menu pictures carry the menu palette: their pixels are taken as they are.
    auto bitmap = LoadBitmap8(parsed->positional[1], kMenuHelmetSide, kMenuHelmetSide, false);
    if (!bitmap) return failed(context, bitmap.error());
    ProgressChoice progress(context);
    return finish(context, ExportMenuHelmetToGame(*parsed->game, *slot, *bitmap, progress.get()));
}

}  // namespace

std::vector<Command> graphicsCommands() {
    return {
        {"livery export", kLiveryExportUsage.substr(14), "write a team's livery as a 256 x 164 bitmap",
         "Writes team TEAM's (0-13) car livery of the car set SET as an 8-bit bitmap in the game palette.",
         runLiveryExport},
        {"livery import", kLiveryImportUsage.substr(14), "take a team's livery from a bitmap",
         "Loads a 256 x 164 8-bit bitmap as team TEAM's (0-13) livery and saves the car set as OUT.GP2.",
         runLiveryImport},
        {"helmets export", kHelmetsExportUsage.substr(15), "write the helmet sheet as a 256 x 180 bitmap",
         "Writes the car set's helmet sheet (28 helmets of 74 x 15) as an 8-bit bitmap.", runHelmetsExport},
        {"helmets import", kHelmetsImportUsage.substr(15), "take the helmet sheet from a bitmap",
         "Loads a 256 x 180 8-bit bitmap as the helmet sheet and saves the car set as OUT.GP2.", runHelmetsImport},
        {"jam info", kJamInfoUsage.substr(9), "catalogue entry of a game JAM file",
         "Prints the path below GAMEJAMS, canvas height, image count and max palette of JAM file NUMBER (0-217).",
         runJamInfo},
        {"jam scramble", kJamScrambleUsage.substr(13), "scramble or unscramble a JAM file",
         "Applies the game's JAM scrambling to the whole file IN and writes OUT (the operation is its own inverse).",
         runJamScramble},
        {"jam decode", kJamDecodeUsage.substr(11), "convert a game JAM file to a bitmap",
         "Converts the game's JAM file NUMBER (0-217) in DIR to a 256-wide 8-bit bitmap.\n"
         "Uses the ClearJam and GP2Palette settings.",
         runJamDecode},
        {"jam patch", kJamPatchUsage.substr(10), "rebuild a game JAM file from a bitmap",
         "Rebuilds the game's JAM file NUMBER (0-217) in DIR, in place, from a 256-wide 8-bit bitmap of its\n"
         "canvas height. Uses the FixStrip and FixGreen settings.",
         runJamPatch},
        {"menuhelmet decode", kMenuDecodeUsage.substr(18), "write a driver menu helmet as a bitmap",
         "Writes menu helmet SLOT (0-27) of the game's BITMAPS\\F1PCSVGA.BIN as a 104 x 104 bitmap.", runMenuDecode},
        {"menuhelmet patch", kMenuPatchUsage.substr(17), "replace a driver menu helmet from a bitmap",
         "Codes a 104 x 104 8-bit bitmap and replaces menu helmet SLOT (0-27) of the game's F1PCSVGA.BIN in place.",
         runMenuPatch},
    };
}

}  // namespace tarvel::cli
