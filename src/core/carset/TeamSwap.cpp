#include "carset/TeamSwap.h"

#include "graphics/Helmets.h"

#include <algorithm>
#include <cstring>

namespace tarvel {
namespace {

// Byte offset of helmet n's lowest row and left column in the bottom-up sheet.
std::size_t helmetRectangleOffset(int n) {
    return std::size_t(helmetBottomRow(n)) * kHelmetSheetWidth + std::size_t(helmetLeft(n));
}

bool isTeam(int t) { return t >= 0 && t < kRacingTeams; }

void copyHelmet(const std::vector<std::uint8_t>& from, int fromN, std::vector<std::uint8_t>& to, int toN) {
    if (from.size() < std::size_t(kHelmetSheetPixels) || to.size() < std::size_t(kHelmetSheetPixels)) return;
    const std::size_t src = helmetRectangleOffset(fromN);
    const std::size_t dst = helmetRectangleOffset(toN);
    for (int row = 0; row < kHelmetHeight; ++row) {
        const std::size_t step = std::size_t(row) * kHelmetSheetWidth;
        std::memcpy(to.data() + dst + step, from.data() + src + step, kHelmetWidth);
    }
}

}  // namespace

std::array<int, kRacingTeams> teamListAfterMove(int from, int to) {
    std::array<int, kRacingTeams> order{};
    for (int i = 0; i < kRacingTeams; ++i) order[i] = i;
    if (!isTeam(from) || !isTeam(to) || from == to) return order;
    if (from < to)
        std::rotate(order.begin() + from, order.begin() + from + 1, order.begin() + to + 1);
    else
        std::rotate(order.begin() + to, order.begin() + from, order.begin() + from + 1);
    return order;
}

bool moveTeam(CarSet& set, int from, int to) {
    if (!isTeam(from) || !isTeam(to) || from == to) return false;
    const std::array<int, kRacingTeams> order = teamListAfterMove(from, to);
    std::array<int, kRacingTeams> newSlotOf{};
    for (int p = 0; p < kRacingTeams; ++p) newSlotOf[order[p]] = p;

    const std::array<TeamRecord, kTeamSlots> oldTeams = set.teams;
    const std::array<AssetSlot, kMenuHelmetSlots> oldMenuHelmets = set.menuHelmets;
    const std::vector<std::uint8_t> oldSheet = set.helmetSheet;
    std::array<std::vector<std::uint8_t>, kRacingTeams> oldLiveries = set.liveries;

    for (int p = 0; p < kRacingTeams; ++p) {
        const int old = order[p];
        set.teams[p] = oldTeams[old];
        // The pit lane list keeps its order of teams; only their indexes change.
        const int pitTeam = oldTeams[p].teamOrder;
        set.teams[p].teamOrder = isTeam(pitTeam) ? std::int16_t(newSlotOf[pitTeam]) : oldTeams[p].teamOrder;
        set.liveries[p] = std::move(oldLiveries[old]);
        for (int car = 0; car < 2; ++car) {
            set.menuHelmets[2 * p + car] = oldMenuHelmets[2 * old + car];
            copyHelmet(oldSheet, 2 * old + car, set.helmetSheet, 2 * p + car);
        }
    }
    set.recountAssets();
    return true;
}

}  // namespace tarvel
