#include "Cross/engine/platform/Options.h"

#include <gtest/gtest.h>
#include <vector>

namespace {

constexpr int c_bare = -1;
constexpr int c_missing = -2;

// Value of an option that has a number, or one of the two above.
int read(char const * name) {
    int value = c_bare;
    bool const exists = Plat::Options::Exist(name);
    bool const hasNumber = Plat::Options::Get(name, value);
    EXPECT_TRUE(exists || !hasNumber) << name;
    return exists ? value : c_missing;
}

class Options : public testing::Test {
protected:
    ~Options() override { Plat::Options::SetCommandLine(0, nullptr); }

    static void Set(std::vector<char const *> arguments) {
        arguments.insert(arguments.begin(), "-program=1");
        Plat::Options::SetCommandLine(static_cast<int>(arguments.size()), arguments.data());
    }
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
        {"--x:5", 5},
        {"-X=+5", 5},
        {"-x=-5", -5},
        {"-x=007", 7},
        {"-x=-0Xff", -255},
        // the ends of signed 32 bits, and one step behind them
        {"-x=2147483647", 2147483647},
        {"-x=2147483648", c_bare},
        {"-x=-2147483648", c_lowest},
        {"-x=-2147483649", c_bare},
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
        {"-x=+-5", c_bare},
        {"-x==5", c_bare},
        // no option of that name
        {"x=5", c_missing},
        {"-xx=5", c_missing},
        {"---x=5", c_missing},
        {"-=5", c_missing},
        {"--", c_missing},
        {"", c_missing},
    };
    for (Case const & each : c_cases) {
        Set({each.argument});
        EXPECT_EQ(read("x"), each.value) << each.argument;
        EXPECT_EQ(read(""), c_missing) << each.argument;
    }
}

TEST_F(Options, TakesAWholeNumberFromTheNextArgument) {
    Set({"-a", "7", "-b", "-8", "-c", "high", "--d", "0x10", "-e", "-f=", "9", "last", "-i", "-I=5"});

    struct Case {
        char const * option;
        int value;
        char const * rule;
    };

    constexpr Case c_cases[] = {
        {"a", 7, "a number"},
        {"b", -8, "a number with a sign"},
        {"8", c_missing, "which was taken and is no option"},
        {"c", c_bare, "a text is no number"},
        {"d", 16, "a number with a base"},
        {"e", c_bare, "another option follows"},
        {"f", c_bare, "a sign and nothing behind it"},
        {"i", c_bare, "the first of two counts"},
        {"last", c_missing, "no dash"},
        {"program", c_missing, "the program's name is no option"},
        {nullptr, c_missing, "no name"},
    };
    for (Case const & each : c_cases)
        EXPECT_EQ(read(each.option), each.value) << each.rule;
}
