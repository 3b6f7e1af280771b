#include "Cross/engine/platform/Options.h"

#include <gtest/gtest.h>
#include <vector>

namespace {

constexpr int c_bare = -1;
constexpr int c_missing = -2;

// Value of an option that has a number, or one of the two above.
int read(std::vector<char const *> arguments, char const * name) {
    arguments.insert(arguments.begin(), "-program=1");
    Plat::Options::SetCommandLine(static_cast<int>(arguments.size()), arguments.data());
    int value = c_bare;
    bool const hasNumber = Plat::Options::Get(name, value);
    bool const exists = Plat::Options::Exist(name);
    EXPECT_TRUE(exists || !hasNumber) << name;
    Plat::Options::SetCommandLine(0, nullptr);
    return exists ? value : c_missing;
}

} // namespace

TEST(Options, TakesNumbersFromOneArgument) {
    constexpr std::pair<char const *, int> c_cases[] = {
        {"-x=5", 5},
        {"--x:5", 5},
        {"-X=+5", 5},
        {"-x=007", 7},
        {"-x=-0Xff", -255},
        // the ends of signed 32 bits, and one step behind them
        {"-x=2147483647", 2147483647},
        {"-x=2147483648", c_bare},
        {"-x=-2147483648", -2147483647 - 1},
        {"-x=-0x80000001", c_bare},
        {"-x=18446744073709551617", c_bare},
        // no whole number
        {"-x", c_bare},
        {"-x=", c_bare},
        {"-x= 5", c_bare},
        {"-x=5a", c_bare},
        {"-x=0x", c_bare},
        {"-x=+-5", c_bare},
        // no option of that name
        {"x=5", c_missing},
        {"-xx=5", c_missing},
        {"---x=5", c_missing},
        {"-=5", c_missing},
        {"", c_missing},
    };
    for (auto const & [argument, value] : c_cases) {
        EXPECT_EQ(read({argument}, "x"), value) << argument;
        EXPECT_EQ(read({argument}, ""), c_missing) << argument;
    }
}

TEST(Options, TakesAWholeNumberFromTheNextArgument) {
    constexpr std::tuple<char const *, int, char const *> c_cases[] = {
        {"a", -8, "a number with a sign"},
        {"8", c_missing, "which was taken and is no option"},
        {"c", c_bare, "a text is no number"},
        {"e", c_bare, "another option follows"},
        {"f", c_bare, "a sign and nothing behind it"},
        {"i", c_bare, "the first of two counts, and nothing follows the argument list"},
        {"last", c_missing, "no dash"},
        {"program", c_missing, "the program's name is no option"},
        {nullptr, c_missing, "no name"},
    };
    for (auto const & [option, value, rule] : c_cases)
        EXPECT_EQ(read({"-a", "-8", "-c", "high", "-e", "-f=", "9", "last", "-i", "-I=5", "-z"}, option),
                  value)
            << rule;
}
