#pragma once
// Editor defaults of every range of the settings block and of the car number
// layout, kept as tables.

#include "carset/CarSet.h"

#include <array>
#include <cstdint>

namespace tarvel {

extern const std::array<std::uint16_t, 11> kDefaultGameSettings;
extern const std::array<std::uint16_t, 11> kDefaultGlobalCarSettings;
extern const std::array<std::int16_t, 72> kDefaultCameras;
extern const std::array<std::int16_t, 33> kDefaultDamage;
extern const std::array<std::uint16_t, 16> kDefaultLaps;

enum class PointsPreset { F1, Cart, All };
std::array<std::uint16_t, 26> pointsPreset(PointsPreset preset);

void setGameSettingsDefaults(CarSetSettings& s);
void setGlobalCarSettingsDefaults(CarSetSettings& s);
void setCameraDefaults(std::uint16_t* cameras72);
void setDamageDefaults(CarSetSettings& s);
void setPointsDefaults(CarSetSettings& s);
void setLapsDefaults(CarSetSettings& s);
// Every range and its second copy.
void setAllSettingsDefaults(CarSetSettings& s);

CarNumberLayout defaultCarNumberLayout();

}  // namespace tarvel
