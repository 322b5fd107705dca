#pragma once
// The classic linear congruential generator of C runtimes: values 0..32767.
// The editor seeds it from the clock; tests and the command line seed it
// explicitly so that results repeat.

#include <cstdint>

namespace tarvel {

class Rand {
public:
    explicit Rand(std::uint32_t seed = 1) : state_(seed) {}
    void seed(std::uint32_t seed) { state_ = seed; }
    int next() {
        state_ = state_ * 214013u + 2531011u;
        return int((state_ >> 16) & 0x7FFF);
    }
    int operator()() { return next(); }

private:
    std::uint32_t state_;
};

}  // namespace tarvel
