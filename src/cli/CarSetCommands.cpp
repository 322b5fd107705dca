#include "CarSetJson.h"
#include "Cli.h"

#include "carset/CarSet.h"
#include "carset/CarSetFile.h"
#include "common/FileIO.h"

#include <algorithm>
#include <iostream>
#include <iterator>
#include <optional>
#include <sstream>

namespace tarvel::cli {
namespace {

void printNotices(Context& context, const std::vector<Message>& notices) {
    for (const Message& m : notices) context.err << messageText(m) << "\n";
}


// "line L, column C" of the character at 1-based byte `byte` (one past the
// end when the text ended too early).
std::string textPosition(std::string_view text, std::size_t byte) {
    const std::size_t at = std::min(byte == 0 ? 0 : byte - 1, text.size());
    const std::size_t lineStart = at == 0 ? std::string_view::npos : text.rfind('\n', at - 1);
    const auto line = 1 + std::count(text.begin(), text.begin() + std::ptrdiff_t(at), '\n');
    const std::size_t column = lineStart == std::string_view::npos ? at + 1 : at - lineStart;
    return "line " + std::to_string(line) + ", column " + std::to_string(column);
}

int runNew(Context& context, const std::vector<std::string>& args) {
    auto parsed = parseArguments(args, 1);
    if (!parsed) return usageError(context);
    CarSetDocument document;
    return saveSet(context, document, parsed->positional[0]);
}

int runCheck(Context& context, const std::vector<std::string>& args) {
    auto parsed = parseArguments(args, 1);
    if (!parsed) return usageError(context);
    std::vector<Message> notices;
    Result<int> version = checkCarSetFile(parsed->positional[0], fileOptions(context), &notices);
    printNotices(context, notices);
    if (!version) return failed(context, version.error());
    context.out << *version << "\n";
    return kExitOk;
}

int runDump(Context& context, const std::vector<std::string>& args) {
    auto parsed = parseArguments(args, 1, kOptionOutput);
    if (!parsed) return usageError(context);
    auto set = loadSet(context, parsed->positional[0]);
    if (!set) return kExitFailed;
    // A file name that is not UTF-8 must not stop the dump.
    std::string text = carSetToJson(*set).dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
    if (!parsed->output) {
        context.out << text;
        return kExitOk;
    }
    auto bytes = std::span(reinterpret_cast<const std::uint8_t*>(text.data()), text.size());
    if (!writeFileAtomically(*parsed->output, bytes)) return failed(context, {MessageId::CouldntWriteFile, *parsed->output});
    return kExitOk;
}

int runApply(Context& context, const std::vector<std::string>& args) {
    auto parsed = parseArguments(args, 2, kOptionOutputRequired);
    if (!parsed) return usageError(context);
    const std::string& patchPath = parsed->positional[1];

    std::string patchText;
    if (patchPath == "-") {
        if (!context.in) return failed(context, {MessageId::CouldntLoadFile, {}});
        patchText.assign(std::istreambuf_iterator<char>(*context.in), std::istreambuf_iterator<char>());
    } else {
        auto bytes = readWholeFile(patchPath);
        if (!bytes) return failed(context, {MessageId::FileNotFound, patchPath});
        patchText.assign(bytes->begin(), bytes->end());
    }
    Json patch;
    try {
        patch = Json::parse(patchText);
    } catch (const Json::parse_error& error) {
        return failed(context, {MessageId::NotValidJson, (patchPath == "-" ? std::string("standard input") : patchPath) +
                                                             ", " + textPosition(patchText, error.byte)});
    }
    if (!patch.is_object()) {
        failed(context, {MessageId::CouldntLoadFile, {}});
        context.err << "tarvel-cli: " << patchPath << " is not a JSON object\n";
        return kExitFailed;
    }

    return editSet(context, parsed->positional[0], *parsed->output,
                   [&](CarSetDocument& document) { return applyCarSetJson(document, patch); });
}

int runConvert(Context& context, const std::vector<std::string>& args) {
    auto parsed = parseArguments(args, 2);
    if (!parsed) return usageError(context);
    auto set = loadSet(context, parsed->positional[0]);
    if (!set) return kExitFailed;
    return saveSet(context, *set, parsed->positional[1]);
}

}  // namespace

std::vector<Command> carSetCommands() {
    return {
        {"new", "OUT.GP2", "writes the default car set",
         "Writes a new car set with the editor's defaults to OUT.GP2.", runNew},
        {"check", "FILE.GP2", "prints the format version of a car set file",
         "Prints the format version of FILE.GP2 (180, 170 or 160) and exits 0, or prints\n"
         "why the file cannot be read and exits 1. The checksum is verified unless\n"
         "\"CheckSum\" is 0 (--set CheckSum=0).",
         runCheck},
        {"dump", "FILE.GP2 [-o OUT.json]", "writes the car set as JSON",
         "Writes the car set as JSON to standard output or to OUT.json. Names are UTF-8;\n"
         "numbers are the stored values (grips as stored, signed words signed).",
         runDump},
        {"apply", "FILE.GP2 PATCH.json -o OUT.GP2", "overwrites the fields a JSON patch names and saves",
         "Loads FILE.GP2, overwrites every field that PATCH.json names (the shape of\n"
         "`dump`; arrays of objects match by position, absent fields stay) and saves\n"
         "the result as OUT.GP2. PATCH.json \"-\" reads standard input. A value that does\n"
         "not fit its field is refused with a message naming it, and nothing is saved.",
         runApply},
        {"convert", "IN.GP2 OUT.GP2", "loads any readable version and saves the current one",
         "Loads IN.GP2 (format 180, 170 or 160) and saves it as OUT.GP2 in format 180.", runConvert},
    };
}

}  // namespace tarvel::cli
