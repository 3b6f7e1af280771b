#include "Cross/engine/platform/Options.h"

#include <gtest/gtest.h>
#include <vector>

namespace {

constexpr int c_bare = -1;
constexpr int c_missing = -2;

// Value of an option that has a number, or one of the two above.
int read(char const * name) {
    int value = c_bare;
    if (Plat::Options::Get(name, value)) {
        EXPECT_TRUE(Plat::Options::Exist(name)) << name;
        return value;
    }
    EXPECT_EQ(value, c_bare) << name;
    return Plat::Options::Exist(name) ? c_bare : c_missing;
}

void set(std::vector<char const *> arguments) {
    arguments.insert(arguments.begin(), "-program=1");
    Plat::Options::SetCommandLine(static_cast<int>(arguments.size()), arguments.data());
}

class Options : public testing::Test {
protected:
    ~Options() override { Plat::Options::SetCommandLine(0, nullptr); }
};

} // namespace

TEST_F(Options, TakesNumbersFromOneArgument) {
    struct Case {
        char const * argument;
        int value; // of option "x"
    };

    constexpr int c_lowest = -2147483647 - 1;
    constexpr Case c_cases[] = {
        {"-x=5", 5},
        {"--x=5", 5},
        {"-x:5", 5},
        {"-X=5", 5},
        {"-x=+5", 5},
        {"-x=-5", -5},
        {"-x=007", 7},
        {"-x=0x1F", 31},
        {"-x=-0Xff", -255},
        // the ends of signed 32 bits, and one step behind them
        {"-x=2147483647", 2147483647},
        {"-x=2147483648", c_bare},
        {"-x=-2147483648", c_lowest},
        {"-x=-2147483649", c_bare},
        {"-x=0x7FFFFFFF", 2147483647},
        {"-x=0x80000000", c_bare},
        {"-x=-0x80000000", c_lowest},
        {"-x=18446744073709551617", c_bare},
        // no whole number
        {"-x", c_bare},
        {"-x=", c_bare},
        {"-x=5.0", c_bare},
        {"-x= 5", c_bare},
        {"-x=5a", c_bare},
        {"-x=0x", c_bare},
        {"-x=-", c_bare},
        {"-x=+-5", c_bare},
        {"-x==5", c_bare},
        {"-x=y:5", c_bare},
        // no option of that name
        {"x=5", c_missing},
        {"-xx=5", c_missing},
        {"---x=5", c_missing},
        {"-=5", c_missing},
        {"-", c_missing},
        {"--", c_missing},
        {"", c_missing},
    };
    for (Case const & each : c_cases) {
        set({each.argument});
        EXPECT_EQ(read("x"), each.value) << each.argument;
        EXPECT_EQ(read(""), c_missing) << each.argument;
    }
}

TEST_F(Options, TakesAWholeNumberFromTheNextArgument) {
    set({"-a", "7", "-b", "-8", "-c", "high", "--d", "0x10", "-e", "-f", "-g=", "9", "-h", "99999999999",
         "last", "-i"});
    EXPECT_EQ(read("a"), 7);
    EXPECT_EQ(read("b"), -8);
    EXPECT_EQ(read("8"), c_missing) << "a number that was taken is no option";
    EXPECT_EQ(read("c"), c_bare);
    EXPECT_EQ(read("d"), 16);
    EXPECT_EQ(read("e"), c_bare);
    EXPECT_EQ(read("f"), c_bare);
    EXPECT_EQ(read("g"), c_bare) << "a sign and nothing behind it";
    EXPECT_EQ(read("h"), c_bare);
    EXPECT_EQ(read("i"), c_bare);
    EXPECT_EQ(read("last"), c_missing);
    EXPECT_EQ(read("program"), c_missing) << "the program's name is no option";
}

TEST_F(Options, TheFirstOfTwoCounts) {
    set({"-x", "-X=5", "-y=1", "-y=2"});
    EXPECT_EQ(read("x"), c_bare);
    EXPECT_EQ(read("Y"), 1);
    EXPECT_EQ(read(nullptr), c_missing);
}
