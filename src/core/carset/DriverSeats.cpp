#include "carset/DriverSeats.h"

#include <utility>

namespace tarvel {
namespace {

constexpr int kSeatSlots = kRacingTeams + kSpareSlots;

bool validSeat(Seat s) { return s.slot >= 0 && s.slot < kSeatSlots && (s.car == 0 || s.car == 1); }

std::int16_t& numberAt(CarSet& set, Seat s) { return set.teams[s.slot].driver[s.car]; }

}  // namespace

Seat seatAt(int index) { return Seat{index / 2, index % 2}; }
int seatIndex(Seat seat) { return seat.slot * 2 + seat.car; }

bool exchangeSeats(CarSet& set, Seat a, Seat b) {
    if (!validSeat(a) || !validSeat(b) || a == b) return false;
    std::swap(numberAt(set, a), numberAt(set, b));
    set.assignDriverFlags();
    return true;
}

Result<bool> renumberDriver(CarSet& set, Seat seat, int number) {
    if (!validSeat(seat) || number < 1 || number > kDriverNumbers) return fail(MessageId::BadDriverNumbers);
    const int old = numberAt(set, seat);
    if (old == number) return false;
    for (int i = 0; i < kSeats; ++i) {
        const Seat other = seatAt(i);
        if (other == seat || numberAt(set, other) != number) continue;
        // Both drivers keep their records; only the numbers change hands.
        if (old >= 1 && old <= kDriverNumbers) std::swap(set.drivers[old], set.drivers[number]);
        std::swap(numberAt(set, seat), numberAt(set, other));
        set.assignDriverFlags();
        return true;
    }
    if (old >= 1 && old <= kDriverNumbers) {
        set.drivers[number] = set.drivers[old];
        set.drivers[old] = DriverRecord{};
    }
    numberAt(set, seat) = std::int16_t(number);
    set.assignDriverFlags();
    return true;
}

int shownDriverNumber(const CarSet& set, int number) { return number == 1 && set.driverZero() ? 0 : number; }

int typedDriverNumber(const CarSet& set, int typed) {
    if (set.driverZero()) {
        if (typed == 0) return 1;
        if (typed == 1) return -1;
    }
    return typed >= 1 && typed <= kDriverNumbers ? typed : -1;
}

}  // namespace tarvel
