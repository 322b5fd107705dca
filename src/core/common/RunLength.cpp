#include "common/RunLength.h"

#include <algorithm>
#include <cstring>

namespace tarvel {

namespace {

constexpr std::uint64_t kOnes = 0x0101010101010101ull;
constexpr std::uint64_t kHighBits = 0x8080808080808080ull;

// Length of the run of equal bytes starting at `i`, capped at the longest run
// one pair can hold.
inline std::size_t runAt(const std::uint8_t* p, std::size_t i, std::size_t n) {
    std::size_t end = n - i > kRunLengthMaxRun ? i + kRunLengthMaxRun : n;
    std::size_t j = i + 1;
    while (j < end && p[j] == p[i]) ++j;
    return j - i;
}

}  // namespace

std::size_t runLengthCodedSize(std::span<const std::uint8_t> raw) {
    const std::uint8_t* p = raw.data();
    const std::size_t n = raw.size();
    std::size_t size = 0;
    for (std::size_t i = 0; i < n;) {
        std::size_t run = runAt(p, i, n);
        size += (run > 1 || p[i] > kRunLengthBase) ? 2 : 1;
        i += run;
    }
    return size;
}

std::size_t runLengthEncodeBounded(std::span<const std::uint8_t> raw, std::uint8_t* o, std::size_t limit) {
    const std::uint8_t* p = raw.data();
    const std::size_t n = raw.size();
    std::size_t at = 0;
    for (std::size_t i = 0; i < n && at < limit;) {
        // Eight literals at a time while no two neighbours are equal and no
        // byte has its top two bits set (such bytes may need escaping).
        while (i + 9 <= n && at + 8 <= limit) {
            std::uint64_t x, y;
            std::memcpy(&x, p + i, 8);
            std::memcpy(&y, p + i + 1, 8);
            std::uint64_t d = x ^ y;
            bool equalNeighbours = ((d - kOnes) & ~d & kHighBits) != 0;
            bool highBytes = (x & (x << 1) & kHighBits) != 0;
            if (equalNeighbours || highBytes) break;
            std::memcpy(o + at, p + i, 8);
            at += 8;
            i += 8;
        }
        if (i >= n || at >= limit) break;
        std::uint8_t b = p[i];
        if (i + 1 < n && p[i + 1] == b) {
            std::size_t run = runAt(p, i, n);
            o[at++] = std::uint8_t(kRunLengthBase + run);
            o[at++] = b;
            i += run;
        } else if (b > kRunLengthBase) {
            o[at++] = std::uint8_t(kRunLengthBase + 1);
            o[at++] = b;
            ++i;
        } else {
            o[at++] = b;
            ++i;
        }
    }
    return at;
}

void runLengthEncode(std::span<const std::uint8_t> raw, Bytes& out) {
    std::size_t at = out.size();
    // Worst case: every byte escaped.
    out.resize(at + 2 * raw.size() + 1);
    std::size_t coded = runLengthEncodeBounded(raw, out.data() + at, 2 * raw.size() + 1);
    out.resize(at + coded);
}

bool runLengthDecode(std::span<const std::uint8_t> coded, Bytes& out, std::size_t maxOutput) {
    // The output never passes maxOutput, nor what the input can describe (a
    // pair gives at most 63 bytes); room grows by doubling within that bound.
    const std::size_t base = out.size();
    const std::size_t n = coded.size();
    const std::size_t bound = std::min(maxOutput, n * (255 - kRunLengthBase) / 2 + n);
    std::size_t room = std::min(bound, std::max<std::size_t>(2 * n, 4096));
    out.resize(base + room);
    std::size_t produced = 0;
    auto makeRoom = [&](std::size_t need) {
        if (produced + need <= room) return;
        room = std::min(bound, std::max(2 * room, produced + need));
        out.resize(base + room);
    };
    bool ok = true;
    for (std::size_t i = 0; i < n;) {
        std::uint8_t c = coded[i++];
        if (c <= kRunLengthBase) {
            if (produced + 1 > maxOutput) {
                ok = false;
                break;
            }
            makeRoom(1);
            out[base + produced++] = c;
            continue;
        }
        std::size_t run = std::size_t(c) - kRunLengthBase;
        if (i >= n || run > maxOutput - produced) {
            ok = false;
            break;
        }
        makeRoom(run);
        std::memset(out.data() + base + produced, coded[i++], run);
        produced += run;
    }
    out.resize(base + produced);
    return ok;
}

bool runLengthPays(std::size_t rawLength, std::size_t codedLength) {
    // The limit is raw x 0.9 truncated, computed as the file format always has.
    auto limit = static_cast<std::size_t>(static_cast<double>(rawLength) * 0.9);
    return codedLength != 0 && codedLength < limit;
}

}  // namespace tarvel
