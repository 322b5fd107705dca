#include "game/StateFile.h"

#include "common/FileIO.h"
#include "common/PatchableFile.h"
#include "game/GameNames.h"

#include <algorithm>
#include <optional>

namespace tarvel {
namespace {

constexpr std::string_view kStateFileName = "F1GSTATE.SAV";
constexpr std::size_t kTrailerSize = 4;
constexpr int kSeats = kGameSeats;

std::optional<Bytes> readStateFile(const std::filesystem::path& gameFolder, std::filesystem::path* where = nullptr) {
    auto path = findGameFile(gameFolder, kStateFileName);
    if (!path) return std::nullopt;
    if (where) *where = *path;
    return readWholeFile(*path);
}

}  // namespace

StateFileTrailer computeStateFileTrailer(std::span<const std::uint8_t> payload) {
    StateFileTrailer t;
    for (std::uint8_t b : payload) {
        t.sum = std::uint16_t(t.sum + b);
        t.rolling = std::uint16_t(std::uint16_t(t.rolling << 3) + (t.rolling >> 13) + b);
    }
    return t;
}

StateFileState stateFileState(const std::filesystem::path& gameFolder) {
    auto path = findGameFile(gameFolder, kStateFileName);
    if (!path) return StateFileState::Absent;
    // Only the later writes need the attribute cleared, and they report it when
    // they fail; the check itself reads the file either way.
    (void)clearReadOnly(*path);
    auto data = readWholeFile(*path);
    if (!data || data->size() < kTrailerSize) return StateFileState::Invalid;
    std::size_t payload = data->size() - kTrailerSize;
    StateFileTrailer stored{loadU16(&(*data)[payload]), loadU16(&(*data)[payload + 2])};
    return computeStateFileTrailer(std::span(*data).first(payload)) == stored ? StateFileState::Valid
                                                                               : StateFileState::Invalid;
}

bool CheckStateFile(const std::filesystem::path& gameFolder) {
    return stateFileState(gameFolder) == StateFileState::Valid;
}

bool WriteStateFileChecksum(const std::filesystem::path& path) {
    auto data = readWholeFile(path);
    if (!data || data->size() < kTrailerSize) return false;
    std::size_t payload = data->size() - kTrailerSize;
    StateFileTrailer t = computeStateFileTrailer(std::span(*data).first(payload));
    PatchableFile file;
    if (!file.open(path, PatchableFile::Update)) return false;
    bool ok = file.writeU16(payload, t.sum) && file.writeU16(payload + 2, t.rolling);
    return file.close() && ok;
}

Status ReadStateFileNames(CarSet& set, const std::filesystem::path& gameFolder) {
    auto data = readStateFile(gameFolder);
    if (!data) return fail(MessageId::CouldntReadStateFile);
    ByteReader in(*data);

    // The numbers are checked as a whole before any team takes them.
    std::array<std::uint8_t, kSeats> raw{};
    if (!in.seek(statefile::kDriverNumbers) || !in.bytes(raw.data(), raw.size()))
        return fail(MessageId::CouldntReadStateFile);
    if (!driverNumbersValid(raw)) return fail(MessageId::BadDriverNumbers);

    for (int i = 0; i < kRacingTeams; ++i) {
        TeamRecord& team = set.teams[std::size_t(i)];
        std::array<std::uint8_t, kTeamNameSize> field{};
        if (!in.seek(statefile::kTeamNames + kTeamNameSize * std::size_t(i)) || !in.bytes(field.data(), field.size()))
            return fail(MessageId::CouldntReadStateFile);
        nameFromGame(field, team.name);
        if (!in.seek(statefile::kEngineNames + kTeamNameSize * std::size_t(i)) || !in.bytes(field.data(), field.size()))
            return fail(MessageId::CouldntReadStateFile);
        nameFromGame(field, team.engine);
        for (int seat = 0; seat < 2; ++seat) {
            int value = raw[std::size_t(2 * i + seat)];
            bool flagged = value > 128;
            if (flagged) value -= 128;
            team.flagS[std::size_t(seat)] = flagged ? 1 : 0;
            team.driver[std::size_t(seat)] = std::int16_t(value);
            if (value == 0) continue;
            std::array<std::uint8_t, kDriverNameSize> name{};
            if (!in.seek(statefile::kDriverNames + kDriverNameSize * std::size_t(value - 1)) ||
                !in.bytes(name.data(), name.size()))
                return fail(MessageId::CouldntReadStateFile);
            nameFromGame(name, set.drivers[std::size_t(value)].name);
        }
    }
    return {};
}

Status WriteStateFileNames(const CarSet& set, const std::filesystem::path& gameFolder) {
    std::filesystem::path path;
    auto data = readStateFile(gameFolder, &path);
    if (!data) return fail(MessageId::StateFileNotPatched);
    Bytes& bytes = *data;
    // Everything written lies below the engine names' end; the trailer follows.
    constexpr std::size_t kEnd = statefile::kEngineNames + kTeamNameSize * kRacingTeams;
    if (bytes.size() < kEnd + kTrailerSize) return fail(MessageId::StateFileNotPatched);

    std::fill_n(bytes.begin() + statefile::kNumberMap, kDriverNumbers, 0);
    for (int n = 1; n <= kDriverNumbers; ++n)
        placeholderDriverName(n, std::span<std::uint8_t, 24>(&bytes[statefile::kDriverNames + 24 * std::size_t(n - 1)], 24));
    for (int i = 0; i < kRacingTeams; ++i) {
        const TeamRecord& team = set.teams[std::size_t(i)];
        nameToGame(team.name, std::span(&bytes[statefile::kTeamNames + kTeamNameSize * std::size_t(i)], kTeamNameSize));
        nameToGame(team.engine, std::span(&bytes[statefile::kEngineNames + kTeamNameSize * std::size_t(i)], kTeamNameSize));
        for (int seat = 0; seat < 2; ++seat) {
            int number = team.driver[std::size_t(seat)];
            std::uint8_t value = 0;
            if (!team.disabled[std::size_t(seat)])
                value = std::uint8_t(number + (team.flagS[std::size_t(seat)] ? 128 : 0));
            bytes[statefile::kDriverNumbers + std::size_t(2 * i + seat)] = value;
            if (number < 1 || number > kDriverNumbers) continue;
            nameToGame(set.drivers[std::size_t(number)].name,
                       std::span(&bytes[statefile::kDriverNames + kDriverNameSize * std::size_t(number - 1)], kDriverNameSize));
            bytes[statefile::kNumberMap - 1 + std::size_t(number)] = std::uint8_t(2 * i + seat);
        }
    }

    PatchableFile file;
    if (!clearReadOnly(path) || !file.open(path, PatchableFile::Update)) return fail(MessageId::StateFileNotPatched);
    bool ok = file.write(statefile::kDriverNumbers,
                         std::span<const std::uint8_t>(bytes).subspan(statefile::kDriverNumbers, kEnd - statefile::kDriverNumbers));
    if (!file.close() || !ok) return fail(MessageId::StateFileNotPatched);
    if (!WriteStateFileChecksum(path)) return fail(MessageId::StateFileNotPatched);
    return {};
}

}  // namespace tarvel
