#include "Cross/Util/Random.h"

#include "tests/support/HandClock.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

Random at(std::uint32_t seed, std::uint32_t index, std::uint32_t rounds = Random::c_usualRounds) {
    Random random(rounds);
    random.SetSeed(seed);
    random.SetIndex(index);
    return random;
}

} // namespace

// The first four are the published check values of the hash.
TEST(Random, GivesTheKnownNumbers) {
    struct Case {
        std::uint32_t seed, index, rounds, number;
    };

    constexpr Case c_cases[] = {
        {1, 1, 4, 0x509C0C23},   {1, 99, 4, 0xA66CB41A},    {99, 1, 4, 0x64300984}, {99, 99, 4, 0x59BA89EB},
        {0, 0, 4, 0x5B730B80},   {12345, 2, 4, 0xF3AC7F3F}, {0, 0, 1, 0x04C7B0EA},  {0, 0, 20, 0x017893FD},
        {1, 99, 20, 0xB964A82D}, {1, 99, 1000, 0xB964A82D}, // no more than 20 rows
        {5, 77, 0, 77},                                     // no round: the index itself
    };
    for (Case const & test : c_cases) {
        Random random = at(test.seed, test.index, test.rounds);
        EXPECT_EQ(random.GetBits(32), test.number) << test.seed << ' ' << test.index << ' ' << test.rounds;
        EXPECT_EQ(random.GetIndex(), test.index + 1);
    }
}

TEST(Random, EachKindOfDrawHasItsForm) {
    Random random;
    random.SetSeed(12345);
    EXPECT_EQ(random.GetBits(8), 145u);
    EXPECT_EQ(random.GetMax(100), 67u);
    EXPECT_EQ(random.GetRange(10, 20), 16u);
    EXPECT_EQ(random.GetUnitInclusive(), 0.13154971765623188);
    EXPECT_EQ(random.GetUnitExclusive(), 0.366201069788076);
    EXPECT_EQ(random.GetIndex(), 5u);
    random.SetSeed(9);
    EXPECT_EQ(random.GetIndex(), 0u) << "a seed begins its stream";
}

// Spans that are empty or wrap draw nothing, all others draw once.
TEST(Random, BoundsOfDraws) {
    Random random = at(0, 0);
    EXPECT_EQ(random.GetMax(0), 0u);
    EXPECT_EQ(random.GetRange(0, 0xFFFFFFFF), 0u);
    EXPECT_EQ(random.GetRange(8, 7), 8u);
    EXPECT_EQ(random.GetIndex(), 0u);
    EXPECT_EQ(random.GetRange(7, 7), 7u);
    EXPECT_EQ(random.GetIndex(), 1u);
    EXPECT_EQ(random.GetBits(0), 0u);
    EXPECT_EQ(random.GetBits(-3), 0u);
    EXPECT_EQ(random.GetIndex(), 3u) << "no bits are a draw too";
    EXPECT_EQ(at(1, 99).GetBits(31), 0x266CB41Au);
    EXPECT_EQ(at(0, 3).GetRange(9, 3), 9 + 0x7806D363u % (3u - 9u + 1)) << "a span that is turned round";
    Random last = at(1, 0xFFFFFFFF, 0);
    EXPECT_EQ(last.GetBits(32), 0xFFFFFFFF);
    EXPECT_EQ(last.GetIndex(), 0u);
}

// Without rounds the hash is the index, so its ends can be had.
TEST(Random, UnitsReachOrMissTheirEnds) {
    EXPECT_EQ(at(0, 0, 0).GetUnitInclusive(), 0.0);
    EXPECT_EQ(at(0, 0xFFFFFFFF, 0).GetUnitInclusive(), 1.0);
    EXPECT_EQ(at(0, 0, 0).GetUnitExclusive(), 0x1p-33);
    EXPECT_EQ(at(0, 0xFFFFFFFF, 0).GetUnitExclusive(), 1 - 0x1p-33);
}

TEST(Random, FillGivesTheNumbersOfSingleDraws) {
    for (std::uint32_t const rounds : {0u, 1u, 4u, 20u})
        for (std::size_t const count : {0u, 1u, 4u, 7u, 1000u}) {
            Random random = at(77, 0xFFFFFFF0, rounds); // wraps on the way
            Random single = random;
            std::vector<std::uint32_t> numbers(count + 1, 42);
            random.Fill(numbers.data(), count);
            for (std::size_t i = 0; i < count; ++i)
                ASSERT_EQ(numbers[i], single.GetBits(32)) << rounds << ' ' << count << ' ' << i;
            EXPECT_EQ(numbers[count], 42u);
            EXPECT_EQ(random.GetIndex(), single.GetIndex());
        }
}

TEST(Random, LocksAreCountedAndHoldNothing) {
    Random random{};
    random.Unlock();
    random.Lock();
    EXPECT_FALSE(random.IsLocked()) << "one too many was taken before";
    random.Lock();
    EXPECT_TRUE(random.IsLocked());
    EXPECT_EQ(random.GetBits(32), 0x5B730B80u);
}

TEST(Random, ClockSeedCountsTheSecondsOfTheMonth) {
    HandClock clock;
    clock.now = {2031, 1, 31, 6, 23, 59, 58};
    Random random = at(1, 2);
    random.SetRandomSeed();
    EXPECT_EQ(random.GetSeed(), ((31u * 24 + 23) * 60 + 59) * 60 + 58);
    EXPECT_EQ(random.GetIndex(), 0u);
}
