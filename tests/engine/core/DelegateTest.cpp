#include "Cross/engine/core/FastDelegate.h"

#include <gtest/gtest.h>
#include <memory>

namespace {

using Call = fastdelegate::FastDelegate<int(int)>;

int twice(int value) { return 2 * value; }

int weigh(std::unique_ptr<int> value) { return *value; }

struct Counter {
    virtual ~Counter() = default;

    int Add(int value) { return total += value; }

    int Peek(int value) const { return total + value; }

    virtual int Named(int value) { return value; }

    int total = 0;
};

struct Padding {
    virtual ~Padding() = default;

    int filler = 7;
};

// The counter is not the first base, so its address is not that of the whole object.
struct Louder : Padding, Counter {
    int Named(int value) override { return 100 * value + filler; }
};

} // namespace

TEST(Delegate, CallsWhatItIsBoundTo) {
    Counter const fixed;
    Louder louder;
    EXPECT_EQ(Call(&twice)(4), 8);
    EXPECT_EQ(Call(&fixed, &Counter::Peek)(5), 5);
    EXPECT_EQ(Call(&louder, &Counter::Named)(2), 207);
    EXPECT_EQ(Call(&louder, &Louder::Named)(2), 207);
    // arguments pass as they are
    EXPECT_EQ(fastdelegate::FastDelegate<int(std::unique_ptr<int>)>(&weigh)(std::make_unique<int>(9)), 9);
}

TEST(Delegate, EqualsOnlyTheSameObjectAndFunction) {
    Counter one, two;
    Call const distinct[] = {Call(), Call(&twice), Call(&one, &Counter::Add), Call(&two, &Counter::Add),
                             Call(&one, &Counter::Peek)};
    for (Call const & left : distinct)
        for (Call const & right : distinct)
            EXPECT_EQ(left == right, &left == &right);
    EXPECT_TRUE(Call(&one, static_cast<int (Counter::*)(int)>(nullptr)).empty());
    Call rebound(&one, &Counter::Add);
    rebound = &twice;
    EXPECT_EQ(rebound, Call(&twice)) << "nothing of the old binding is left";
}
