#include "support/Neighbours.h"

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <limits>

namespace ovBenchmarks {

namespace {

/// The fastest of three times, so that an interrupt in one of them does not count.
double secondsOf(void (*work)()) {
    double seconds = std::numeric_limits<double>::max();
    for (int i = 0; i < 3; ++i) {
        const auto start = std::chrono::steady_clock::now();
        work();
        const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
        seconds = std::min(seconds, taken.count());
    }
    return seconds;
}

// The empty instructions keep the compiler from computing the loops at once.

void addMany() {
    constexpr uint64_t ROUNDS = 30000;
    uint64_t a = 1, b = 2, c = 3, d = 4, e = 5, f = 6;
    for (uint64_t i = 0; i < ROUNDS; ++i) {
        a += i;
        b ^= i;
        c += i;
        d ^= i;
        e += i;
        f ^= i;
        asm volatile("" : "+r"(a), "+r"(b), "+r"(c), "+r"(d), "+r"(e), "+r"(f));
    }
}

void multiplyInAChain() {
    constexpr uint64_t ROUNDS = 7500;
    uint64_t a = 3;
    for (uint64_t i = 0; i < ROUNDS; ++i) {
        a = a * a + 1;
        asm volatile("" : "+r"(a));
    }
}

} // namespace

double measureCrowding() {
    return secondsOf(addMany) / secondsOf(multiplyInAChain);
}

} // namespace ovBenchmarks
