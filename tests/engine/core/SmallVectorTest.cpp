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

using Numbers = ast::smallvector<int, 4, CountingAllocator<int>>;

void fill(Numbers & numbers, int count) {
    for (int i = 0; i < count; ++i)
        numbers.push_back(i);
}

void expectAscending(Numbers const & numbers) {
    int expected = 0;
    for (int number : numbers)
        EXPECT_EQ(number, expected++);
    EXPECT_EQ(numbers.size(), static_cast<std::size_t>(expected));
}

} // namespace

TEST(SmallVector, GoesToTheHeapOnlyWhenItMust) {
    {
        Numbers numbers;
        fill(numbers, 4);
        numbers.reserve(4);
        EXPECT_EQ(s_liveBlocks, 0);
        numbers.clear();
        fill(numbers, 1000);
        EXPECT_EQ(s_liveBlocks, 1);
        expectAscending(numbers);
        numbers.clear();
        fill(numbers, 10);
        expectAscending(numbers);
    }
    EXPECT_EQ(s_liveBlocks, 0);
}

TEST(SmallVector, AnElementOfItsOwnCanBeAppended) {
    Numbers numbers;
    for (std::size_t i = 0; i <= 8; ++i) {
        numbers.push_back(i == 0 ? 7 : numbers[0]); // grows at 4 and at 8, and so moves the element
        EXPECT_EQ(numbers[i], 7) << i;
    }
}

TEST(SmallVector, ExhaustionChangesNothing) {
    Numbers numbers;
    fill(numbers, 4);
    s_exhausted = true;
    EXPECT_THROW(numbers.push_back(4), std::bad_alloc);
    EXPECT_THROW(numbers.reserve(100), std::bad_alloc);
    s_exhausted = false;
    EXPECT_EQ(numbers.capacity(), 4u);
    expectAscending(numbers);
}
