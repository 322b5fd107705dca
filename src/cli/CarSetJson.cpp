#include "CarSetJson.h"

#include "carset/AssetKinds.h"
#include "carset/FieldSchema.h"
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

// Thrown inside this file only; applyCarSetJson turns it into a Message.
struct InvalidValue {
    std::string field;
};

constexpr long long kLastAssetStatus = kAssetTeamFile;

constexpr std::size_t kLayoutBytes = 128 + 24;

// ---------------------------------------------------------------------------
// Writing.

std::string utf8(std::string_view windows1252) { return windows1252ToUtf8(windows1252); }

// One field of a record (or of the settings block, record 0): a number, or an
// array of `count` numbers.
Json fieldJson(const CarSet& set, const FieldSpec& f, int record) {
    if (f.count == 0) return fieldValue(set, f, record, 0);
    Json values = Json::array();
    for (int i = 0; i < f.count; ++i) values.push_back(fieldValue(set, f, record, i));
    return values;
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

void applyField(CarSet& set, const FieldSpec& f, int record, const Json& v, const std::string& field) {
    const auto put = [&](int element, const Json& value, const std::string& name) {
        const FieldRange stored = elementRule(f, element).stored;
        setFieldValue(set, f, record, element, integer(value, name, stored.low, stored.high));
    };
    if (f.count == 0) {
        put(0, v, field);
        return;
    }
    const Json& values = array(v, field, std::size_t(f.count));
    for (std::size_t i = 0; i < values.size(); ++i) put(int(i), values[i], indexed(field, i));
}

void applyAsset(AssetSlot& slot, const Json& v, const std::string& field) {
    for (const auto& [key, value] : object(v, field).items()) {
        std::string name = member(field, key);
        if (key == "status") slot.status = std::uint16_t(integer(value, name, 0, kLastAssetStatus));
        else if (key == "path") applyText(slot.path, value, name);
        else throw InvalidValue{name};
    }
}

void applyTeam(CarSet& set, int slot, const Json& v, const std::string& field) {
    TeamRecord& team = set.teams[std::size_t(slot)];
    for (const auto& [key, value] : object(v, field).items()) {
        std::string name = member(field, key);
        if (key == "name") applyText(team.name, value, name);
        else if (key == "engine") applyText(team.engine, value, name);
        else if (key == "carBitmap") applyAsset(team.carBitmap, value, name);
        else if (const FieldSpec* f = findFieldSpec(FieldPlace::Team, key)) applyField(set, *f, slot, value, name);
        else throw InvalidValue{name};
    }
}

void applyDriver(CarSet& set, int number, const Json& v, const std::string& field) {
    DriverRecord& driver = set.drivers[std::size_t(number)];
    for (const auto& [key, value] : object(v, field).items()) {
        std::string name = member(field, key);
        // The racing number is the entry's position; it can be named but not changed.
        if (key == "number") {
            if (integer(value, name, 1, kDriverNumbers) != static_cast<long long>(number)) throw InvalidValue{name};
        } else if (key == "name") {
            applyText(driver.name, value, name);
        } else if (const FieldSpec* f = findFieldSpec(FieldPlace::Driver, key)) {
            applyField(set, *f, number, value, name);
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
        else if (key == "loadedVersion") integer(value, name, fieldrange::kU16.low, fieldrange::kU16.high);
        else throw InvalidValue{name};
    }
}

void applyAssets(CarSet& set, const Json& v) {
    for (const auto& [key, value] : object(v, "assets").items()) {
        std::string name = member("assets", key);
        const AssetKindInfo* kind = findAssetKind(key);
        if (!kind) throw InvalidValue{name};
        std::span<AssetSlot> slots = kind->editSlots(set);
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
            for (std::size_t i = 0; i < teams.size(); ++i) applyTeam(set, int(i), teams[i], indexed(key, i));
        } else if (key == "drivers") {
            const Json& drivers = array(value, key, kDriverNumbers);
            for (std::size_t i = 0; i < drivers.size(); ++i)
                applyDriver(set, int(i + 1), drivers[i], indexed(key, i));
        } else if (key == "carNumberLayout") {
            const Json& bytes = array(value, key, kLayoutBytes);
            for (std::size_t i = 0; i < bytes.size(); ++i) {
                auto b = std::uint8_t(integer(bytes[i], indexed(key, i), fieldrange::kU8.low, fieldrange::kU8.high));
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
            for (const auto& [name, count] : object(value, key).items()) integer(count, member(key, name), fieldrange::kU8.low, fieldrange::kU8.high);
        } else {
            const FieldSpec* settingsField = findFieldSpec(FieldPlace::Settings, key);
            if (!settingsField) throw InvalidValue{key};
            applyField(set, *settingsField, 0, value, key);
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
    for (int slot = 0; slot < kTeamSlots; ++slot) {
        const TeamRecord& t = set.teams[std::size_t(slot)];
        Json team = Json::object();
        team["name"] = utf8(fieldText(t.name));
        team["engine"] = utf8(fieldText(t.engine));
        for (const FieldSpec& f : fieldSpecs(FieldPlace::Team)) {
            // The slot index comes after the livery's asset slot.
            if (f.jsonName == "slotIndex") team["carBitmap"] = assetJson(t.carBitmap);
            team[std::string(f.jsonName)] = fieldJson(set, f, slot);
        }
        teams.push_back(std::move(team));
    }
    j["teams"] = std::move(teams);

    Json drivers = Json::array();
    for (int number = 1; number <= kDriverNumbers; ++number) {
        const DriverRecord& d = set.drivers[std::size_t(number)];
        Json driver = Json::object();
        driver["number"] = number;
        driver["name"] = utf8(fieldText(d.name));
        for (const FieldSpec& f : fieldSpecs(FieldPlace::Driver)) driver[std::string(f.jsonName)] = fieldJson(set, f, number);
        drivers.push_back(std::move(driver));
    }
    j["drivers"] = std::move(drivers);

    for (const FieldSpec& f : fieldSpecs(FieldPlace::Settings)) j[std::string(f.jsonName)] = fieldJson(set, f, 0);

    Json layout = Json::array();
    for (std::uint8_t b : set.carNumbers.partA) layout.push_back(b);
    for (std::uint8_t b : set.carNumbers.partB) layout.push_back(b);
    j["carNumberLayout"] = std::move(layout);
    j["hasInformation"] = set.hasInformation;
    j["information"] = utf8(set.information);

    Json assets = Json::object();
    Json counts = Json::object();
    for (const AssetKindInfo& kind : kAssetKinds) {
        Json entries = Json::array();
        for (const AssetSlot& slot : kind.view(set)) entries.push_back(assetJson(slot));
        assets[std::string(kind.jsonName)] = std::move(entries);
        counts[std::string(kind.jsonName)] = set.*kind.count;
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
