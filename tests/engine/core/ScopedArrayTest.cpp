#include "Cross/engine/core/ScopedArray.h"

#include <gtest/gtest.h>

namespace {

int s_alive = 0;

struct Counted {
    Counted() { ++s_alive; }

    ~Counted() { --s_alive; }
};

} // namespace

TEST(ScopedArray, OwnsItsArray) {
    {
        ast::scoped_array<Counted> two(new Counted[2]);
        ast::scoped_array<Counted> none;
        EXPECT_TRUE(two);
        EXPECT_FALSE(none);

        Counted * const array = two.get();
        two.swap(none);
        EXPECT_EQ(none.get(), array);
        EXPECT_EQ(two.get(), nullptr);
        EXPECT_EQ(&none[1], array + 1);

        none.reset(new Counted[3]);
        EXPECT_EQ(s_alive, 3);
        none.reset();
        EXPECT_EQ(s_alive, 0);
        two.reset(new Counted[1]);
    }
    EXPECT_EQ(s_alive, 0);
}
