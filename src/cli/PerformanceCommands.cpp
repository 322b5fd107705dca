#include "CarSetJson.h"
#include "Cli.h"

#include "carset/CarSet.h"
#include "common/CodePage.h"
#include "performance/Calculators.h"
#include "performance/SeasonOdds.h"

#include <charconv>
#include <cstdio>
#include <optional>
#include <ostream>

namespace tarvel::cli {
namespace {

// The calculator options of `grid` and `race`; what is left goes to
// parseArguments.
struct CalculatorArguments {
    CalculatorOptions options;
    std::uint32_t seed = 0;
    bool json = false;
    std::optional<std::uint64_t> runs;
    std::vector<std::string> rest;
};

template <class T>
std::optional<T> wholeNumber(const std::string& text) {
    T value{};
    auto [end, ec] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (text.empty() || ec != std::errc() || end != text.data() + text.size()) return std::nullopt;
    return value;
}

// nullopt on an option given twice, without its value or with a bad one, or
// one the command does not take.
std::optional<CalculatorArguments> parseCalculatorArguments(const std::vector<std::string>& args, bool race) {
    CalculatorArguments parsed;
    bool seen[5] = {};
    auto once = [&](int which) { return !std::exchange(seen[which], true); };
    for (std::size_t i = 0; i < args.size(); ++i) {
        const std::string& a = args[i];
        const bool hasValue = i + 1 < args.size();
        if (a == "--random-grip") {
            if (!once(0)) return std::nullopt;
            parsed.options.randomGrip = true;
        } else if (a == "--car-failure" && race) {
            if (!once(1)) return std::nullopt;
            parsed.options.carFailure = true;
        } else if (a == "--json") {
            if (!once(2)) return std::nullopt;
            parsed.json = true;
        } else if (a == "--seed") {
            auto seed = hasValue ? wholeNumber<std::uint32_t>(args[++i]) : std::nullopt;
            if (!once(3) || !seed) return std::nullopt;
            parsed.seed = *seed;
        } else if (a == "--runs" && race) {
            auto runs = hasValue ? wholeNumber<std::uint64_t>(args[++i]) : std::nullopt;
            if (!once(4) || !runs || *runs < 1) return std::nullopt;
            parsed.runs = *runs;
        } else {
            parsed.rest.push_back(a);
        }
    }
    return parsed;
}

Json entryToJson(const CarEntry& e) {
    return Json{{"slot", e.slot},
                {"driver", windows1252ToUtf8(e.driverText())},
                {"team", windows1252ToUtf8(e.teamText())},
                {"power", e.power},
                {"grip", e.grip},
                {"failure", e.failure},
                {"gap", std::string(e.gapText())},
                {"label", std::string(e.labelText())},
                {"disabled", e.disabled},
                {"dnq", e.dnq},
                {"dnf", e.dnf}};
}

void printTable(Context& context, const WorkingTable& table) {
    Json entries = Json::array();
    for (const CarEntry& e : table.entries) entries.push_back(entryToJson(e));
    context.out << Json{{"entries", entries}}.dump(2) << "\n";
}

// One line per car shown: label, driver, team text, gap.
void printLines(Context& context, const WorkingTable& table, bool grid) {
    const auto shown = table.shownEntries();
    for (std::size_t i = 0; i < shown.size(); ++i) {
        const CarEntry& e = shown[i];
        std::array<char, 8> buffer{};
        std::string_view label;
        if (grid) label = context.config.niceGrid ? e.labelText() : textGridLabel(int(i), buffer);
        context.out << label << '\t' << windows1252ToUtf8(e.driverText()) << '\t' << windows1252ToUtf8(e.teamText())
                    << '\t' << e.gapText() << '\n';
    }
}

std::string share(std::uint64_t count, std::uint64_t runs) {
    char text[32];
    std::snprintf(text, sizeof text, "%.1f%%", 100.0 * double(count) / double(runs));
    return text;
}

void printSeason(Context& context, const SeasonOdds& odds, bool json) {
    if (json) {
        Json cars = Json::array();
        for (const CarOdds& c : odds.cars)
            cars.push_back(Json{{"slot", c.slot},
                                {"driver", windows1252ToUtf8(c.driver)},
                                {"team", windows1252ToUtf8(c.team)},
                                {"wins", c.wins},
                                {"podiums", c.podiums},
                                {"points", c.points},
                                {"dnf", c.dnf},
                                {"dnq", c.dnq},
                                {"positionSum", c.positionSum}});
        context.out << Json{{"runs", odds.runs}, {"cars", cars}}.dump(2) << "\n";
        return;
    }
    context.out << "driver\tteam\twins\tpodiums\tpoints\tDNF\tDNQ\tmean place\n";
    for (const CarOdds& c : bestFirst(odds)) {
        char mean[32];
        std::snprintf(mean, sizeof mean, "%.2f", double(c.positionSum) / double(odds.runs));
        context.out << windows1252ToUtf8(c.driver) << '\t' << windows1252ToUtf8(c.team) << '\t'
                    << share(c.wins, odds.runs) << '\t' << share(c.podiums, odds.runs) << '\t'
                    << share(c.points, odds.runs) << '\t' << share(c.dnf, odds.runs) << '\t'
                    << share(c.dnq, odds.runs) << '\t' << mean << '\n';
    }
}

int runCalculator(Context& context, const std::vector<std::string>& args, bool race) {
    auto options = parseCalculatorArguments(args, race);
    if (!options) return usageError(context);
    auto parsed = parseArguments(options->rest, 1);
    if (!parsed) return usageError(context);
    auto document = loadSet(context, parsed->positional[0]);
    if (!document) return kExitFailed;

    const CarSet& set = document->set;
    Rand rand(options->seed);
    if (options->runs) {
        const std::span points(set.settings.range(settings::kPoints), std::size_t(settings::kPoints.count));
        printSeason(context, runSeason(set.teams, set.drivers, points, options->options, *options->runs, rand),
                    options->json);
        return kExitOk;
    }
    const WorkingTable table = race ? computeRace(set.teams, set.drivers, options->options, rand)
                                    : computeGrid(set.teams, set.drivers, options->options.randomGrip, rand);
    if (options->json)
        printTable(context, table);
    else
        printLines(context, table, !race);
    return kExitOk;
}

int runGrid(Context& context, const std::vector<std::string>& args) { return runCalculator(context, args, false); }
int runRace(Context& context, const std::vector<std::string>& args) { return runCalculator(context, args, true); }

}  // namespace

std::vector<Command> performanceCommands() {
    return {
        {"grid", "SET.GP2 [--random-grip] [--seed N] [--json]", "predicts the starting grid",
         "Predicts the starting grid from the teams' qualifying power and the drivers'\n"
         "qualifying grip: one line per car shown, tab-separated: position label, driver,\n"
         "team (and engine), gap to the pole in percent. The labels are the window's:\n"
         "\"POLE\", \"ROW n\", \"DNQ\", or with NiceGrid=0 \"1)\" ... \"26)\", then \"DNQ\".\n"
         "--random-grip takes each driver's random grip range into account; --seed N\n"
         "seeds the random numbers (default 0); --json writes the whole working table.",
         runGrid},
        {"race", "SET.GP2 [--runs N] [--random-grip] [--car-failure] [--seed N] [--json]",
         "predicts the race result, or the odds of many races",
         "Predicts the finishing order from the race power and grip: one line per car\n"
         "shown, tab-separated: an empty label, driver, team (and engine), gap in\n"
         "percent, \"DNF\" or \"DNQ\". --car-failure lets cars fail by their failure\n"
         "probability and keeps the grid's two non-qualifiers out. --runs N runs N races\n"
         "in a row (N at least 1) and prints per car the share of wins, podiums, points\n"
         "finishes, DNFs and DNQs and the mean place, best first (--json: the counts, in\n"
         "slot order). --seed N seeds the random numbers (default 0).",
         runRace},
    };
}

}  // namespace tarvel::cli
