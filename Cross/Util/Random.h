#pragma once

// Random: reproducible random numbers. The n-th number of a stream is a hash of the seed and n, with no other
// state: a position is saved and restored with two numbers, any position is reached at once, and two
// generators that are set alike give the same numbers as long as they are asked the same.
//
// The hash is the pseudo-DES hash of W. H. Press et al., Numerical Recipes in C, second edition, section 7.5
// ("psdes"), with more rows in its tables. Every result is the same to the bit on all machines.
//
// Threads: plain data, one thread at a time. Nothing here fails or allocates.

#include "Cross/engine/core/Export.h"

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>

class CROSS_UTIL_API Random {
public:
    static constexpr std::uint32_t c_usualRounds = 4;
    static constexpr std::uint32_t c_mostRounds = 20;

    // Seed and index 0, the usual rounds. Implicit, so that a struct with a generator in it can be set to {}.
    Random() = default;

    // More rounds mix better and take longer; above 20 they count 20.
    explicit Random(std::uint32_t rounds) : rounds(std::min(rounds, c_mostRounds)) {}

    // Selects the stream and goes to its beginning.
    void SetSeed(std::uint32_t newSeed) {
        seed = newSeed;
        index = 0;
    }

    std::uint32_t GetSeed() const { return seed; }

    // Seeds from the clock: the seconds since the month began. Goes to the beginning of that stream.
    void SetRandomSeed();

    // The position in the stream, which wraps at 2^32. Each draw moves it on by 1.
    void SetIndex(std::uint32_t newIndex) { index = newIndex; }

    std::uint32_t GetIndex() const { return index; }

    // A count for callers to keep, such as around code that must not draw; it changes nothing here.
    void Lock() { ++lockCount; }

    void Unlock() { --lockCount; }

    bool IsLocked() const { return lockCount > 0; }

    // Draws the low `bits` bits of a number: all of them for 32 and more, none for 0 and less.
    std::uint32_t GetBits(std::int32_t bits) {
        auto const number = draw();
        if (bits >= 32)
            return number;
        return bits > 0 ? number & ((1u << bits) - 1) : 0;
    }

    // Draws a number from 0 to `max` - 1, the remainder of the hash. 0 gives 0 and draws nothing.
    std::uint32_t GetMax(std::uint32_t max) { return max == 0 ? 0 : draw() % max; }

    // Draws a number from `low` to `high`, both included. The whole range of 32 bits, and a `high` one below
    // `low`, give `low` and draw nothing.
    std::uint32_t GetRange(std::uint32_t low, std::uint32_t high) {
        std::uint32_t const span = high - low + 1;
        return span == 0 ? low : low + draw() % span;
    }

    // Draws a number from 0 to 1, both included.
    double GetUnitInclusive() { return draw() / 4294967295.0; }

    // Draws a number between 0 and 1, neither included.
    double GetUnitExclusive() { return draw() * 2.3283064365386963e-10 + 1.1641532182693481e-10; }

    // Draws `count` numbers, the same as GetBits(32) one by one, and faster.
    void Fill(std::uint32_t * numbers, std::size_t count);

private:
    struct Row {
        std::uint32_t first, second;
    };

    static constexpr Row c_rows[c_mostRounds] = {
        {0xBAA96887, 0x4B0F3B58}, {0x1E17D32C, 0xE874F0C3}, {0x03BCDC3C, 0x6955C5A6},
        {0x0F33D1B2, 0x55A7CA46}, {0x76A6491D, 0x4D9A9D86}, {0xC570D85D, 0xFE28A195},
        {0xE382B1E3, 0xB1CA7865}, {0x78DB4362, 0x6B235751}, {0x7439A9D4, 0x9A997A61},
        {0x9CEA8AC5, 0xAA6E95C8}, {0x89537C5C, 0xAAA98EE1}, {0x2588F55D, 0x5AF9154C},
        {0x415B5E1D, 0xFC8E2263}, {0x216E3D95, 0x390F5E8C}, {0x85C662E7, 0x58FFD802},
        {0x5E8AB368, 0xAC0A5EBA}, {0x3EA5CC8C, 0xAC4874F6}, {0xD26A0F74, 0xA9DF0913},
        {0xF3A9222B, 0x86BE4C74}, {0x48AAD7E4, 0xED2C123B}};

    static std::uint32_t mix(std::uint32_t left, std::uint32_t right, Row const & row) {
        std::uint32_t const a = right ^ row.first;
        std::uint32_t const low = a & 0xFFFF;
        std::uint32_t const high = a >> 16;
        // ~(high * high) + low * low is the inversion of one product. It is put off: it turns the row's
        // second word over.
        std::uint32_t const b = std::rotl((high - low) * (high + low), 16);
        return ((b ^ ~row.second) + high * low) ^ left;
    }

    static std::uint32_t hash(std::uint32_t left, std::uint32_t right, std::uint32_t rounds) {
        for (std::uint32_t i = 0; i < rounds; ++i) {
            std::uint32_t const mixed = mix(left, right, c_rows[i]);
            left = right;
            right = mixed;
        }
        return right;
    }

    // Four numbers at once, for the positions from `index` on.
    void fillFour(std::uint32_t * numbers) const;

    std::int32_t hashRandom() {
        std::uint32_t const right = index++;
        // The usual number of rounds is known to the compiler, which then writes them out.
        return static_cast<std::int32_t>(rounds == c_usualRounds ? hash(seed, right, c_usualRounds)
                                                                 : hash(seed, right, rounds));
    }

    std::uint32_t draw() { return static_cast<std::uint32_t>(hashRandom()); }

    std::uint32_t seed = 0;
    std::uint32_t index = 0;
    std::uint32_t rounds = c_usualRounds;
    std::int32_t lockCount = 0;
};
