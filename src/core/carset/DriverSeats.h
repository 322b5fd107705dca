#pragma once
// Seats are the (team slot 0-17, car 0/1) pairs that hold a driver number.
// The main window's driver drop-down puts another driver into a seat and its
// number field gives the seated driver another racing number.

#include "carset/CarSet.h"
#include "common/Result.h"

namespace tarvel {

struct Seat {
    int slot = 0;   // 0-17
    int car = 0;    // 0/1
    bool operator==(const Seat&) const = default;
};

// The seats in the order of the driver lists: teams 0-13, then the spare slots 14-17.
constexpr int kSeats = 2 * (kRacingTeams + kSpareSlots);
Seat seatAt(int index);
int seatIndex(Seat seat);

// The two seats exchange their drivers (the per-car flags stay with the seat).
// Returns false when nothing changed.
bool exchangeSeats(CarSet& set, Seat a, Seat b);

// Gives the driver in `seat` the racing number `number` (1-40). When another
// seat holds that number the two drivers exchange numbers; otherwise the
// driver's record moves to the new number and the old number is freed.
// Refuses numbers outside 1-40 with "Bad Driver Numbers."; gives whether the
// set changed (false when the driver already has that number).
Result<bool> renumberDriver(CarSet& set, Seat seat, int number);

// The number a driver is shown and typed with: driver 1 is shown as 0 while
// DriverZero is set. typedDriverNumber gives -1 for a number that names no driver.
int shownDriverNumber(const CarSet& set, int number);
int typedDriverNumber(const CarSet& set, int typed);

}  // namespace tarvel
