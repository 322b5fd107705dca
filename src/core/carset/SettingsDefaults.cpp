#include "carset/SettingsDefaults.h"

#include <algorithm>

namespace tarvel {

// Game settings, words 0-10: driver aids offered at Rookie, Amateur, Semi-Pro,
// Pro and Ace (bit k = aid k), quick race length %, "Always Save Track Records",
// "Show CCs Fuel Load", multiplayer turns, initial fuel load practice and
// qualifying. As the unmodified game plays: every aid up to Pro, none for Ace.
const std::array<std::uint16_t, 11> kDefaultGameSettings = {127, 127, 127, 127, 0, 10, 0, 0, 5, 50, 3};

// Global car settings, words 22-32: DriverZero, player power race / qualifying,
// pit speed limit, no speed limit, player weight, computer weight, computer
// performance mode (1 = " Use Tarvel Values "), grip factor, random power
// variation (on in the unmodified game), use selected team power.
const std::array<std::uint16_t, 11> kDefaultGlobalCarSettings = {0, 760, 770, 81, 0, 1200, 1200, 1, 500, 1, 0};

// Nine cameras: x, z, y, direction, pitch, roll, detail1, detail2.
const std::array<std::int16_t, 72> kDefaultCameras = {
    0,    36, 192,  -180, 0, 0, std::int16_t(32768), 1280,
    80,   64, -184, 0,    0, 0, 3840,                1280,
    144,  68, -480, 0,    0, 0, 0,                   std::int16_t(65535),
    80,   40, -192, -180, 0, 0, 26866,               1280,
    -80,  40, -192, -180, 0, 0, std::int16_t(38926), 1280,
    -144, 68, -480, 0,    0, 0, 0,                   std::int16_t(65535),
    -80,  64, -184, 0,    0, 0, std::int16_t(61696), 1280,
    0,    36, 320,  0,    0, 0, 0,                   72,
    80,   -64, 244, 0,    0, 0, 0,                   72,
};

const std::array<std::int16_t, 33> kDefaultDamage = {
    40,   16,   16,   32,   20,   32,   20,    56,   56,   80,   48,   32,    48,   32,   64,   48,   48,
    32,   9216, 4096, 4096, 7168, 7168, 6656, 6656, 8192, 8192, 7168, 7168, 12288, 5120, 7424, 8192,
};

const std::array<std::uint16_t, 16> kDefaultLaps = {71, 83, 61, 78, 65, 69, 72, 60, 45, 77, 44, 53, 71, 69, 53, 81};

std::array<std::uint16_t, 26> pointsPreset(PointsPreset preset) {
    std::array<std::uint16_t, 26> p{};
    switch (preset) {
        case PointsPreset::F1: {
            constexpr std::uint16_t f1[] = {10, 6, 4, 3, 2, 1};
            std::copy(std::begin(f1), std::end(f1), p.begin());
            break;
        }
        case PointsPreset::Cart: {
            constexpr std::uint16_t cart[] = {20, 16, 14, 12, 10, 8, 6, 5, 4, 3, 2, 1};
            std::copy(std::begin(cart), std::end(cart), p.begin());
            break;
        }
        case PointsPreset::All:
            for (int i = 0; i < 26; ++i) p[i] = std::uint16_t(26 - i);
            break;
    }
    return p;
}

namespace {
template <class T, std::size_t N>
void fill(CarSetSettings& s, SettingsRange r, const std::array<T, N>& values) {
    for (std::size_t i = 0; i < N && int(i) < r.count; ++i) s.words[r.first + i] = std::uint16_t(values[i]);
}
}  // namespace

void setGameSettingsDefaults(CarSetSettings& s) {
    fill(s, settings::kGame, kDefaultGameSettings);
    fill(s, settings::kGameImport, kDefaultGameSettings);
}
void setGlobalCarSettingsDefaults(CarSetSettings& s) {
    fill(s, settings::kGlobalCar, kDefaultGlobalCarSettings);
    fill(s, settings::kGlobalCarImport, kDefaultGlobalCarSettings);
}
void setCameraDefaults(std::uint16_t* cameras72) {
    for (int i = 0; i < 72; ++i) cameras72[i] = std::uint16_t(kDefaultCameras[i]);
}
void setDamageDefaults(CarSetSettings& s) {
    fill(s, settings::kDamage, kDefaultDamage);
    fill(s, settings::kDamageImport, kDefaultDamage);
}
void setPointsDefaults(CarSetSettings& s) {
    fill(s, settings::kPoints, pointsPreset(PointsPreset::F1));
    fill(s, settings::kPointsImport, pointsPreset(PointsPreset::F1));
}
void setLapsDefaults(CarSetSettings& s) {
    fill(s, settings::kLaps, kDefaultLaps);
    fill(s, settings::kLapsImport, kDefaultLaps);
}
void setAllSettingsDefaults(CarSetSettings& s) {
    s.words.fill(0);
    setGameSettingsDefaults(s);
    setGlobalCarSettingsDefaults(s);
    setCameraDefaults(s.range(settings::kCameras));
    setCameraDefaults(s.range(settings::kCamerasImport));
    setDamageDefaults(s);
    setPointsDefaults(s);
    setLapsDefaults(s);
}

CarNumberLayout defaultCarNumberLayout() {
    CarNumberLayout layout;
    // First, second, fifth and sixth 32-bit value of each of the four entries.
    constexpr std::uint32_t entries[4][4] = {{244, 150, 12, 14}, {2, 150, 12, 14}, {114, 28, 14, 11}, {184, 28, 14, 11}};
    constexpr int valueIndex[4] = {0, 1, 4, 5};
    for (int e = 0; e < 4; ++e)
        for (int v = 0; v < 4; ++v) {
            std::uint32_t value = entries[e][v];
            std::size_t at = std::size_t(e) * 32 + std::size_t(valueIndex[v]) * 4;
            for (int b = 0; b < 4; ++b) layout.partA[at + b] = std::uint8_t(value >> (8 * b));
        }
    constexpr std::uint8_t tail[] = {28, 27, 238, 80, 7, 128};
    std::copy(std::begin(tail), std::end(tail), layout.partB.begin());
    return layout;
}

}  // namespace tarvel
