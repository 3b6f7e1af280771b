#include "tests/support/StreamBytes.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/tools/ToolRun.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <iterator>

namespace {

using Words = std::vector<std::string>;

Words wordsOf(std::string const & text) {
    std::istringstream words(text);
    return {std::istream_iterator<std::string>(words), {}};
}

// The names that a help lists below a heading.
Words listedIn(std::string const & help, std::string const & heading) {
    std::istringstream lines(help.substr(std::min(help.find('\n' + heading + ":\n"), help.size())));
    std::string line;
    std::getline(std::getline(lines, line), line); // a line end and the heading
    Words names;
    while (std::getline(lines, line) && !line.empty())
        names.push_back(wordsOf(line).front());
    return names;
}

// The help of every verb.
std::vector<std::string> allHelp() {
    std::vector<std::string> texts;
    for (std::string const & group : listedIn(RunTool({"--help"}).out, "Groups"))
        for (std::string const & verb : listedIn(RunTool({group, "--help"}).out, "Verbs"))
            texts.push_back(RunTool({group, verb, "--help"}).out);
    return texts;
}

std::string const c_example = "\nExample: crosstool ";

// What a command for the shell prints.
std::string outputOf(std::string const & command) {
    FILE * const pipe = popen(command.c_str(), "r");
    std::string text;
    for (std::array<char, 256> part; std::fgets(part.data(), part.size(), pipe);)
        text += part.data();
    EXPECT_EQ(pclose(pipe), 0) << command;
    return text;
}

class Help : public testing::Test {
protected:
    Help() {
        folder.WriteFile("tank.lua", "speed = 1.5");
        folder.WriteFile("tank.obj", "v 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 3\n");
        folder.WriteFile("video.ini", "[a]\r\nx=1\r\n");
        folder.WriteFile("sysconfig.lua", "configuration = { { setting = 'tanks', value = 1 } }");
        folder.WriteFile("statgraph.txt", "1.000,0.500,\ntime,a,\n");
        folder.WriteFile("cheatmenu.lua", "SubMenuItems = {}");
        folder.WriteFile("grass.tga", FromHex("00 00 02 0000 0000 00 0000 0000 0100 0100 18 00 010203"));
        for (char const * const side : {"left.txt", "right.txt"})
            folder.WriteFile(side, "Total CRC: [ 1f0c93ab ]\nSim: \n{\n  frame: [ 1 ]\n}\n");
        for (char const * const side : {"old", "new"}) {
            std::filesystem::create_directory(folder / side);
            RunTool({"table", "build", folder / "tank.lua", folder / (std::string(side) + "/tank.tbl")});
        }
        std::filesystem::current_path(folder.Path());
    }

    ~Help() override { std::filesystem::current_path(before); }

    TemporaryFolder folder;
    std::filesystem::path const before = std::filesystem::current_path();
};

} // namespace

// As a newcomer runs them: in the order of the help, so that one may use what another has made.
TEST_F(Help, EveryExampleWorks) {
    std::size_t count = 0;
    for (std::string const & help : allHelp()) {
        std::size_t const place = help.find(c_example);
        ASSERT_NE(place, std::string::npos) << help;
        ToolResult const result = RunTool(wordsOf(help.substr(place + c_example.size())));
        EXPECT_EQ(result.code, 0) << help << result.err;
        EXPECT_NE(result.out, "") << help;
        ++count;
    }
    EXPECT_GE(count, 22u);
}

// A description is one line with the exit code 1 in it where there is one; every argument says what it is.
TEST_F(Help, DescriptionsFitTheirLine) {
    for (std::string const & help : allHelp()) {
        EXPECT_NE(help.find("\nUsage: crosstool "), std::string::npos) << help;
        EXPECT_EQ(help.find("\nUsage: crosstool "), help.find('\n')) << help;
        std::istringstream lines(help);
        for (std::string line; std::getline(lines, line);) {
            EXPECT_LE(line.size(), 110u) << line;
            EXPECT_TRUE(line.rfind("  ", 0) != 0 || wordsOf(line).size() > 2) << line;
        }
    }
}

TEST_F(Help, WrongCommandLinesTellWhatIsWrong) {
    std::pair<Words, std::string> const cases[] = {
        {{}, "a group or a verb is missing"},
        {{"table"}, "a group or a verb is missing"},
        {{"image"}, "\"image\" is not known here"},
        {{"table", "verfy", "x"}, "\"verfy\" is not known here"},
        {{"table", "crc"}, "FILE is required"},
        {{"table", "crc", "x", "y"}, "The following argument was not expected: y"},
    };
    for (auto const & [arguments, reason] : cases) {
        ToolResult const refused = RunTool(arguments);
        EXPECT_EQ(refused.code, 2) << reason;
        EXPECT_EQ(refused.out, "") << reason;
        EXPECT_EQ(refused.err.find("failed: " + reason + "\n\n"), 0u) << refused.err;
    }
}

TEST_F(Help, TheManualPageIsWellFormed) {
    std::string const page = RunTool({"man"}).out;
    for (std::string const & help : allHelp())
        EXPECT_NE(page.find(".SS \"" + wordsOf(help.substr(help.find("crosstool ") + 10)).front()),
                  std::string::npos)
            << help;
    EXPECT_NE(page.find("\n.TP\n.B \\-\\-names FILE\n"), std::string::npos);
    if (std::system("command -v man > /dev/null") != 0)
        GTEST_SKIP() << "no man to check it further";
    folder.WriteFile("crosstool.1", page);
    EXPECT_EQ(outputOf("man --warnings -l ./crosstool.1 2>&1 > /dev/null"), "");
}

TEST_F(Help, BashCompletesGroupsVerbsAndOptions) {
    folder.WriteFile("completion", RunTool({"completion"}).out);
    folder.WriteFile("try", "source ./completion\n"
                            "try() {\n"
                            "    COMP_WORDS=(crosstool \"$@\") COMP_CWORD=$# COMPREPLY=()\n"
                            "    _crosstool\n"
                            "    echo \"$*: ${COMPREPLY[*]}\"\n"
                            "}\n"
                            "try s\ntry tga ''\ntry image ''\ntry table dump --\ntry table dump tank\n"
                            "complete -p crosstool\n");
    EXPECT_EQ(outputOf("bash ./try 2>&1"), "s: script sync settings stats\n"
                                           "tga : info verify topng frompng resave --help\n"
                                           "image : \n"
                                           "table dump --: --help --names --json\n"
                                           "table dump tank: \n" // files then
                                           "complete -o default -F _crosstool crosstool\n");
}
