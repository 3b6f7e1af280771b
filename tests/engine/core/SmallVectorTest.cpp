#include "Cross/engine/core/SmallVector.h"

#include <gtest/gtest.h>
#include <new>

namespace {

int s_liveBlocks = 0;
bool s_exhausted = false;

template <class T>
struct CountingAllocator {
    T * allocate(std::size_t count) {
        if (s_exhausted)
            throw std::bad_alloc();
        ++s_liveBlocks;
        return std::allocator<T>().allocate(count);
    }

    void deallocate(T * block, std::size_t count) {
        --s_liveBlocks;
        std::allocator<T>().deallocate(block, count);
    }
};

} // namespace

TEST(SmallVector, GoesToTheHeapOnlyWhenItMust) {
    {
        ast::smallvector<int, 4, CountingAllocator<int>> numbers;
        for (int i = 0; i < 4; ++i)
            numbers.push_back(7);
        numbers.reserve(4);
        EXPECT_EQ(s_liveBlocks, 0);

        s_exhausted = true;
        EXPECT_THROW(numbers.push_back(4), std::bad_alloc);
        EXPECT_THROW(numbers.reserve(100), std::bad_alloc);
        s_exhausted = false;
        EXPECT_EQ(numbers.size(), 4u) << "nothing has changed";
        EXPECT_EQ(numbers.capacity(), 4u);

        while (numbers.size() < 1000)
            numbers.push_back(numbers[0]); // which moves when the vector grows
        EXPECT_EQ(s_liveBlocks, 1);
        for (int const number : numbers)
            EXPECT_EQ(number, 7);
    }
    EXPECT_EQ(s_liveBlocks, 0);
}
