#include "game/GameExecutable.h"

#include "common/FileIO.h"
#include "common/Progress.h"
#include "common/PatchableFile.h"
#include "game/GameNames.h"
#include "game/GameVersion.h"
#include "game/StateFile.h"

#include <algorithm>
#include <optional>

namespace tarvel {
namespace {

constexpr int kSeats = kGameSeats;
constexpr int kNumberList = kSeats + 2 * kSpareSlots;   // 36
constexpr std::uint16_t kGripMin = fieldrange::kGrip.low;
constexpr std::uint16_t kGripMax = fieldrange::kGrip.high;
constexpr std::uint16_t kCapMax = fieldrange::kPositive.high;
constexpr std::uint16_t kSpareGrip = 30751;
constexpr std::uint16_t kSpareGripRange = 500;
constexpr std::string_view kExeName = "GP2.EXE";

struct Offsets {
    std::uint32_t qualPower, racePower, gripPair, gripRange, failure, numbers, numberMap, nameBlock, pitBox;
    explicit Offsets(int v)
        : qualPower(gameTableOffset(GameTable::QualifyingPower, v)),
          racePower(gameTableOffset(GameTable::RacePower, v)),
          gripPair(gameTableOffset(GameTable::GripPair, v)),
          gripRange(gameTableOffset(GameTable::GripRange, v)),
          failure(gameTableOffset(GameTable::FailureProbability, v)),
          numbers(gameTableOffset(GameTable::DriverNumbers, v)),
          numberMap(gameTableOffset(GameTable::NumberMap, v)),
          nameBlock(gameTableOffset(GameTable::NameBlock, v)),
          pitBox(gameTableOffset(GameTable::PitBoxOrder, v)) {}
};

bool validVersion(int v) { return v >= 0 && v < kGameReleaseCount; }

std::uint16_t clampGrip(std::uint16_t raw) { return std::clamp(raw, kGripMin, kGripMax); }

bool openExe(PatchableFile& file, const std::filesystem::path& gameFolder, PatchableFile::Mode mode, Progress* progress) {
    auto path = findGameFile(gameFolder, kExeName);
    if (!path) return false;
    if (progress) {
        // The last seven characters of the path: the file's own name.
        std::string text = path->filename().string();
        progress->setFile(text.size() > 7 ? std::string_view(text).substr(text.size() - 7) : std::string_view(text));
    }
    if (mode == PatchableFile::Update && !clearReadOnly(*path)) return false;
    return file.open(*path, mode);
}

// Gives every empty seat, and the eight spare places after the 28 seats, a free
// number counted down from 40; seats of the 14 teams filled this way become
// disabled cars.
void fillEmptySeats(CarSet& set) {
    std::array<int, kNumberList> list{};
    for (int i = 0; i < kRacingTeams; ++i)
        for (int seat = 0; seat < 2; ++seat) list[std::size_t(2 * i + seat)] = set.teams[std::size_t(i)].driver[std::size_t(seat)];
    // A seat that holds a driver in the game is not disabled, whatever the set
    // said before the import.
    for (int entry = 0; entry < kSeats; ++entry)
        if (list[std::size_t(entry)] != 0) set.teams[std::size_t(entry / 2)].disabled[std::size_t(entry % 2)] = 0;
    int candidate = kDriverNumbers;
    for (int entry = kNumberList - 1; entry >= 0; --entry) {
        if (list[std::size_t(entry)] != 0) continue;
        bool matched = true;
        while (matched) {
            matched = false;
            for (int value : list)
                if (value == candidate) {
                    --candidate;
                    matched = true;
                }
        }
        if (candidate < 1) break;   // cannot happen with 36 places and 40 numbers
        list[std::size_t(entry)] = candidate;
        DriverRecord& driver = set.drivers[std::size_t(candidate)];
        setFieldText(driver.name, messageText(MessageId::DriversName));
        driver.gripRace = kSpareGrip;
        driver.gripQual = kSpareGrip;
        driver.gripRandom = kSpareGripRange;
        driver.inUse = 1;
        if (entry < kSeats) set.teams[std::size_t(entry / 2)].disabled[std::size_t(entry % 2)] = 1;
        --candidate;
    }
    for (int entry = 0; entry < kNumberList; ++entry)
        set.teams[std::size_t(entry / 2)].driver[std::size_t(entry % 2)] = std::int16_t(list[std::size_t(entry)]);
}

Status readTables(CarSet& set, PatchableFile& file, const ExecutableTransferOptions& options) {
    const Offsets at(options.version);
    const auto readFailed = [] { return fail(MessageId::CouldntReadGp2Exe); };

    if (!options.useStateFile) {
        std::array<std::uint8_t, kSeats> raw{};
        if (!file.read(at.numbers, raw)) return readFailed();
        if (!driverNumbersValid(raw)) return fail(MessageId::BadDriverNumbers);
    }
    for (int i = 0; i < kRacingTeams; ++i) {
        TeamRecord& team = set.teams[std::size_t(i)];
        if (!options.useStateFile) {
            std::array<std::uint8_t, kTeamNameSize> field{};
            if (!file.read(at.nameBlock + kTeamNamesInBlock + kTeamNameSize * std::uint32_t(i), field)) return readFailed();
            nameFromGame(field, team.name);
            if (!file.read(at.nameBlock + kEngineNamesInBlock + kTeamNameSize * std::uint32_t(i), field)) return readFailed();
            nameFromGame(field, team.engine);
        }
        std::uint16_t raw = 0;
        if (!file.readU16(at.racePower + 2u * std::uint32_t(i), raw)) return readFailed();
        team.powerRace = decodePower(raw);
        if (!file.readU16(at.qualPower + 2u * std::uint32_t(i), raw)) return readFailed();
        team.powerQual = decodePower(raw);
        if (!file.readU16(at.failure + 2u * std::uint32_t(i), raw)) return readFailed();
        team.failureProbability = std::min(raw, kCapMax);

        if (!options.useStateFile) {
            for (int seat = 0; seat < 2; ++seat) {
                std::uint8_t value = 0;
                if (!file.readU8(at.numbers + 2u * std::uint32_t(i) + std::uint32_t(seat), value)) return readFailed();
                bool flagged = value >= 129;
                if (flagged) value = std::uint8_t(value - 128);
                team.flagS[std::size_t(seat)] = flagged ? 1 : 0;
                team.driver[std::size_t(seat)] = value;
                if (value == 0 || value > kDriverNumbers) continue;
                std::array<std::uint8_t, kDriverNameSize> name{};
                if (!file.read(at.nameBlock + kDriverNameSize * std::uint32_t(value - 1), name)) return readFailed();
                nameFromGame(name, set.drivers[value].name);
            }
        }
        for (int seat = 0; seat < 2; ++seat) {
            int number = team.driver[std::size_t(seat)];
            if (number < 1 || number > kDriverNumbers) continue;
            DriverRecord& driver = set.drivers[std::size_t(number)];
            driver.inUse = 1;
            std::uint32_t slot = 4u * std::uint32_t(number - 1);
            std::uint16_t qual = 0, race = 0, range = 0;
            if (!file.readU16(at.gripPair + slot, qual) || !file.readU16(at.gripPair + slot + 2, race) ||
                !file.readU16(at.gripRange + slot, range))
                return readFailed();
            driver.gripQual = clampGrip(qual);
            driver.gripRace = clampGrip(race);
            driver.gripRandom = std::min(range, kCapMax);
        }
        std::uint8_t byte = 0;
        if (!file.readU8(kHighNoseOffset + 53 + 4u * std::uint32_t(i), byte)) return readFailed();
        team.highNose = byte;
        if (!file.readU8(at.pitBox + std::uint32_t(i), byte)) return readFailed();
        team.teamOrder = byte;
    }
    // The import fills the second copy of the layout; it replaces the first
    // only once the whole import has succeeded.
    if (!file.read(kCarNumberLayoutOffset, set.carNumbersImport.partA) ||
        !file.read(kCarNumberLayoutOffset + 128, set.carNumbersImport.partB))
        return readFailed();
    return {};
}

bool pitBoxesValid(const CarSet& set) {
    for (int i = 0; i < kRacingTeams; ++i) {
        int box = set.teams[std::size_t(i)].teamOrder;
        if (box < 1 || box > kRacingTeams) return false;
        for (int j = i + 1; j < kRacingTeams; ++j)
            if (set.teams[std::size_t(j)].teamOrder == box) return false;
    }
    return true;
}

bool writeTables(const CarSet& set, PatchableFile& file, const ExecutableTransferOptions& options) {
    const Offsets at(options.version);
    bool ok = true;
    for (int i = 0; i < kRacingTeams; ++i) {
        const TeamRecord& team = set.teams[std::size_t(i)];
        std::array<std::uint8_t, kTeamNameSize> field{};
        nameToGame(team.name, field);
        ok = ok && file.write(at.nameBlock + kTeamNamesInBlock + kTeamNameSize * std::uint32_t(i), field);
        nameToGame(team.engine, field);
        ok = ok && file.write(at.nameBlock + kEngineNamesInBlock + kTeamNameSize * std::uint32_t(i), field);
    }
    std::array<std::uint8_t, kSeats> numbers{};
    for (int k = 0; k < kSeats; ++k) {
        const TeamRecord& team = set.teams[std::size_t(k / 2)];
        std::size_t seat = std::size_t(k % 2);
        if (!team.disabled[seat]) numbers[std::size_t(k)] = std::uint8_t(team.driver[seat] + (team.flagS[seat] ? 128 : 0));
    }
    ok = ok && file.write(at.numbers, numbers);
    std::array<std::uint8_t, kDriverNumbers> zeros{};
    ok = ok && file.write(at.numberMap, zeros);
    std::array<std::uint8_t, kDriverNumbers * kDriverNameSize> placeholders{};
    for (int n = 1; n <= kDriverNumbers; ++n)
        placeholderDriverName(n, std::span<std::uint8_t, 24>(&placeholders[kDriverNameSize * std::size_t(n - 1)], 24));
    ok = ok && file.write(at.nameBlock, placeholders);
    if (!ok) return false;

    for (int i = 0; i < kRacingTeams && ok; ++i) {
        const TeamRecord& team = set.teams[std::size_t(i)];
        for (int seat = 0; seat < 2; ++seat) {
            int number = team.driver[std::size_t(seat)];
            if (number < 1 || number > kDriverNumbers) continue;
            std::array<std::uint8_t, kDriverNameSize> name{};
            nameToGame(set.drivers[std::size_t(number)].name, name);
            ok = ok && file.write(at.nameBlock + kDriverNameSize * std::uint32_t(number - 1), name);
        }
        ok = ok && file.writeU16(at.racePower + 2u * std::uint32_t(i), encodePower(team.powerRace));
        ok = ok && file.writeU16(at.qualPower + 2u * std::uint32_t(i), encodePower(team.powerQual));
        ok = ok && file.writeU16(at.failure + 2u * std::uint32_t(i), team.failureProbability);
        for (int seat = 0; seat < 2; ++seat) {
            int number = team.driver[std::size_t(seat)];
            if (number < 1 || number > kDriverNumbers) continue;
            const DriverRecord& driver = set.drivers[std::size_t(number)];
            std::uint32_t slot = 4u * std::uint32_t(number - 1);
            ok = ok && file.writeU16(at.gripPair + slot, driver.gripQual);
            ok = ok && file.writeU16(at.gripPair + slot + 2, driver.gripRace);
            ok = ok && file.writeU16(at.gripRange + slot, driver.gripRandom);
        }
        std::uint8_t highNose = team.highNose ? 1 : 0;
        ok = ok && file.writeU8(kHighNoseOffset + 4u * std::uint32_t(i), highNose ? 0 : 2);
        ok = ok && file.writeU8(kHighNoseOffset + 53 + 4u * std::uint32_t(i), highNose);
        ok = ok && file.writeU8(at.pitBox + std::uint32_t(i), std::uint8_t(team.teamOrder + 1));
    }
    ok = ok && file.write(kCarNumberLayoutOffset, set.carNumbers.partA);
    ok = ok && file.write(kCarNumberLayoutOffset + 128, set.carNumbers.partB);
    for (int i = kRacingTeams; i < kTeamSlots && ok; ++i) ok = file.writeU8(at.pitBox + std::uint32_t(i), std::uint8_t(i + 1));
    return ok;
}

constexpr std::size_t kCockpitBytes = 3 * kRacingTeams;
constexpr std::size_t kPitCrewBytes = 16 * kRacingTeams;

// Raw, or through the green fix and capped at 216.
void prepareColours(std::span<std::uint8_t> bytes, bool fixGreen) {
    if (!fixGreen) return;
    applyPaletteFix(bytes);
    for (auto& b : bytes) b = std::min<std::uint8_t>(b, 216);
}

// The 14 teams' colour bytes of one table (W a team), as the game takes them.
template <std::size_t W, std::size_t N>
std::array<std::uint8_t, W * kRacingTeams> gatherColours(const CarSet& set, std::array<std::uint16_t, N> TeamRecord::*field,
                                                         bool fixGreen) {
    std::array<std::uint8_t, W * kRacingTeams> bytes{};
    for (std::size_t i = 0; i < kRacingTeams; ++i) {
        std::span<std::uint8_t> run(&bytes[W * i], W);
        for (std::size_t k = 0; k < W; ++k) run[k] = std::uint8_t((set.teams[i].*field)[k]);
        prepareColours(run, fixGreen);
    }
    return bytes;
}

// One table of GP2.EXE read or written whole.
Status readExeTable(const std::filesystem::path& gameFolder, std::uint32_t offset, std::span<std::uint8_t> out) {
    PatchableFile file;
    if (!openExe(file, gameFolder, PatchableFile::ReadOnly, nullptr)) return fail(MessageId::CouldntReadGp2Exe);
    bool ok = file.read(offset, out);
    (void)file.close();   // read only: closing cannot lose anything
    if (!ok) return fail(MessageId::CouldntReadGp2Exe);
    return {};
}

Status writeExeTable(const std::filesystem::path& gameFolder, std::uint32_t offset, std::span<const std::uint8_t> data) {
    PatchableFile file;
    if (!openExe(file, gameFolder, PatchableFile::Update, nullptr)) return fail(MessageId::Gp2ExeNotPatched);
    bool ok = file.write(offset, data);
    if (!file.close() || !ok) return fail(MessageId::Gp2ExeNotPatched);
    return {};
}

}  // namespace

void applyPaletteFix(std::span<std::uint8_t> bytes) {
    for (std::size_t k = bytes.size(); k-- > 0;) {
        int v = bytes[k];
        // The whole part of 233 - (123 - v) * 0.8125, in sixteenths.
        // Truncated (104 becomes 217), unlike the rounded JAM pixel fix (218): the cap at 216 after it hides the difference.
        if (v >= 104 && v <= 123) v = (233 * 16 - (123 - v) * 13) / 16;
        if (v >= 194 && v <= 213) v += 20;
        bytes[k] = std::uint8_t(v);
    }
}

Status TransferExecutableTables(CarSet& set, const std::filesystem::path& gameFolder,
                                const ExecutableTransferOptions& options, Progress* progress) {
    if (!validVersion(options.version)) return fail(MessageId::UnsupportedVersion);
    PatchableFile file;
    if (!openExe(file, gameFolder, PatchableFile::ReadOnly, progress)) return fail(MessageId::CouldntReadGp2Exe);
    Status read = readTables(set, file, options);
    (void)file.close();   // read only: closing cannot lose anything
    if (!read) return read;
    if (!pitBoxesValid(set)) return fail(MessageId::BadPitBoxNumbers);
    for (int i = 0; i < kRacingTeams; ++i) --set.teams[std::size_t(i)].teamOrder;
    fillEmptySeats(set);
    return {};
}

Status TransferExecutableTables(const CarSet& set, const std::filesystem::path& gameFolder,
                                const ExecutableTransferOptions& options, Progress* progress) {
    if (!validVersion(options.version)) return fail(MessageId::UnsupportedVersion);
    PatchableFile file;
    if (!openExe(file, gameFolder, PatchableFile::Update, progress)) return fail(MessageId::Gp2ExeNotPatched);
    bool ok = writeTables(set, file, options);
    if (!file.close() || !ok) return fail(MessageId::Gp2ExeNotPatched);
    return {};
}

Status ImportCockpitColours(CarSet& set, const std::filesystem::path& gameFolder,
                            const ExecutableTransferOptions& options) {
    if (!validVersion(options.version)) return fail(MessageId::UnsupportedVersion);
    const auto store = [&set](std::span<const std::uint8_t> bytes) {
        for (std::size_t k = 0; k < kCockpitBytes; ++k) {
            std::uint8_t b = bytes[k] == 0 ? 1 : bytes[k];
            // The original upper-limit test compares the team index with 219,
            // 218 and 220 and therefore never lowers a colour.
            set.teams[k / 3].teamBytesA[k % 3] = b;
        }
    };
    std::array<std::uint8_t, kCockpitBytes> bytes{};
    if (Status read = readExeTable(gameFolder, gameTableOffset(GameTable::CockpitColours, options.version), bytes); !read)
        return read;
    store(bytes);
    if (options.useStateFile) {
        auto path = findGameFile(gameFolder, "F1GSTATE.SAV");
        PatchableFile state;
        if (!path || !state.open(*path, PatchableFile::ReadOnly)) return fail(MessageId::CouldntReadGp2Exe);
        bool ok = state.read(statefile::kCockpitColours, bytes);
        (void)state.close();   // read only: closing cannot lose anything
        if (!ok) return fail(MessageId::CouldntReadGp2Exe);
        store(bytes);
    }
    return {};
}

Status ExportCockpitColours(const CarSet& set, const std::filesystem::path& gameFolder,
                            const ExecutableTransferOptions& options, bool fixGreen) {
    if (!validVersion(options.version)) return fail(MessageId::UnsupportedVersion);
    const auto bytes = gatherColours<3>(set, &TeamRecord::teamBytesA, fixGreen);
    if (Status written = writeExeTable(gameFolder, gameTableOffset(GameTable::CockpitColours, options.version), bytes);
        !written)
        return written;
    if (options.useStateFile) {
        auto path = findGameFile(gameFolder, "F1GSTATE.SAV");
        PatchableFile state;
        if (!path || !clearReadOnly(*path) || !state.open(*path, PatchableFile::Update)) return fail(MessageId::Gp2ExeNotPatched);
        bool ok = state.write(statefile::kCockpitColours, bytes);
        if (!state.close() || !ok) return fail(MessageId::Gp2ExeNotPatched);
        if (!WriteStateFileChecksum(*path)) return fail(MessageId::Gp2ExeNotPatched);
    }
    return {};
}

Status ImportPitCrewColours(CarSet& set, const std::filesystem::path& gameFolder,
                            const ExecutableTransferOptions& options) {
    if (!validVersion(options.version)) return fail(MessageId::UnsupportedVersion);
    std::array<std::uint8_t, kPitCrewBytes> bytes{};
    if (Status read = readExeTable(gameFolder, gameTableOffset(GameTable::PitCrewColours, options.version), bytes); !read)
        return read;
    for (std::size_t k = 0; k < kPitCrewBytes; ++k) {
        std::uint8_t b = std::min<std::uint8_t>(bytes[k], 218);
        set.teams[k / 16].teamBytesB[k % 16] = b == 0 ? 1 : b;
    }
    return {};
}

Status ExportPitCrewColours(const CarSet& set, const std::filesystem::path& gameFolder,
                            const ExecutableTransferOptions& options, bool fixGreen) {
    if (!validVersion(options.version)) return fail(MessageId::UnsupportedVersion);
    const auto bytes = gatherColours<16>(set, &TeamRecord::teamBytesB, fixGreen);
    return writeExeTable(gameFolder, gameTableOffset(GameTable::PitCrewColours, options.version), bytes);
}

}  // namespace tarvel
