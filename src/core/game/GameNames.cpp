#include "game/GameNames.h"

#include "common/CodePage.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <string>

namespace tarvel {

void nameToGame(std::span<const char> windowsField, std::span<std::uint8_t> gameField) {
    std::string converted = windowsToOem(std::string_view(windowsField.data(), windowsField.size()));
    std::fill(gameField.begin(), gameField.end(), 0);
    std::size_t n = std::min(converted.size(), gameField.size());
    for (std::size_t i = 0; i < n; ++i) gameField[i] = std::uint8_t(converted[i]);
}

void nameFromGame(std::span<const std::uint8_t> gameField, std::span<char> windowsField) {
    std::string converted =
        oemToWindows(std::string_view(reinterpret_cast<const char*>(gameField.data()), gameField.size()));
    std::fill(windowsField.begin(), windowsField.end(), 0);
    std::size_t n = std::min(converted.size(), windowsField.size());
    std::copy_n(converted.begin(), n, windowsField.begin());
    if (!windowsField.empty()) windowsField.back() = 0;
}

void placeholderDriverName(int number, std::span<std::uint8_t, 24> out) {
    std::fill(out.begin(), out.end(), 0);
    char text[24] = {};
    if (number == 13) std::snprintf(text, sizeof text, "Not Used");
    else std::snprintf(text, sizeof text, "Spare%.2d", number);
    for (std::size_t i = 0; i < sizeof text && text[i]; ++i) out[i] = std::uint8_t(text[i]);
}

bool driverNumbersValid(std::span<const std::uint8_t, kGameSeats> raw) {
    std::array<int, kGameSeats> numbers{};
    for (std::size_t k = 0; k < raw.size(); ++k) numbers[k] = raw[k] > 128 ? raw[k] - 128 : raw[k];
    int zeros = 0;
    for (std::size_t k = 0; k < numbers.size(); ++k) {
        if (numbers[k] == 0) {
            ++zeros;
            continue;
        }
        if (numbers[k] > kDriverNumbers) return false;
        if (std::find(numbers.begin() + std::ptrdiff_t(k) + 1, numbers.end(), numbers[k]) != numbers.end())
            return false;
    }
    return zeros < 3;
}

}  // namespace tarvel
