#include "Cross/engine/memory/MemPool.h"

#include "Cross/engine/memory/PoolAllocator.h"
#include "tests/support/HeapLimit.h"
#include "tests/support/OnFourThreads.h"

#include <cstdint>
#include <cstring>
#include <gtest/gtest.h>
#include <new>
#include <random>
#include <vector>

namespace {

struct Piece {
    unsigned char * bytes;
    unsigned int size;
    unsigned char mark;
};

Piece takePiece(_HMEMPOOL * pool, unsigned int size, unsigned char mark) {
    Piece const piece = {static_cast<unsigned char *>(MemPoolAlloc(pool, size)), size, mark};
    std::memset(piece.bytes, mark, size);
    return piece;
}

bool isIntact(Piece const & piece) {
    for (unsigned int i = 0; i < piece.size; ++i)
        if (piece.bytes[i] != piece.mark)
            return false;
    return true;
}

// Takes and gives back blocks at random, and checks that no block ever shows another one's bytes.
void churn(_HMEMPOOL * pool, unsigned int seed) {
    std::mt19937 random(seed);
    std::vector<Piece> pieces;
    for (int step = 0; step < 3000; ++step) {
        if (pieces.size() < 60 || random() % 2 == 0) {
            auto const size = static_cast<unsigned int>(random() % 8 == 0 ? random() % 5000 : random() % 100);
            pieces.push_back(takePiece(pool, size, static_cast<unsigned char>(random())));
            continue;
        }
        std::swap(pieces[random() % pieces.size()], pieces.back());
        ASSERT_TRUE(isIntact(pieces.back()));
        MemPoolFree(pool, pieces.back().bytes);
        pieces.pop_back();
    }
    for (Piece const & piece : pieces) {
        ASSERT_TRUE(isIntact(piece));
        MemPoolFree(pool, piece.bytes);
    }
}

bool poolLives(char const * name) {
    MemPoolStats sum;
    return MemPoolFindStats(name, sum);
}

class MemPoolOfBothTypes : public testing::TestWithParam<MEMPOOLTYPE> {};

} // namespace

INSTANTIATE_TEST_SUITE_P(Types, MemPoolOfBothTypes, testing::Values(0u, 1u));

TEST_P(MemPoolOfBothTypes, BlocksAreAlignedApartAndCounted) {
    MemoryPoolObj const pool("Sizes", GetParam(), 0, true);
    auto const alive = [&pool] { return MemPoolGetStats(pool.Get()).liveBlocks; };
    std::vector<Piece> pieces;
    std::size_t bytes = 0;
    for (int round = 0; round < 3; ++round)
        for (unsigned int size : {0u, 1u, 15u, 16u, 17u, 496u, 497u, 512u, 1008u, 1009u, 70000u, 1u << 20}) {
            pieces.push_back(takePiece(pool.Get(), size, static_cast<unsigned char>(pieces.size())));
            bytes += size;
        }
    for (Piece const & piece : pieces) {
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(piece.bytes) % 16, 0u) << piece.size;
        EXPECT_TRUE(isIntact(piece)) << piece.size;
    }
    MemPoolFree(pool.Get(), pieces.back().bytes);
    MemPoolFree(pool.Get(), nullptr);
    EXPECT_EQ(alive(), pieces.size() - 1);
    EXPECT_EQ(MemPoolGetStats(pool.Get()).liveBytes, bytes - pieces.back().size);
    MemPoolClear(pool.Get());
    EXPECT_EQ(alive(), 0u);
    EXPECT_TRUE(isIntact(takePiece(pool.Get(), 300, 1))) << "a cleared pool goes on";
    EXPECT_EQ(MemPoolGetStats(pool.Get()).liveBytes, 300u);
    MemPoolClear(pool.Get());
}

TEST_P(MemPoolOfBothTypes, ExhaustionThrowsAndChangesNothing) {
    MemoryPoolObj const pool("Exhausted", GetParam(), 0, false);
    Piece const before = takePiece(pool.Get(), 40, 7);
    {
        HeapLimit const limit(16 << 20);
        EXPECT_THROW(MemPoolAlloc(pool.Get(), 0xFFFFFFFF), std::bad_alloc);
    }
    {
        // Small blocks run out too, once the buffers at hand are used up.
        HeapLimit const limit(0);
        EXPECT_THROW(for (int i = 0; i < 10000; ++i) MemPoolAlloc(pool.Get(), 0), std::bad_alloc);
    }
    EXPECT_EQ(MemPoolGetStats(pool.Get()).liveBytes, 40u);
    EXPECT_TRUE(isIntact(before));
    EXPECT_TRUE(isIntact(takePiece(pool.Get(), 5000, 9))) << "the pool goes on when there is memory again";
    MemPoolClear(pool.Get());
}

TEST(MemPool, ThreadsRecycleBlocksOfOnePoolWithoutMixingThemUp) {
    MemoryPoolObj const pool("Shared", 0, 0, false);
    OnFourThreads([&pool](int thread) {
        churn(pool.Get(), static_cast<unsigned int>(thread));
        MemoryPoolObj const own("Own", 1, 0, false);
        MemPoolAlloc(own.Get(), 10);
        EXPECT_TRUE(poolLives("Own"));
    });
    EXPECT_EQ(MemPoolGetStats(pool.Get()).liveBytes, 0u);
    EXPECT_FALSE(poolLives("Own"));
}

TEST(MemPool, AnEndedPoolStaysForItsLastBlock) {
    _HMEMPOOL * const pool = MemPoolCreate("Ended", 0, 0, false);
    Piece const first = takePiece(pool, 10, 1);
    Piece const second = takePiece(pool, 2000, 2);
    MemPoolDestroy(pool);
    EXPECT_TRUE(isIntact(first) && isIntact(second));
    MemPoolFree(pool, first.bytes);
    EXPECT_EQ(MemPoolGetStats(pool).liveBytes, 2000u);
    MemPoolFree(pool, second.bytes);

    _HMEMPOOL * const allAtOnce = MemPoolCreate("Ended", 1, 0, true);
    MemPoolAlloc(allAtOnce, 10);
    MemPoolDestroy(allAtOnce);
    EXPECT_FALSE(poolLives("Ended"));
    MemPoolDestroy(MemPoolDefault()); // which does nothing
    EXPECT_TRUE(poolLives("Default"));
    EXPECT_FALSE(poolLives(nullptr));
}

TEST(MemPool, StatisticsSumPoolsOfOneName) {
    MemoryPoolObj const left("Twin", 0, 0, true), right("Twin", 1, 0, true), other("Twins", 0, 0, true);
    for (_HMEMPOOL * pool : {left.Get(), right.Get(), other.Get()})
        MemPoolAlloc(pool, 30);
    MemPoolStats sum;
    EXPECT_TRUE(MemPoolFindStats("Twin", sum));
    EXPECT_EQ(sum.liveBlocks, 2u);
    EXPECT_EQ(sum.liveBytes, 60u);
}

TEST(MemPoolDeathTest, MisuseStopsTheProgram) {
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_EXIT(MemPoolClear(MemPoolDefault()), testing::KilledBySignal(SIGABRT),
                "^Memory pool 'Default': the default pool was cleared\n$");

    MemoryPoolObj const pool("Owner", 0, 0, false);
    MemoryPoolObj const stranger("Stranger", 0, 0, false);
    void * const block = MemPoolAlloc(pool.Get(), 10);
    EXPECT_EXIT(MemPoolFree(stranger.Get(), block), testing::KilledBySignal(SIGABRT),
                "Memory pool 'Stranger': ");
    MemPoolFree(pool.Get(), block);
    EXPECT_DEATH(MemPoolFree(pool.Get(), block), "not alive|use-after-free"); // a sanitizer sees it first
}

TEST(PoolAllocator, GivesContainersAPool) {
    using Numbers = std::vector<int, PoolAllocator<int>>;
    MemoryPoolObj const one("One", 0, 0, false), two("Two", 0, 0, false);
    {
        Numbers left({1, 2, 3}, PoolAllocator<int>(one.Get()));
        Numbers right({4}, PoolAllocator<int>(two.Get()));
        EXPECT_EQ(MemPoolGetStats(one.Get()).liveBytes, 3 * sizeof(int));
        left.swap(right);
        EXPECT_EQ(Numbers(left).get_allocator().GetPool(), two.Get());
        EXPECT_EQ(right.back(), 3);
    }
    EXPECT_EQ(MemPoolGetStats(one.Get()).liveBlocks + MemPoolGetStats(two.Get()).liveBlocks, 0u);
    EXPECT_EQ(PoolAllocator<int>(nullptr).GetPool(), MemPoolDefault());
    // Sizes are 32 bits wide: 2^30 numbers of four bytes must not be taken for none.
    EXPECT_THROW(PoolAllocator<int>(one.Get()).allocate(std::size_t{1} << 30), std::bad_alloc);
}
