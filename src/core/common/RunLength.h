#pragma once
// Run-length coding of stored items: a run of 2 to 63 equal bytes becomes the
// pair (192 + length, byte); a single byte above 192 becomes (193, byte); any
// other single byte, 192 included, is stored as it is. Runs are capped at 63
// and only bytes above 192 are escaped, so that files written by every earlier
// release decode the same.

#include "common/ByteIO.h"

#include <cstddef>
#include <span>

namespace tarvel {

constexpr std::uint8_t kRunLengthBase = 192;
constexpr std::size_t kRunLengthMaxRun = 63;

// Length of the coded form, without producing it.
std::size_t runLengthCodedSize(std::span<const std::uint8_t> raw);

// Appends the coded form of `raw` to `out`.
void runLengthEncode(std::span<const std::uint8_t> raw, Bytes& out);

// Codes `raw` into `out`, which must have room for limit + 1 bytes (or
// 2 x raw.size() bytes if that is less), and returns the coded length; stops as soon as the coded form
// reaches `limit` bytes and then returns a length of at least `limit`.
std::size_t runLengthEncodeBounded(std::span<const std::uint8_t> raw, std::uint8_t* out, std::size_t limit);

// Decodes `coded` and appends the bytes to `out`. Fails (false, `out` holding
// what was decoded so far) when a run code has no value byte or when the
// decoded size would pass `maxOutput`.
bool runLengthDecode(std::span<const std::uint8_t> coded, Bytes& out, std::size_t maxOutput);

// Whether an item is stored coded: only when the coded form is non-empty and
// shorter than nine tenths of the raw length (truncated to an integer).
bool runLengthPays(std::size_t rawLength, std::size_t codedLength);

}  // namespace tarvel
