// A short message code with a key.
#pragma once

#include <bit>
#include <cstdint>
#include <cstring>
#include <span>

namespace ovScripts::detail {

/// A key that nobody else knows.
struct SipKey {
    uint64_t low = 0;
    uint64_t high = 0;
};

/// SipHash-2-4 (Aumasson, Bernstein, "SipHash: a fast short-input PRF", 2012): without the key nobody can
/// tell the code of a message, or find another message of the same code.
inline uint64_t sipHash24(const SipKey& key, std::span<const unsigned char> message) {
    uint64_t v0 = key.low ^ 0x736f6d6570736575u;
    uint64_t v1 = key.high ^ 0x646f72616e646f6du;
    uint64_t v2 = key.low ^ 0x6c7967656e657261u;
    uint64_t v3 = key.high ^ 0x7465646279746573u;
    const auto round = [&] {
        v0 += v1, v1 = std::rotl(v1, 13) ^ v0, v0 = std::rotl(v0, 32);
        v2 += v3, v3 = std::rotl(v3, 16) ^ v2;
        v0 += v3, v3 = std::rotl(v3, 21) ^ v0;
        v2 += v1, v1 = std::rotl(v1, 17) ^ v2, v2 = std::rotl(v2, 32);
    };
    const auto absorb = [&](uint64_t word) {
        v3 ^= word;
        round();
        round();
        v0 ^= word;
    };
    std::size_t at = 0;
    for (; at + 8 <= message.size(); at += 8) {
        uint64_t word = 0;
        std::memcpy(&word, message.data() + at, 8);
        absorb(word);
    }
    uint64_t last = static_cast<uint64_t>(message.size()) << 56;
    for (std::size_t i = 0; at + i < message.size(); ++i)
        last |= static_cast<uint64_t>(message[at + i]) << (8 * i);
    absorb(last);
    v2 ^= 0xff;
    for (int i = 0; i < 4; ++i)
        round();
    return v0 ^ v1 ^ v2 ^ v3;
}

} // namespace ovScripts::detail
