#include "tests/support/StreamBytes.h"
#include "tests/support/TemporaryFolder.h"
#include "tools/ConfigLint.h"
#include "tools/Verbs.h"

#include <gtest/gtest.h>

#include <sstream>

namespace {

// The findings as "line: reason" lines.
std::string findings(std::string const & text) {
    FilledStream stream(text);
    std::string list;
    for (ConfigReport::Finding const & finding : LintConfig(stream).findings)
        list += std::to_string(finding.line) + ": " + finding.reason + "\n";
    return list;
}

struct Result {
    int code;
    std::string text;
};

Result run(std::vector<char const *> arguments) {
    arguments.insert(arguments.begin(), "crosstool");
    std::ostringstream out, err;
    int const code = RunCrosstool(static_cast<int>(arguments.size()), arguments.data(), out, err);
    return {code, out.str() + err.str()};
}

} // namespace

TEST(ConfigLint, TellsWhatLoadingDropsOrCuts) {
    struct Case {
        std::string text;
        std::string findings;
    };

    std::string const malformed = "is dropped: neither [section], key=value nor a comment\n";
    std::string const feed = "ends with LF alone: the next line counts as part of it\n";
    std::string const longName = "has a name of more than 255 characters, which no program can ask for\n";
    std::string const noHeader = "there is no section header: the file does not load\n";
    Case const c_cases[] = {
        {"[a]\r\nx=1\r\n\r\n; note\r\n[A]\r\ny=2", ""},
        {"x=1\r\n[a]\r\nX=1\r\n[b]\r\nx=1\r\n[A]\r\nx=2\r\n",
         "1: is dropped: the key \"x\" stands in front of the first header\n"
         "7: is dropped: the key \"x\" stands in line 3\n"},
        {"[a]\r\n[\r\n[b]=c\r\nword\r\n=1\r\n",
         "2: " + malformed + "3: " + malformed + "4: " + malformed + "5: " + malformed},
        {"[a]\nx=1\n[b]\r\ny=1\nz=2\r\nword\r\n", "1: " + feed + "4: " + feed + "6: " + malformed},
        {"\xEF\xBB\xBF[a]\r\nx=1\r\n",
         "1: begins with a byte order mark, which counts as text of the line\n1: " + malformed +
             "2: is dropped: the key \"x\" stands in front of the first header\n3: " + noHeader},
        {"[a]\r\nk=" + std::string(1022, 'x') + "\r\nword\r\n",
         "2: is cut at 1023 bytes: the rest counts as the next line\n2: " + malformed + "3: " + malformed},
        // an end that does not fit is no text that is cut, and LF around a line joins nothing
        {"[a]\r\nk=" + std::string(1020, 'x') + "\r\nword\r\n", "3: " + malformed},
        {"[a]\r\nk=" + std::string(1021, 'x') + "\r\nword\r\nl=" + std::string(1021, 'x'), "3: " + malformed},
        {"[a]\r\n\n\nx=1\r\nword\r\ny=1\n", "5: " + malformed},
        {"[" + std::string(256, 's') + "]\r\n" + std::string(256, 'k') + "=1\r\n",
         "1: " + longName + "2: " + longName},
        {"", "1: " + noHeader},
    };
    for (Case const & test : c_cases)
        EXPECT_EQ(findings(test.text), test.findings) << test.text;
}

TEST(ConfigLint, TheVerbNamesFileAndLine) {
    TemporaryFolder const folder;
    folder.WriteFile("good.ini", "[a]\r\nx=1\r\n");
    folder.WriteFile("bad.ini", "[a]\r\nx=1\r\nx=2\r\n");
    std::string const good = folder / "good.ini", bad = folder / "bad.ini", none = folder / "none.ini";
    Result result = run({"config", "lint", good.c_str()});
    EXPECT_EQ(result.code, 0);
    EXPECT_EQ(result.text, "good: " + good + ": 1 sections, 1 entries\n");
    result = run({"config", "lint", bad.c_str()});
    EXPECT_EQ(result.code, 1);
    EXPECT_EQ(result.text, "1 findings: " + bad + ": 1 sections, 1 entries load\n" + bad +
                               ":3: is dropped: the key \"x\" stands in line 2\n");
    EXPECT_EQ(run({"config", "lint", none.c_str()}).code, 2);
}

TEST(SettingsExplain, ShowsWhatCounts) {
    TemporaryFolder const folder;
    folder.WriteFile("my.lua", "applicationBaseMemory = 100\n"
                               "configuration = {\n"
                               "  { setting = 'Tanks', value = 1, memoryUsed = { 1, 2, 3 } },\n"
                               "  { setting = 'bloom', value = 0, valueType = 1, memoryUsed = { 0, 0.5 } },\n"
                               "  { setting = 'asis', value = 7 },\n"
                               "}\n");
    folder.WriteFile("broken.lua", "configuration = {");
    std::string const file = folder / "my.lua", broken = folder / "broken.lua", none = folder / "none.lua";
    Result result = run({"settings", "explain", file.c_str(), "-tanks=2", "-bloom"});
    EXPECT_EQ(result.code, 0);
    EXPECT_EQ(
        result.text,
        "good: " + file +
            ": 3 settings, 2 differ from the file\n"
            "setting                         kind            file      option   effective      memory\n"
            "\"asis\"                          number             7           -           7        0 KB\n"
            "\"bloom\"                         switch             0       given           1      512 KB"
            "  differs from the file\n"
            "\"tanks\"                         number             1           2           2     3072 KB"
            "  differs from the file\n"
            "settings: 3584 KB\n"
            "application: 102400 KB, with the settings 105984 KB\n"
            "graphics driver: 32768 KB, with all of it 138752 KB\n"
            "allowable overflow: 131072 KB, enough for the settings\n");
    EXPECT_NE(run({"settings", "explain", file.c_str()}).text.find("0 differ"), std::string::npos);
    EXPECT_EQ(run({"settings", "explain", broken.c_str()}).code, 2);
    result = run({"settings", "explain", none.c_str()});
    EXPECT_EQ(result.code, 2);
    EXPECT_EQ(result.text, "failed: " + none + ": does not exist\n");
}
