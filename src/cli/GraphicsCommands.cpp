// Picture commands: team liveries and the helmet sheet of a car set, the
// game's JAM files and its driver menu helmets.
#include "Cli.h"
#include "TerminalProgress.h"

#include "carset/CarSet.h"
#include "carset/CarSetFile.h"
#include "carset/CarSetPictures.h"
#include "common/FileIO.h"
#include "graphics/Bitmap.h"
#include "graphics/Jam.h"
#include "graphics/JamCatalogue.h"
#include "graphics/MenuHelmet.h"
#include "graphics/PaletteMapping.h"

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

int finish(Context& context, const Status& status) { return status ? kExitOk : failed(context, status.error()); }

// A picture named on the command line: an 8-bit bitmap by its indices, or
// with --remap any picture the reader takes, its colours mapped.
Result<BitmapBuffer> loadPicture(const Arguments& parsed, const std::string& path, int width, int height,
                                 PicturePalette palette = PicturePalette::Game) {
    RemapOptions options{.remap = parsed.remap, .dither = parsed.dither, .palette = palette};
    options.hint = "use --remap to map its colours to the " + std::string(paletteName(palette)) + " palette";
    return LoadPictureForGame(path, width, height, options);
}

int runLiveryExport(Context& context, const std::vector<std::string>& args) {
    auto parsed = parseArguments(args, 3);
    if (!parsed) return usageError(context);
    auto team = parseNumber(parsed->positional[1], 0, kRacingTeams - 1);
    if (!team) return usageError(context);
    auto set = loadSet(context, parsed->positional[0]);
    if (!set) return kExitFailed;
    return finish(context, saveTeamLivery(set->set, *team, parsed->positional[2], graphicsOptions(context.config)));
}

int runLiveryImport(Context& context, const std::vector<std::string>& args) {
    auto parsed = parseArguments(args, 3, kOptionOutputRequired | kOptionRemap);
    if (!parsed) return usageError(context);
    auto team = parseNumber(parsed->positional[1], 0, kRacingTeams - 1);
    if (!team) return usageError(context);
    return editSet(context, parsed->positional[0], *parsed->output, [&](CarSetDocument& document) -> Status {
        auto livery = loadPicture(*parsed, parsed->positional[2], kLiveryWidth, kLiveryHeight);
        if (!livery) return fail(livery.error());
        return takeTeamLivery(document.set, *team, *livery, parsed->positional[2]);
    });
}

int runHelmetsExport(Context& context, const std::vector<std::string>& args) {
    auto parsed = parseArguments(args, 2);
    if (!parsed) return usageError(context);
    auto set = loadSet(context, parsed->positional[0]);
    if (!set) return kExitFailed;
    return finish(context, saveHelmetSheetFile(set->set, parsed->positional[1], graphicsOptions(context.config)));
}

int runHelmetsImport(Context& context, const std::vector<std::string>& args) {
    auto parsed = parseArguments(args, 2, kOptionOutputRequired | kOptionRemap);
    if (!parsed) return usageError(context);
    return editSet(context, parsed->positional[0], *parsed->output, [&](CarSetDocument& document) -> Status {
        auto sheet = loadPicture(*parsed, parsed->positional[1], kHelmetSheetWidth, kHelmetSheetHeight);
        if (!sheet) return fail(sheet.error());
        if (!setHelmetSheetPixels(document.set, *sheet)) return fail(MessageId::CouldntLoadBitmap);
        return {};
    });
}

int runJamInfo(Context& context, const std::vector<std::string>& args) {
    auto parsed = parseArguments(args, 1);
    if (!parsed) return usageError(context);
    auto number = parseNumber(parsed->positional[0], 0, kJamCatalogueSize - 1);
    if (!number) return usageError(context);
    const JamFileInfo info = JamInfo(*number);
    context.out << info.cataloguePath << " " << info.canvasHeight << " " << info.imageCount << " " << info.maxPalette
                << "\n";
    return kExitOk;
}

int runJamScramble(Context& context, const std::vector<std::string>& args) {
    auto parsed = parseArguments(args, 2);
    if (!parsed) return usageError(context);
    auto bytes = readWholeFile(parsed->positional[0]);
    if (!bytes) return failed(context, Message{MessageId::FileNotFound, parsed->positional[0]});
    JamScramble(*bytes);
    if (!writeFileAtomically(parsed->positional[1], *bytes))
        return failed(context, Message{MessageId::CouldntWriteFile, parsed->positional[1]});
    return kExitOk;
}

int runJamDecode(Context& context, const std::vector<std::string>& args) {
    auto parsed = parseArguments(args, 2, kOptionGame);
    if (!parsed) return usageError(context);
    auto number = parseNumber(parsed->positional[0], 0, kJamCatalogueSize - 1);
    if (!number) return usageError(context);
    TerminalProgress progress(context, TerminalProgress::InPlace);
    return finish(context, ExportJamToBitmap(*parsed->game, *number, parsed->positional[1],
                                             graphicsOptions(context.config), progress.shown()));
}

int runJamPatch(Context& context, const std::vector<std::string>& args) {
    auto parsed = parseArguments(args, 2, kOptionGame | kOptionRemap);
    if (!parsed) return usageError(context);
    auto number = parseNumber(parsed->positional[0], 0, kJamCatalogueSize - 1);
    if (!number) return usageError(context);
    auto bitmap = loadPicture(*parsed, parsed->positional[1], kJamCanvasWidth, JamInfo(*number).canvasHeight);
    if (!bitmap) return failed(context, bitmap.error());
    TerminalProgress progress(context, TerminalProgress::InPlace);
    return finish(context, PatchGameJam(*parsed->game, *bitmap, *number, graphicsOptions(context.config), progress.shown()));
}

int runMenuDecode(Context& context, const std::vector<std::string>& args) {
    auto parsed = parseArguments(args, 2, kOptionGame);
    if (!parsed) return usageError(context);
    auto slot = parseNumber(parsed->positional[0], 0, kMenuHelmetCount - 1);
    if (!slot) return usageError(context);
    TerminalProgress progress(context, TerminalProgress::InPlace);
    return finish(context, ImportMenuHelmetFromGame(*parsed->game, *slot, parsed->positional[1], progress.shown()));
}

int runMenuPatch(Context& context, const std::vector<std::string>& args) {
    auto parsed = parseArguments(args, 2, kOptionGame | kOptionRemap);
    if (!parsed) return usageError(context);
    auto slot = parseNumber(parsed->positional[0], 0, kMenuHelmetCount - 1);
    if (!slot) return usageError(context);
    // Menu pictures carry the menu palette: their pixels are taken as they
    // are, or their colours mapped to it.
    auto bitmap = loadPicture(*parsed, parsed->positional[1], kMenuHelmetSide, kMenuHelmetSide, PicturePalette::Menu);
    if (!bitmap) return failed(context, bitmap.error());
    TerminalProgress progress(context, TerminalProgress::InPlace);
    return finish(context, ExportMenuHelmetToGame(*parsed->game, *slot, *bitmap, progress.shown()));
}

}  // namespace

// The picture commands' common help on --remap, for the game or menu palette.
#define REMAP_HELP(palette)                                                           \
    "\nWith --remap it also takes a 24- or 32-bit BMP or a PNG, mapping its colours\n" \
    "to the " palette " palette (nearest colour, or Floyd-Steinberg dithering with\n"   \
    "--dither); an 8-bit bitmap then has its colours mapped, not its indices taken."

std::vector<Command> graphicsCommands() {
    return {
        {"livery export", "SET TEAM OUT.BMP", "writes a team's livery as a 256 x 164 bitmap",
         "Writes team TEAM's (0-13) car livery of the car set SET as an 8-bit bitmap in\n"
         "the game palette.",
         runLiveryExport},
        {"livery import", "SET TEAM IN.BMP -o OUT.GP2 [--remap [--dither]]", "takes a team's livery from a bitmap",
         "Loads a 256 x 164 8-bit bitmap as team TEAM's (0-13) livery and saves the car\n"
         "set as OUT.GP2." REMAP_HELP("game"),
         runLiveryImport},
        {"helmets export", "SET OUT.BMP", "writes the helmet sheet as a 256 x 180 bitmap",
         "Writes the car set's helmet sheet (28 helmets of 74 x 15) as an 8-bit bitmap.", runHelmetsExport},
        {"helmets import", "SET IN.BMP -o OUT.GP2 [--remap [--dither]]", "takes the helmet sheet from a bitmap",
         "Loads a 256 x 180 8-bit bitmap as the helmet sheet and saves the car set as\n"
         "OUT.GP2." REMAP_HELP("game"),
         runHelmetsImport},
        {"jam info", "NUMBER", "prints the catalogue entry of a game JAM file",
         "Prints the path below GAMEJAMS, canvas height, image count and max palette of\n"
         "JAM file NUMBER (0-217).",
         runJamInfo},
        {"jam scramble", "IN OUT", "scrambles or unscrambles a JAM file",
         "Applies the game's JAM scrambling to the whole file IN and writes OUT (the\n"
         "operation is its own inverse).",
         runJamScramble},
        {"jam decode", "--game DIR NUMBER OUT.BMP", "converts a game JAM file to a bitmap",
         "Converts the game's JAM file NUMBER (0-217) in DIR to a 256-wide 8-bit bitmap.\n"
         "Uses the ClearJam and GP2Palette settings.",
         runJamDecode},
        {"jam patch", "--game DIR NUMBER IN.BMP [--remap [--dither]]", "rebuilds a game JAM file from a bitmap",
         "Rebuilds the game's JAM file NUMBER (0-217) in DIR, in place, from a 256-wide\n"
         "8-bit bitmap of its canvas height. Uses the FixStrip and FixGreen settings." REMAP_HELP("game"),
         runJamPatch},
        {"menuhelmet decode", "--game DIR SLOT OUT.BMP", "writes a driver menu helmet as a bitmap",
         "Writes menu helmet SLOT (0-27) of the game's BITMAPS\\F1PCSVGA.BIN as a\n"
         "104 x 104 bitmap.",
         runMenuDecode},
        {"menuhelmet patch", "--game DIR SLOT IN.BMP [--remap [--dither]]", "replaces a driver menu helmet from a bitmap",
         "Codes a 104 x 104 8-bit bitmap and replaces menu helmet SLOT (0-27) of the\n"
         "game's F1PCSVGA.BIN in place." REMAP_HELP("menu"),
         runMenuPatch},
    };
}

}  // namespace tarvel::cli
