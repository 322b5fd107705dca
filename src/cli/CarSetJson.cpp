#include "CarSetJson.h"

#include "common/CodePage.h"

#include <cstdint>
#include <limits>
#include <span>
#include <string>
#include <string_view>

namespace tarvel::cli {
namespace {

constexpr std::string_view kFormat = "tarvel-carset";
constexpr int kJsonVersion = 1;

constexpr long long kU8 = 255;
constexpr long long kU16 = 65535;
constexpr long long kI16Min = -32768;
constexpr long long kI16Max = 32767;

// Thrown inside this file only; applyCarSetJson turns it into a Message.
struct InvalidValue {
    std::string field;
};

// ---------------------------------------------------------------------------
// Field tables. Each numeric field of a record: its JSON name, how many values
// (0 = a single number, else an array of that length), the range of values
// that the field can hold as stored in the car set file, and accessors.

template <class R>
struct NumberField {
    std::string_view name;
    int count;
    long long lo, hi;
    long long (*get)(const R&, std::size_t);
    void (*set)(R&, std::size_t, long long);
};

using TeamField = NumberField<TeamRecord>;
constexpr TeamField kTeamFields[] = {
    {"powerRace", 0, 0, kU16, [](const TeamRecord& t, std::size_t) -> long long { return t.powerRace; },
     [](TeamRecord& t, std::size_t, long long v) { t.powerRace = std::uint16_t(v); }},
    {"powerQual", 0, 0, kU16, [](const TeamRecord& t, std::size_t) -> long long { return t.powerQual; },
     [](TeamRecord& t, std::size_t, long long v) { t.powerQual = std::uint16_t(v); }},
    // Larger values are clamped on every load; a patch may not store them.
    {"failureProbability", 0, 0, 32767,
     [](const TeamRecord& t, std::size_t) -> long long { return t.failureProbability; },
     [](TeamRecord& t, std::size_t, long long v) { t.failureProbability = std::uint16_t(v); }},
    {"highNose", 0, 0, kU8, [](const TeamRecord& t, std::size_t) -> long long { return t.highNose; },
     [](TeamRecord& t, std::size_t, long long v) { t.highNose = std::uint16_t(v); }},
    {"teamBytesA", 3, 0, kU8, [](const TeamRecord& t, std::size_t i) -> long long { return t.teamBytesA[i]; },
     [](TeamRecord& t, std::size_t i, long long v) { t.teamBytesA[i] = std::uint16_t(v); }},
    {"teamBytesB", 16, 0, kU8, [](const TeamRecord& t, std::size_t i) -> long long { return t.teamBytesB[i]; },
     [](TeamRecord& t, std::size_t i, long long v) { t.teamBytesB[i] = std::uint16_t(v); }},
    // Driver numbers index the driver table (1-40; 0 names no driver).
    {"driver", 2, 0, kDriverNumbers, [](const TeamRecord& t, std::size_t i) -> long long { return t.driver[i]; },
     [](TeamRecord& t, std::size_t i, long long v) { t.driver[i] = std::int16_t(v); }},
    {"disabled", 2, 0, kU8, [](const TeamRecord& t, std::size_t i) -> long long { return t.disabled[i]; },
     [](TeamRecord& t, std::size_t i, long long v) { t.disabled[i] = std::uint16_t(v); }},
    {"flagS", 2, 0, kU8, [](const TeamRecord& t, std::size_t i) -> long long { return t.flagS[i]; },
     [](TeamRecord& t, std::size_t i, long long v) { t.flagS[i] = std::uint16_t(v); }},
    {"teamOrder", 0, 0, kU8, [](const TeamRecord& t, std::size_t) -> long long { return t.teamOrder; },
     [](TeamRecord& t, std::size_t, long long v) { t.teamOrder = std::int16_t(v); }},
};
// Written after "carBitmap".
constexpr TeamField kTeamSlotIndex = {
    "slotIndex", 0, 0, kU16, [](const TeamRecord& t, std::size_t) -> long long { return t.slotIndex; },
    [](TeamRecord& t, std::size_t, long long v) { t.slotIndex = std::uint16_t(v); }};

using DriverField = NumberField<DriverRecord>;
constexpr DriverField kDriverFields[] = {
    {"gripRace", 0, 0, kU16, [](const DriverRecord& d, std::size_t) -> long long { return d.gripRace; },
     [](DriverRecord& d, std::size_t, long long v) { d.gripRace = std::uint16_t(v); }},
    {"gripQual", 0, 0, kU16, [](const DriverRecord& d, std::size_t) -> long long { return d.gripQual; },
     [](DriverRecord& d, std::size_t, long long v) { d.gripQual = std::uint16_t(v); }},
    {"gripRandom", 0, 0, kU16, [](const DriverRecord& d, std::size_t) -> long long { return d.gripRandom; },
     [](DriverRecord& d, std::size_t, long long v) { d.gripRandom = std::uint16_t(v); }},
    {"inUse", 0, 0, kU8, [](const DriverRecord& d, std::size_t) -> long long { return d.inUse; },
     [](DriverRecord& d, std::size_t, long long v) { d.inUse = std::uint16_t(v); }},
};

// Ranges of the settings block; `isSigned` tells which words hold signed values.
struct SettingsField {
    std::string_view name;
    SettingsRange range;
    bool (*isSigned)(std::size_t index);
};
constexpr int kCameraWords = 8;
constexpr int kCameraSignedWords = 6;   // x, z, y, direction, pitch, roll; then two tuning values
constexpr SettingsField kSettingsFields[] = {
    {"gameSettings", settings::kGame, [](std::size_t) { return false; }},
    {"globalCarSettings", settings::kGlobalCar, [](std::size_t) { return false; }},
    {"cameras", settings::kCameras, [](std::size_t i) { return i % kCameraWords < kCameraSignedWords; }},
    {"damage", settings::kDamage, [](std::size_t) { return true; }},
    {"points", settings::kPoints, [](std::size_t) { return false; }},
    {"laps", settings::kLaps, [](std::size_t) { return false; }},
};

struct AssetTable {
    std::string_view name;
    std::span<AssetSlot> (*slots)(CarSet&);
    std::span<const AssetSlot> (*view)(const CarSet&);
    std::uint8_t CarSet::*count;
};
constexpr AssetTable kAssetTables[] = {
    {"wheels", [](CarSet& s) { return std::span<AssetSlot>(s.wheels); },
     [](const CarSet& s) { return std::span<const AssetSlot>(s.wheels); }, &CarSet::wheelCount},
    {"cockpits", [](CarSet& s) { return std::span<AssetSlot>(s.cockpits); },
     [](const CarSet& s) { return std::span<const AssetSlot>(s.cockpits); }, &CarSet::cockpitCount},
    {"jams", [](CarSet& s) { return std::span<AssetSlot>(s.jams); },
     [](const CarSet& s) { return std::span<const AssetSlot>(s.jams); }, &CarSet::jamCount},
    {"menuHelmets", [](CarSet& s) { return std::span<AssetSlot>(s.menuHelmets); },
     [](const CarSet& s) { return std::span<const AssetSlot>(s.menuHelmets); }, &CarSet::menuHelmetCount},
    {"sounds", [](CarSet& s) { return std::span<AssetSlot>(s.sounds); },
     [](const CarSet& s) { return std::span<const AssetSlot>(s.sounds); }, &CarSet::soundCount},
};
constexpr long long kLastAssetStatus = kAssetTeamFile;

constexpr std::size_t kLayoutBytes = 128 + 24;

// ---------------------------------------------------------------------------
// Writing.

std::string utf8(std::string_view windows1252) { return windows1252ToUtf8(windows1252); }

template <class R>
void putNumbers(Json& object, const R& record, const NumberField<R>& f) {
    if (f.count == 0) {
        object[std::string(f.name)] = f.get(record, 0);
        return;
    }
    Json values = Json::array();
    for (std::size_t i = 0; i < std::size_t(f.count); ++i) values.push_back(f.get(record, i));
    object[std::string(f.name)] = std::move(values);
}

Json assetJson(const AssetSlot& slot) {
    Json a = Json::object();
    a["status"] = slot.status;
    a["path"] = utf8(fieldText(slot.path));
    return a;
}

// ---------------------------------------------------------------------------
// Reading a patch.

std::string indexed(std::string_view base, std::size_t i) { return std::string(base) + "[" + std::to_string(i) + "]"; }
std::string member(std::string_view base, std::string_view key) {
    return base.empty() ? std::string(key) : std::string(base) + "." + std::string(key);
}

long long integer(const Json& v, const std::string& field, long long lo, long long hi) {
    if (!v.is_number_integer()) throw InvalidValue{field};
    long long x = 0;
    if (v.is_number_unsigned()) {
        auto u = v.get<std::uint64_t>();
        if (u > std::uint64_t(std::numeric_limits<long long>::max())) throw InvalidValue{field};
        x = static_cast<long long>(u);
    } else {
        x = v.get<std::int64_t>();
    }
    if (x < lo || x > hi) throw InvalidValue{field};
    return x;
}

bool boolean(const Json& v, const std::string& field) {
    if (!v.is_boolean()) throw InvalidValue{field};
    return v.get<bool>();
}

// UTF-8 text converted to Windows-1252; refused when a character has no
// Windows-1252 form, when it holds a NUL, or when it is longer than `maxBytes`.
std::string text(const Json& v, const std::string& field, std::size_t maxBytes) {
    if (!v.is_string()) throw InvalidValue{field};
    bool lossy = false;
    std::string converted = utf8ToWindows1252(v.get_ref<const std::string&>(), &lossy);
    if (lossy || converted.size() > maxBytes || converted.find('\0') != std::string::npos) throw InvalidValue{field};
    return converted;
}

// A fixed text field; left untouched when the text is what it already holds,
// so that bytes behind the terminator survive a dump applied back.
template <std::size_t N>
void applyText(std::array<char, N>& target, const Json& v, const std::string& field) {
    std::string value = text(v, field, N - 1);
    if (value != fieldText(target)) setFieldText(target, value);
}

const Json& array(const Json& v, const std::string& field, std::size_t maxSize) {
    if (!v.is_array() || v.size() > maxSize) throw InvalidValue{field};
    return v;
}

const Json& object(const Json& v, const std::string& field) {
    if (!v.is_object()) throw InvalidValue{field};
    return v;
}

template <class R, std::size_t N>
const NumberField<R>* findField(const NumberField<R> (&table)[N], std::string_view key) {
    for (const auto& f : table)
        if (f.name == key) return &f;
    return nullptr;
}

template <class R>
void applyNumbers(R& record, const NumberField<R>& f, const Json& v, const std::string& field) {
    if (f.count == 0) {
        f.set(record, 0, integer(v, field, f.lo, f.hi));
        return;
    }
    const Json& values = array(v, field, std::size_t(f.count));
    for (std::size_t i = 0; i < values.size(); ++i) f.set(record, i, integer(values[i], indexed(field, i), f.lo, f.hi));
}

void applyAsset(AssetSlot& slot, const Json& v, const std::string& field) {
    for (const auto& [key, value] : object(v, field).items()) {
        std::string name = member(field, key);
        if (key == "status") slot.status = std::uint16_t(integer(value, name, 0, kLastAssetStatus));
        else if (key == "path") applyText(slot.path, value, name);
        else throw InvalidValue{name};
    }
}

void applyTeam(TeamRecord& team, const Json& v, const std::string& field) {
    for (const auto& [key, value] : object(v, field).items()) {
        std::string name = member(field, key);
        if (key == "name") applyText(team.name, value, name);
        else if (key == "engine") applyText(team.engine, value, name);
        else if (key == "carBitmap") applyAsset(team.carBitmap, value, name);
        else if (key == kTeamSlotIndex.name) applyNumbers(team, kTeamSlotIndex, value, name);
        else if (const TeamField* f = findField(kTeamFields, key)) applyNumbers(team, *f, value, name);
        else throw InvalidValue{name};
    }
}

void applyDriver(DriverRecord& driver, std::size_t number, const Json& v, const std::string& field) {
    for (const auto& [key, value] : object(v, field).items()) {
        std::string name = member(field, key);
        // The racing number is the entry's position; it can be named but not changed.
        if (key == "number") {
            if (integer(value, name, 1, kDriverNumbers) != static_cast<long long>(number)) throw InvalidValue{name};
        } else if (key == "name") {
            applyText(driver.name, value, name);
        } else if (const DriverField* f = findField(kDriverFields, key)) {
            applyNumbers(driver, *f, value, name);
        } else {
            throw InvalidValue{name};
        }
    }
}

void applyDocument(DocumentState& state, const Json& v) {
    // The file state is the result of loading and saving; only the team shown can be chosen.
    for (const auto& [key, value] : object(v, "document").items()) {
        std::string name = member("document", key);
        if (key == "currentTeam") state.currentTeam = int(integer(value, name, 0, kRacingTeams - 1));
        else if (key == "path") text(value, name, std::numeric_limits<std::size_t>::max());
        else if (key == "hasFile" || key == "dirty") boolean(value, name);
        else if (key == "loadedVersion") integer(value, name, 0, kU16);
        else throw InvalidValue{name};
    }
}

void applyAssets(CarSet& set, const Json& v) {
    for (const auto& [key, value] : object(v, "assets").items()) {
        std::string name = member("assets", key);
        const AssetTable* table = nullptr;
        for (const AssetTable& t : kAssetTables)
            if (t.name == key) table = &t;
        if (!table) throw InvalidValue{name};
        std::span<AssetSlot> slots = table->slots(set);
        const Json& entries = array(value, name, slots.size());
        for (std::size_t i = 0; i < entries.size(); ++i) applyAsset(slots[i], entries[i], indexed(name, i));
    }
    set.recountAssets();
}

void applyPatch(CarSetDocument& document, const Json& patch) {
    CarSet& set = document.set;
    for (const auto& [key, value] : object(patch, "patch").items()) {
        if (key == "format") {
            if (!value.is_string() || value.get_ref<const std::string&>() != kFormat) throw InvalidValue{key};
        } else if (key == "version") {
            integer(value, key, kJsonVersion, kJsonVersion);
        } else if (key == "document") {
            applyDocument(document.state, value);
        } else if (key == "teams") {
            const Json& teams = array(value, key, set.teams.size());
            for (std::size_t i = 0; i < teams.size(); ++i) applyTeam(set.teams[i], teams[i], indexed(key, i));
        } else if (key == "drivers") {
            const Json& drivers = array(value, key, kDriverNumbers);
            for (std::size_t i = 0; i < drivers.size(); ++i)
                applyDriver(set.drivers[i + 1], i + 1, drivers[i], indexed(key, i));
        } else if (key == "carNumberLayout") {
            const Json& bytes = array(value, key, kLayoutBytes);
            for (std::size_t i = 0; i < bytes.size(); ++i) {
                auto b = std::uint8_t(integer(bytes[i], indexed(key, i), 0, kU8));
                if (i < set.carNumbers.partA.size()) set.carNumbers.partA[i] = b;
                else set.carNumbers.partB[i - set.carNumbers.partA.size()] = b;
            }
        } else if (key == "hasInformation") {
            set.hasInformation = boolean(value, key);
        } else if (key == "information") {
            set.information = text(value, key, kInformationMax);
        } else if (key == "assets") {
            applyAssets(set, value);
        } else if (key == "counts") {
            // Derived from the asset tables; checked for shape only.
            for (const auto& [name, count] : object(value, key).items()) integer(count, member(key, name), 0, kU8);
        } else {
            const SettingsField* settingsField = nullptr;
            for (const SettingsField& f : kSettingsFields)
                if (f.name == key) settingsField = &f;
            if (!settingsField) throw InvalidValue{key};
            const Json& words = array(value, key, std::size_t(settingsField->range.count));
            std::uint16_t* target = set.settings.range(settingsField->range);
            for (std::size_t i = 0; i < words.size(); ++i) {
                bool isSigned = settingsField->isSigned(i);
                long long w = integer(words[i], indexed(key, i), isSigned ? kI16Min : 0, isSigned ? kI16Max : kU16);
                target[i] = std::uint16_t(static_cast<std::int16_t>(w));
            }
        }
    }
}

}  // namespace

Json carSetToJson(const CarSetDocument& document) {
    const CarSet& set = document.set;
    const DocumentState& state = document.state;
    Json j = Json::object();
    j["format"] = kFormat;
    j["version"] = kJsonVersion;
    j["document"] = Json{{"path", state.path.string()},
                         {"hasFile", state.hasFile},
                         {"dirty", state.dirty},
                         {"loadedVersion", state.loadedVersion},
                         {"currentTeam", state.currentTeam}};

    Json teams = Json::array();
    for (const TeamRecord& t : set.teams) {
        Json team = Json::object();
        team["name"] = utf8(fieldText(t.name));
        team["engine"] = utf8(fieldText(t.engine));
        for (const TeamField& f : kTeamFields) putNumbers(team, t, f);
        team["carBitmap"] = assetJson(t.carBitmap);
        putNumbers(team, t, kTeamSlotIndex);
        teams.push_back(std::move(team));
    }
    j["teams"] = std::move(teams);

    Json drivers = Json::array();
    for (int number = 1; number <= kDriverNumbers; ++number) {
        const DriverRecord& d = set.drivers[std::size_t(number)];
        Json driver = Json::object();
        driver["number"] = number;
        driver["name"] = utf8(fieldText(d.name));
        for (const DriverField& f : kDriverFields) putNumbers(driver, d, f);
        drivers.push_back(std::move(driver));
    }
    j["drivers"] = std::move(drivers);

    for (const SettingsField& f : kSettingsFields) {
        Json words = Json::array();
        const std::uint16_t* w = set.settings.range(f.range);
        for (std::size_t i = 0; i < std::size_t(f.range.count); ++i) {
            if (f.isSigned(i)) words.push_back(static_cast<std::int16_t>(w[i]));
            else words.push_back(w[i]);
        }
        j[std::string(f.name)] = std::move(words);
    }

    Json layout = Json::array();
    for (std::uint8_t b : set.carNumbers.partA) layout.push_back(b);
    for (std::uint8_t b : set.carNumbers.partB) layout.push_back(b);
    j["carNumberLayout"] = std::move(layout);
    j["hasInformation"] = set.hasInformation;
    j["information"] = utf8(set.information);

    Json assets = Json::object();
    Json counts = Json::object();
    for (const AssetTable& table : kAssetTables) {
        Json entries = Json::array();
        for (const AssetSlot& slot : table.view(set)) entries.push_back(assetJson(slot));
        assets[std::string(table.name)] = std::move(entries);
        counts[std::string(table.name)] = set.*table.count;
    }
    j["assets"] = std::move(assets);
    j["counts"] = std::move(counts);
    return j;
}

Status applyCarSetJson(CarSetDocument& document, const Json& patch) {
    CarSetDocument patched = document;
    try {
        applyPatch(patched, patch);
    } catch (const InvalidValue& invalid) {
        return fail(MessageId::InvalidField, invalid.field);
    }
    patched.state.dirty = true;
    document = std::move(patched);
    return {};
}

}  // namespace tarvel::cli
