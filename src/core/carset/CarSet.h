#pragma once
// The car set: the content of the one document an editor process works on
// (the file side of the document is CarSetDocument). Fixed-size tables,
// value semantics (a copy is a full scratch copy), names held as Windows-1252
// bytes, NUL-terminated inside their fixed fields.

#include "common/Result.h"

#include <array>
#include <cassert>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace tarvel {

constexpr int kTeamSlots = 20;        // 0-13 teams, 14-17 spare driver pairs, 18-19 kept
constexpr int kRacingTeams = 14;
constexpr int kSpareSlots = 4;        // slots 14-17
constexpr int kSpareDrivers = 8;
constexpr int kDriverNumbers = 40;    // racing numbers 1-40
constexpr int kTeamNameSize = 13;     // 12 characters + NUL
constexpr int kDriverNameSize = 24;   // 23 characters + NUL
constexpr int kPathSize = 260;
constexpr int kInformationMax = 20000;

constexpr int kLiveryWidth = 256;
constexpr int kLiveryHeight = 164;
constexpr int kLiveryPixels = kLiveryWidth * kLiveryHeight;          // 41,984
constexpr int kHelmetSheetWidth = 256;
constexpr int kHelmetSheetHeight = 180;
constexpr int kHelmetSheetPixels = kHelmetSheetWidth * kHelmetSheetHeight;  // 46,080
constexpr int kMenuHelmetPixels = 104 * 104;                         // 10,816
constexpr int kCockpitRecordSize = 176;

constexpr int kWheelSlots = 4;
constexpr int kCockpitSlots = 2;
constexpr int kJamSlots = 218;
constexpr int kFirstUsableJam = 19;
constexpr int kMenuHelmetSlots = 36;
constexpr int kSoundSlots = 100;
constexpr int kTransferItems = 357;

enum AssetStatus : std::uint16_t {
    kAssetEmpty = 0,      // the game's own asset is used
    kAssetExternal = 1,   // taken from the outside file `path`
    kAssetStored = 2,     // held in the car set file that is open
    kAssetNotStored = 3,  // as 2, but never written
    kAssetTeamFile = 4,   // team livery held in the team file `path`
};

struct AssetSlot {
    std::uint16_t status = kAssetEmpty;
    std::array<char, kPathSize> path{};
};

struct TeamRecord {
    std::array<char, kTeamNameSize> name{};
    std::array<char, kTeamNameSize> engine{};
    std::uint16_t powerRace = 0;
    std::uint16_t powerQual = 0;
    std::uint16_t failureProbability = 0;
    std::uint16_t highNose = 0;
    std::array<std::uint16_t, 3> teamBytesA{};
    std::array<std::uint16_t, 16> teamBytesB{};
    std::array<std::int16_t, 2> driver{};
    std::array<std::uint16_t, 2> disabled{};
    std::array<std::uint16_t, 2> flagS{};
    std::int16_t teamOrder = 0;
    AssetSlot carBitmap;
    std::uint16_t slotIndex = 0;
};

struct DriverRecord {
    std::array<char, kDriverNameSize> name{};
    std::uint16_t gripRace = 0;
    std::uint16_t gripQual = 0;
    std::uint16_t gripRandom = 0;
    std::uint16_t inUse = 0;
};

// Where the car numbers are painted on the liveries: a 128-byte part (four
// entries of eight 32-bit values) and a 24-byte part, kept as bytes.
struct CarNumberLayout {
    std::array<std::uint8_t, 128> partA{};
    std::array<std::uint8_t, 24> partB{};
    bool operator==(const CarNumberLayout&) const = default;
};

// The settings block: 16-bit words addressed by index. Ranges and their second
// copies (a second copy receives what an import reads and is copied over the
// first after a successful import).
struct SettingsRange {
    int first;
    int count;
};
namespace settings {
constexpr SettingsRange kGame{0, 11};
constexpr SettingsRange kGameImport{11, 11};
constexpr SettingsRange kGlobalCar{22, 11};     // word 22 is DriverZero
constexpr SettingsRange kGlobalCarImport{33, 11};
constexpr SettingsRange kCameras{44, 72};
constexpr SettingsRange kCamerasImport{116, 72};
constexpr SettingsRange kDamage{188, 33};
constexpr SettingsRange kDamageImport{221, 33};
constexpr SettingsRange kPoints{254, 26};
constexpr SettingsRange kPointsImport{280, 26};
constexpr SettingsRange kLaps{306, 16};
constexpr SettingsRange kLapsImport{322, 16};
constexpr int kWords = 338;
constexpr int kDriverZero = 22;
}  // namespace settings

struct CarSetSettings {
    std::array<std::uint16_t, settings::kWords> words{};
    std::uint16_t* range(SettingsRange r) { return words.data() + r.first; }
    const std::uint16_t* range(SettingsRange r) const { return words.data() + r.first; }
};

class CarSetFileHandle;  // an open car set file that status-2 items are read from

class CarSet {
    static std::size_t checkedIndex(int index, int size) {
        assert(index >= 0 && index < size);
        (void)size;   // only the assertion reads it
        return std::size_t(index);
    }
    static std::size_t spareSlot(int index) { return std::size_t(kRacingTeams) + checkedIndex(index, kSpareDrivers) / 2; }

public:
    CarSet();
    // A set reset to the defaults but without the default pictures (empty
    // liveries and helmet sheet), for a loader that fills them itself.
    struct WithoutPictures {};
    explicit CarSet(WithoutPictures);

    // Team table, slots 0-19, and driver table indexed by racing number 1-40
    // (entry 0 names no driver and stays zero).
    std::array<TeamRecord, kTeamSlots> teams{};
    std::array<DriverRecord, kDriverNumbers + 1> drivers{};
    // Second copies used by snapshotPerformance / restorePerformance.
    std::array<TeamRecord, kTeamSlots> teamsBackup{};
    std::array<DriverRecord, kDriverNumbers + 1> driversBackup{};
    std::array<std::uint16_t, 11> globalCarBackup{};

    CarSetSettings settings;
    CarNumberLayout carNumbers;        // first copy: exported to the game
    CarNumberLayout carNumbersImport;  // second copy: filled by an import

    bool hasInformation = false;
    std::string information;           // Windows-1252, at most 20,000 bytes

    std::array<AssetSlot, kWheelSlots> wheels{};
    std::array<AssetSlot, kCockpitSlots> cockpits{};
    std::array<AssetSlot, kJamSlots> jams{};
    std::array<AssetSlot, kMenuHelmetSlots> menuHelmets{};
    std::array<AssetSlot, kSoundSlots> sounds{};
    std::uint8_t wheelCount = 0, cockpitCount = 0, jamCount = 0, menuHelmetCount = 0, soundCount = 0;
    std::array<std::array<std::uint8_t, kCockpitRecordSize>, kCockpitSlots> cockpitRecords{};
    // Cockpit items of status 3 (a custom design held in memory until saved).
    std::array<std::vector<std::uint8_t>, kCockpitSlots> cockpitDesigns;

    // Pictures held in memory: the 14 team liveries (256 x 164) and the helmet
    // sheet (256 x 180), 8-bit palette indexes in BMP pixel order (bottom row
    // first, rows of 256 bytes).
    std::array<std::vector<std::uint8_t>, kRacingTeams> liveries;
    std::vector<std::uint8_t> helmetSheet;

    // The open car set file that the status-2 items are read from (shared by
    // copies of the set; empty for a set that no file holds).
    std::shared_ptr<const CarSetFileHandle> storedItems;

    // --- operations -------------------------------------------------------
    // Every table, asset and picture back to the defaults; no stored items.
    void resetToDefaults();
    // resetToDefaults without rebuilding the default pictures.
    void resetTablesToDefaults();
    void assignDriverFlags();
    void snapshotPerformance();
    void restorePerformance();
    void assignSpareDrivers();
    void recountAssets();

    // Accessors; the index must be in range (team slot 0-19, racing number
    // 0-40, spare driver 0-7): callers check indexes that come from outside.
    TeamRecord& team(int slot) { return teams[checkedIndex(slot, kTeamSlots)]; }
    const TeamRecord& team(int slot) const { return teams[checkedIndex(slot, kTeamSlots)]; }
    DriverRecord& driver(int number) { return drivers[checkedIndex(number, kDriverNumbers + 1)]; }
    const DriverRecord& driver(int number) const { return drivers[checkedIndex(number, kDriverNumbers + 1)]; }
    // Spare driver 0-7: team slot 14 + index / 2, car index % 2.
    std::int16_t spareDriverNumber(int index) const {
        return teams[spareSlot(index)].driver[std::size_t(index % 2)];
    }
    void setSpareDriverNumber(int index, std::int16_t number) { teams[spareSlot(index)].driver[std::size_t(index % 2)] = number; }
    bool driverZero() const { return settings.words[settings::kDriverZero] != 0; }
};

// Fixed-field text helpers (Windows-1252 bytes).
std::string fieldText(const char* field, std::size_t size);
template <std::size_t N>
std::string fieldText(const std::array<char, N>& field) { return fieldText(field.data(), N); }
// Copies at most size - 1 bytes and zero-fills the rest of the field.
void setFieldText(char* field, std::size_t size, std::string_view text);
template <std::size_t N>
void setFieldText(std::array<char, N>& field, std::string_view text) { setFieldText(field.data(), N, text); }

// The disabled cars rule: may car `car` (0/1) of `team` (0-19) be disabled?
struct DisableDecision {
    enum Kind { Allowed, Refused, NeedsConfirmation } kind;
    std::string text;   // Windows-1252, the exact text to show when not Allowed
};
DisableDecision checkDisableCar(const CarSet& set, int team, int car);

// "[%.2d] %s" with " (S)" / " (D)", driver 1 shown as 0 when DriverZero is set;
// team 0-19, car 0/1.
std::string driverListEntry(const CarSet& set, int team, int car);

}  // namespace tarvel
