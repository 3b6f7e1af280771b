#include "tools/Verbs.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <sstream>

TEST(ScriptVerbs, TheGuideListsWhatIsBound) {
    char const * const arguments[] = {"crosstool", "script", "list"};
    std::ostringstream out, err;
    ASSERT_EQ(RunCrosstool(3, arguments, out, err), 0) << err.str();
    std::string const printed = out.str();
    std::size_t const lineEnd = printed.find('\n');
    EXPECT_EQ(printed.substr(0, 6), "good: ");

    std::ifstream in(TOOLS_SCRIPT_GUIDE);
    std::string const guide{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
    EXPECT_NE(guide.find("```text\n" + printed.substr(lineEnd + 1) + "```\n"), std::string::npos) << printed;
}
