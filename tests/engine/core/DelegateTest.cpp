#include "Cross/engine/core/FastDelegate.h"

#include <gtest/gtest.h>
#include <memory>

namespace {

using fastdelegate::FastDelegate;

int twice(int value) { return 2 * value; }

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

int weigh(std::unique_ptr<int> value) { return *value; }

} // namespace

TEST(Delegate, CallsWhatItIsBoundTo) {
    Counter counter;
    Counter const fixed;
    Louder louder;
    EXPECT_EQ(FastDelegate<int(int)>(&twice)(4), 8);
    FastDelegate<int(int)> const add(&counter, &Counter::Add);
    add(3);
    EXPECT_EQ(add(4), 7);
    EXPECT_EQ(FastDelegate<int(int)>(&fixed, &Counter::Peek)(5), 5);
    // virtual, through a base that is not the first one
    EXPECT_EQ(FastDelegate<int(int)>(&louder, &Counter::Named)(2), 207);
    EXPECT_EQ(FastDelegate<int(int)>(&louder, &Louder::Named)(2), 207);
    // arguments pass as they are
    EXPECT_EQ(FastDelegate<int(std::unique_ptr<int>)>(&weigh)(std::make_unique<int>(9)), 9);
}

TEST(Delegate, EqualsOnlyTheSameObjectAndFunction) {
    Counter one;
    Counter two;
    using Call = FastDelegate<int(int)>;
    Call const distinct[] = {Call(), Call(&twice), Call(&one, &Counter::Add), Call(&two, &Counter::Add),
                             Call(&one, &Counter::Peek)};
    for (Call const & left : distinct)
        for (Call const & right : distinct)
            EXPECT_EQ(left == right, &left == &right);

    int (Counter::*const noMember)(int) = nullptr;
    EXPECT_EQ(Call(&one, noMember), Call());
    EXPECT_TRUE(Call(&one, noMember).empty());
    Call rebound(&one, &Counter::Add);
    rebound = &twice;
    EXPECT_EQ(rebound, Call(&twice)) << "nothing of the old binding is left";
}
