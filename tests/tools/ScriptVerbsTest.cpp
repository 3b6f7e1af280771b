#include "tests/tools/ToolRun.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>

TEST(ScriptVerbs, TheGuideListsWhatIsBound) {
    std::string const printed = RunTool({"script", "list"}).out;
    std::size_t const lineEnd = printed.find('\n');
    EXPECT_EQ(printed.substr(0, 6), "good: ");

    std::ifstream in(TOOLS_SCRIPT_GUIDE);
    std::string const guide{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
    EXPECT_NE(guide.find("```text\n" + printed.substr(lineEnd + 1) + "```\n"), std::string::npos) << printed;

    EXPECT_EQ(RunTool({"script", "list", "--json"})
                  .out.find("{\"verdict\": \"good\", \"libraries\": [{\"name\": \""),
              0u);
}
