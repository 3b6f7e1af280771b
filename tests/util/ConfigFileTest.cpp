#include "Cross/Util/ConfigFile.h"

#include "Cross/engine/filesystem/FileStream.h"
#include "tests/support/StreamBytes.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/TraceCapture.h"

#include <gtest/gtest.h>

#include <limits>

namespace {

std::u16string wide(std::string const & ascii) { return {ascii.begin(), ascii.end()}; }

// All content in the order of the maps, as "[section]key=value;...".
std::string contentOf(ConfigFile const & file) {
    std::string content;
    for (unsigned int s = 0; s < file.GetSectionCount(); ++s) {
        content += std::string("[") + file.GetSectionAt(s) + "]";
        file.SetSection(file.GetSectionAt(s), nullptr, 0);
        for (unsigned int k = 0; k < file.GetKeyCount(); ++k) {
            std::string value;
            file.GetString(file.GetKeyAt(k), value);
            content += std::string(file.GetKeyAt(k)) + "=" + value + ";";
        }
    }
    return content;
}

std::string parsed(std::string const & text) {
    FilledStream stream(text);
    ConfigFile file;
    bool const result = file.Load(static_cast<ByteStream *>(stream));
    EXPECT_EQ(result, file.IsLoaded());
    return (file.IsLoaded() ? "" : "not loaded") + contentOf(file);
}

} // namespace

TEST(ConfigFile, ReadsTheFormat) {
    std::string const block(1023, 'x');

    // A key of more than 255 characters cannot be asked for: it shows without its value here.
    std::tuple<char const *, std::string, std::string> const c_cases[] = {
        {"names ignore case, the first of two keys stands",
         "[Video]\r\nWidth=1\r\n[AUDIO]\r\n[video]\r\nWIDTH=2\r\nHeight=3\r\n",
         "[audio][video]height=3;width=1;"},
        {"blanks go, further '=' stay, ';' is text behind other text",
         "  [ A b ]  \r\n\t\v key = a=b \f\r\n n=v ; note\r\n\v\r\n", "[a b]key=a=b;n=v ; note;"},
        {"comments and malformed lines are skipped",
         "[s]\r\n; x=1\r\n[open\r\n=1\r\nnothing\r\n  = 2\r\nempty=\r\n", "[s]empty=;"},
        {"keys in front of the first header are lost", "a=1\r\n[s]\r\nb=2\r\n", "[s]b=2;"},
        {"an empty name is a section", "[]\r\na=1\r\n", "[]a=1;"},
        {"a last line without end", "[s]\r\na=1", "[s]a=1;"},
        {"only CR LF ends a line", "[s]\r\na=1\nb=2\rc\r\n", "[s]a=1\nb=2\rc;"},
        {"no header", "a=1\r\n", "not loaded"},
        {"nothing", "", "not loaded"},
        {"NUL is a byte like others", std::string("[s]\r\na=1\0\0", 10) + "2\r\n",
         "[s]a=" + std::string("1\0\0", 3) + "2;"},
        {"a line of 1,023 bytes is one line", "[s]\r\n" + std::string(1019, 'k') + "=12x",
         "[s]" + std::string(1019, 'k') + "=;"},
        {"the rest of a longer one is the next line", "[s]\r\na=" + block.substr(2) + "b=2\r\n",
         "[s]a=" + block.substr(2) + ";b=2;"},
        {"an end that the 1,023 bytes cut is none", "[s]\r\n" + block.substr(3) + "=1\r\nb=2\r\n",
         "[s]b=2;" + block.substr(3) + "=;"},
    };
    for (auto const & [rule, text, content] : c_cases) {
        SCOPED_TRACE(rule);
        EXPECT_EQ(parsed(text), content);
    }
}

TEST(ConfigFile, TheFirstHeaderOfTheFileIsCurrent) {
    FilledStream stream("[b]\r\nx=1\r\n[a]\r\ny=2\r\n");
    ConfigFile file;
    EXPECT_TRUE(file.Load(static_cast<ByteStream *>(stream)));
    EXPECT_STREQ(file.GetSection(), "b");
    EXPECT_STREQ(file.GetSectionAt(0), "a");
    EXPECT_STREQ(file.GetSectionAt(2), "");
    EXPECT_STREQ(file.GetKeyAt(0), "x");
    EXPECT_STREQ(file.GetKeyAt(1), "");
    FilledStream unnamed("[]\r\n[b]\r\n");
    EXPECT_TRUE(file.Load(static_cast<ByteStream *>(unnamed)));
    EXPECT_STREQ(file.GetSection(), "");
}

// More than is read from the stream at a time, so that lines and their ends lie across the borders.
TEST(ConfigFile, ReadsBigFiles) {
    std::string text = "[s]\r\n", content = "[s]";
    for (int i = 100; i < 600; ++i) {
        std::string const line = std::to_string(i) + "=" + std::string(static_cast<std::size_t>(i), 'v');
        text += line + "\r\n";
        content += line + ";";
    }
    EXPECT_EQ(parsed(text), content);
}

TEST(ConfigFile, SetSectionMovesOrTells) {
    std::string const longName(255, 'n');
    FilledStream stream("[section one]\r\na=1\r\n[b]\r\n[" + longName + "]\r\n");
    ConfigFile file;
    file.Load(static_cast<ByteStream *>(stream));
    char previous[4] = "xyz";
    EXPECT_FALSE(file.SetSection(nullptr, previous, sizeof(previous)));
    EXPECT_STREQ(previous, "sec");
    EXPECT_FALSE(file.SetSection((longName + "n").c_str(), previous, 0));
    EXPECT_STREQ(file.GetSection(), "section one");
    EXPECT_TRUE(file.SetSection(longName.c_str(), nullptr, 0));
    EXPECT_TRUE(file.SetSection("section one", nullptr, 0));
    EXPECT_TRUE(file.SetSection("B", nullptr, 4));
    EXPECT_STREQ(file.GetSection(), "b");
    char both[16] = "SECTION ONE"; // the name is read before it is overwritten
    EXPECT_TRUE(file.SetSection(both, both, sizeof(both)));
    EXPECT_STREQ(both, "b");
    EXPECT_STREQ(file.GetSection(), "section one");
    EXPECT_FALSE(file.SetSection("unknown", nullptr, 0));
    EXPECT_STREQ(file.GetSection(), "");
    EXPECT_EQ(file.GetKeyCount(), 0u);
    EXPECT_EQ(file.GetKeyAt(0), nullptr);
    EXPECT_FALSE(file.GetString("a", both, sizeof(both)));
    EXPECT_EQ(file.GetSectionCount(), 3u);
}

TEST(ConfigFile, GetStringFitsOrFails) {
    ConfigFile file;
    file.SetString("key", "value");
    char buffer[8] = "old";
    EXPECT_FALSE(file.GetString("key", buffer, 5));
    EXPECT_STREQ(buffer, "");
    EXPECT_TRUE(file.GetString("KEY", buffer, 6));
    EXPECT_STREQ(buffer, "value");
    EXPECT_FALSE(file.GetString("", buffer, 8));
    EXPECT_FALSE(file.GetString(nullptr, buffer, 8));
    EXPECT_FALSE(file.GetString("key", buffer, 0));
    EXPECT_FALSE(file.GetString("key", nullptr, 8));
    EXPECT_STREQ(buffer, "value") << "these touch nothing";
    EXPECT_FALSE(file.GetString("none", buffer, 8));
    EXPECT_STREQ(buffer, "");
    char both[8] = "key";
    EXPECT_TRUE(file.GetString(both, both, sizeof(both)));
    EXPECT_STREQ(both, "value");

    std::string text;
    for (char const * const missing : {"none", static_cast<char const *>(nullptr)}) {
        text = "old";
        EXPECT_FALSE(file.GetString(missing, text));
        EXPECT_EQ(text, "");
    }
    for (std::size_t const length : {2047u, 2048u}) {
        file.SetString("long", std::string(length, 'v').c_str());
        EXPECT_EQ(file.GetString("long", text), length == 2047);
        EXPECT_EQ(text.size(), length == 2047 ? length : 0);
    }
}

TEST(ConfigFile, GetIntReadsWholeNumbers) {
    std::tuple<std::string, bool, int> const c_cases[] = {
        {"12", true, 12},
        {"-7", true, -7},
        {" +9", true, 9},
        {"", true, 0},
        {"12abc", false, 0},
        {"0x10", false, 0},
        {"1.5", false, 0},
        {" ", false, 0},
        {"2147483648", true, std::numeric_limits<int>::max()},
        {"-99999999999999999999999", true, std::numeric_limits<int>::min()},
        {std::string(30, '0') + "5", true, 5},
        {std::string(31, '0') + "5", false, 0}, // 32 characters
    };
    ConfigFile file;
    for (auto const & [text, result, expected] : c_cases) {
        file.SetString("n", text.c_str());
        int value = 42;
        EXPECT_EQ(file.GetInt("n", value), result) << text;
        EXPECT_EQ(value, expected) << text;
    }
    int value = 42;
    EXPECT_FALSE(file.GetInt("", value));
    EXPECT_EQ(value, 42);
    EXPECT_FALSE(file.GetInt("none", value));
    EXPECT_EQ(value, 0);
    EXPECT_TRUE(file.SetInt("n", std::numeric_limits<int>::min()) && file.GetInt("n", value));
    EXPECT_EQ(value, std::numeric_limits<int>::min());
}

TEST(ConfigFile, SetStringRefusesWhatAFileCannotHold) {
    ConfigFile file;
    for (char const * const bad : {"a=b", ";", "x\r\ny"}) {
        EXPECT_FALSE(file.SetString(bad, "v")) << bad;
        EXPECT_FALSE(file.SetString("k", bad)) << bad;
    }
    EXPECT_FALSE(file.SetString("", "v") || file.SetString(nullptr, "v") || file.SetString("k", nullptr) ||
                 file.Remove("k"));
    EXPECT_EQ(file.GetSectionCount(), 0u);
    std::string const longKey(300, 'K');
    EXPECT_TRUE(file.SetString(longKey.c_str(), "v"));
    EXPECT_EQ(contentOf(file), "[]" + std::string(255, 'k') + "=v;");
    EXPECT_TRUE(file.Remove(longKey.c_str()));
    EXPECT_FALSE(file.Remove(longKey.c_str()) || file.Remove(nullptr) || file.Remove(""));
    EXPECT_EQ(contentOf(file), "[]") << "an empty section stays";
}

TEST(ConfigFile, SavesBytesThatLoadAgain) {
    TemporaryFolder const folder;
    folder.WriteFile("in.ini", "[b]\r\nX=1\r\n[a]\r\ny=2;3=4\r\nempty=\r\n[]\r\n");
    ConfigFile file((folder / "in.ini").c_str());
    ASSERT_TRUE(file.IsLoaded());
    EXPECT_EQ(std::u16string(file.GetFilename()), wide(folder / "in.ini"));
    EXPECT_TRUE(file.Save(wide(folder / "out.ini").c_str()));
    EXPECT_EQ(folder.ReadFile("out.ini"), "[]\r\n[a]\r\nempty=\r\ny=2;3=4\r\n[b]\r\nx=1\r\n\r\n");
    ConfigFile again((folder / "out.ini").c_str());
    EXPECT_EQ(contentOf(again), contentOf(file));
    EXPECT_TRUE(file.Save(nullptr)) << "over the file that was loaded";
    EXPECT_EQ(folder.ReadFile("in.ini"), folder.ReadFile("out.ini"));
}

TEST(ConfigFile, FilesThatDoNotOpen) {
    TemporaryFolder const folder;
    folder.WriteFile("good.ini", "[s]\r\na=1\r\n");
    ConfigFile file((folder / "good.ini").c_str());
    EXPECT_TRUE(file.Load(static_cast<char const *>(nullptr)));
    EXPECT_TRUE(file.Load(static_cast<char16_t const *>(nullptr)));
    EXPECT_EQ(contentOf(file), "[s]a=1;") << "a null name changes nothing";
    EXPECT_FALSE(file.Load((folder / "none.ini").c_str()));
    EXPECT_STREQ(file.GetSection(), "");
    EXPECT_EQ(contentOf(file), "");
    EXPECT_EQ(std::u16string(file.GetFilename()), wide(folder / "none.ini"));
    EXPECT_FALSE(file.Load("\xFF\xFE"));
    EXPECT_EQ(std::u16string(file.GetFilename()), u"");

    TraceCapture trace;
    std::string const inFile = folder / "good.ini/out.ini"; // a file for a folder
    EXPECT_FALSE(file.Save(wide(inFile).c_str()));
    ASSERT_EQ(trace.lines.size(), 1u);
    EXPECT_NE(trace.lines[0].find("Couldn't open config file " + inFile + " for writing"), std::string::npos);
}

TEST(ConfigFile, AFailedSaveKeepsTheOldFile) {
    TemporaryFolder const folder;
    folder.WriteFile("old.ini", "[s]\r\na=1\r\n");
    ConfigFile file((folder / "old.ini").c_str());
    for (std::size_t const size :
         {std::size_t{1}, std::size_t{FileBuffer::c_size}}) { // gathered, and at once
        file.SetString("a", std::string(size, '2').c_str());
        TraceCapture trace;
        FileFaults::Instance().failingWrite = 1;
        EXPECT_FALSE(file.Save(nullptr));
        FileFaults::Instance().Clear();
        EXPECT_EQ(folder.ReadFile("old.ini"), "[s]\r\na=1\r\n");
        EXPECT_EQ(folder.CountEntries(), 1u);
        ASSERT_EQ(trace.lines.size(), 2u) << "the first one is the stream's";
        EXPECT_NE(trace.lines[1].find("Couldn't write config file " + folder / "old.ini"), std::string::npos);
    }
}
