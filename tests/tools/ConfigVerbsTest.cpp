#include "tests/support/StreamBytes.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/tools/ToolRun.h"
#include "tools/ConfigLint.h"

#include <gtest/gtest.h>

namespace {

// The findings as "line: reason" lines.
std::string findings(std::string const & text) {
    FilledStream stream(text);
    std::string list;
    for (ConfigReport::Finding const & finding : LintConfig(stream).findings)
        list += std::to_string(finding.line) + ": " + finding.reason + "\n";
    return list;
}

} // namespace

TEST(ConfigLint, TellsWhatLoadingDropsOrCuts) {
    std::string const malformed = "is dropped: neither [section], key=value nor a comment\n";
    std::string const feed = "ends with LF alone: the next line counts as part of it\n";
    std::string const longName = "has a name of more than 255 characters, which no program can ask for\n";
    std::string const noHeader = "there is no section header: the file does not load\n";
    std::pair<std::string, std::string> const c_cases[] = {
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
        {"[a]\r\nk=" + std::string(1020, 'x') + "\rword\r\n",
         "2: is cut at 1023 bytes: the rest counts as the next line\n2: " + malformed},
        // an end that does not fit is no text that is cut, and LF around a line joins nothing
        {"[a]\r\nk=" + std::string(1020, 'x') + "\r\nword\r\n", "3: " + malformed},
        {"[a]\r\nk=" + std::string(1021, 'x') + "\r\nword\r\nl=" + std::string(1021, 'x'), "3: " + malformed},
        {"[a]\r\n\n\nx=1\r\nword\r\ny=1\n", "5: " + malformed},
        {"[" + std::string(256, 's') + "]\r\n" + std::string(256, 'k') + "=1\r\n",
         "1: " + longName + "2: " + longName},
        {"", "1: " + noHeader},
    };
    for (auto const & [text, expected] : c_cases)
        EXPECT_EQ(findings(text), expected) << text;
}

TEST(ConfigLint, TheVerbNamesFileAndLine) {
    TemporaryFolder const folder;
    folder.WriteFile("good.ini", "[a]\r\nx=1\r\n");
    folder.WriteFile("bad.ini", "[a]\r\nx=1\r\nx=2\r\n");
    std::string const good = folder / "good.ini", bad = folder / "bad.ini", none = folder / "none.ini";
    ToolResult result = RunTool({"config", "lint", good});
    EXPECT_EQ(result.code, 0);
    EXPECT_EQ(result.out, "good: " + good + ": 1 section, 1 entry\n");
    result = RunTool({"config", "lint", bad});
    EXPECT_EQ(result.code, 1);
    EXPECT_EQ(result.out, "1 finding: " + bad + ": 1 section, 1 entry load\n" + bad +
                              ":3: is dropped: the key \"x\" stands in line 2\n");
    EXPECT_EQ(RunTool({"config", "lint", bad, "--json"}).out,
              "{\"verdict\": \"findings\", \"file\": \"" + bad +
                  "\", \"sections\": 1, \"entries\": 1, \"findings\": [{\"line\": 3, \"reason\": "
                  "\"is dropped: the key \\\"x\\\" stands in line 2\"}]}\n");
    EXPECT_EQ(RunTool({"config", "lint", none, "--json"}).code, 2);
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
    ToolResult result = RunTool({"settings", "explain", file, "-tanks=2", "-bloom", "-hue=2"});
    EXPECT_EQ(result.code, 0);
    EXPECT_EQ(
        result.out,
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
    EXPECT_NE(RunTool({"settings", "explain", file}).out.find("0 differ"), std::string::npos);
    EXPECT_EQ(RunTool({"settings", "explain", file, "--json", "-bloom"})
                  .out.find("{\"verdict\": \"good\", \"file\": \"" + file +
                            "\", \"settings\": ["
                            "{\"name\": \"asis\", \"kind\": \"number\", \"file\": 7, \"option\": \"-\", "
                            "\"effective\": 7, \"kilobytes\": 0}, "
                            "{\"name\": \"bloom\", \"kind\": \"switch\", \"file\": 0, \"option\": \"given\", "
                            "\"effective\": 1, \"kilobytes\": 512}, "),
              0u);
    EXPECT_EQ(RunTool({"settings", "explain", broken}).code, 2);
    result = RunTool({"settings", "explain", none});
    EXPECT_EQ(result.code, 2);
    EXPECT_EQ(result.err, "failed: " + none + ": does not exist\n");
}
