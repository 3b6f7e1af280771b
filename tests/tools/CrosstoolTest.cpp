#include "tests/tools/ToolRun.h"

#include "Cross/Util/BinaryConfigIO.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>
#include <zlib.h>

#include <sys/wait.h>

#include <cstdio>
#include <cstring>
#include <sstream>
#include <tuple>

namespace {

// Where things stand in a file that the library writes: file header, chunk header, crc and size, image.
constexpr std::size_t c_chunkHeader = 16;
constexpr std::size_t c_crc = 36;
constexpr std::size_t c_image = 44;

std::string firstLine(std::string const & text) { return text.substr(0, text.find('\n')); }

class Crosstool : public testing::Test {
protected:
    // Builds a source; the file "NAME.tbl" and the list of names "NAME.names" are in the folder then.
    std::string Build(std::string const & name, std::string const & source) {
        folder.WriteFile(name + ".lua", source);
        ToolResult const built = RunTool({"table", "build", folder / (name + ".lua"),
                                          folder / (name + ".tbl"), "--names", folder / (name + ".names")});
        EXPECT_EQ(built.code, 0) << built.err;
        return folder / (name + ".tbl");
    }

    // A small table with every type in it.
    std::string BuildSample() {
        return Build(
            "sample",
            "speed = 1.5 on = true tag = 'ab' sub = { x = -1 } wide = 'w\xC3\xA4' list = { 'p', 'q' }\n"
            "types = { integer = { 'sub.x' }, wide = { 'wide' }, ordered = { 'list' } }");
    }

    // Rewrites a file with other bytes.
    std::string WithBytes(std::string const & bytes) {
        folder.WriteFile("changed.tbl", bytes);
        return folder / "changed.tbl";
    }

    // Makes the stored crc that of the image, so that only the structure is wrong.
    static void FixCrc(std::string & bytes) {
        auto const image = reinterpret_cast<Bytef const *>(bytes.data() + c_image);
        auto const crc =
            static_cast<std::uint32_t>(crc32(0, image, static_cast<uInt>(bytes.size() - c_image)));
        std::memcpy(bytes.data() + c_crc, &crc, sizeof(crc));
    }

    // A damaged file: verify finds it, and every other verb that reads it says the same and stops.
    void ExpectDamaged(std::string const & path, std::string const & what, std::string const & context) {
        ToolResult const verified = RunTool({"table", "verify", path});
        EXPECT_EQ(verified.code, 1) << context;
        EXPECT_EQ(verified.out.find("damaged: " + path), 0u) << context << verified.out;
        EXPECT_NE(firstLine(verified.out).find(what), std::string::npos) << context << verified.out;
        EXPECT_EQ(verified.err, "") << context;
        ToolResult const dumped = RunTool({"table", "dump", path});
        EXPECT_EQ(dumped.code, 2) << context;
        EXPECT_EQ(dumped.out, "") << context;
        EXPECT_EQ("damaged: " + dumped.err.substr(8), verified.out) << context;
    }

    TemporaryFolder folder;
};

TEST_F(Crosstool, GoodTablePassesThroughEveryVerb) {
    std::string const table = BuildSample();
    std::string const names = folder / "sample.names";
    BinaryConfig config;
    ASSERT_TRUE(BinaryConfigIO::LoadUnAliased(table.c_str(), config));
    char crc[16];
    std::snprintf(crc, sizeof(crc), "0x%08X", config.GetCRC());
    std::string const summary =
        table + ": 9 fields, " + std::to_string(config.GetBinaryConfigDataSize()) + " bytes, crc " + crc;

    EXPECT_EQ(RunTool({"table", "verify", table}).out, "good: " + summary + "\n");
    EXPECT_EQ(RunTool({"table", "crc", table}).out, crc + (" " + table) + "\n");
    EXPECT_EQ(RunTool({"table", "diff", table, table}).out.find("equal: "), 0u);
    ToolResult const dumped = RunTool({"table", "dump", table, "--names", names});
    EXPECT_EQ(dumped.code, 0);
    EXPECT_EQ(dumped.out, "good: " + summary +
                              "\n"
                              "speed: Float 1.5\n"
                              "on: Bool true\n"
                              "tag: String \"ab\"\n"
                              "wide: WString \"w\xC3\xA4\"\n"
                              "list: TableUnsorted of 2 fields\n"
                              "    1: String \"p\"\n"
                              "    2: String \"q\"\n"
                              "sub: Table of 1 field\n"
                              "    x: Integer -1\n");
    EXPECT_NE(RunTool({"table", "dump", table}).out.find("\n0x12AB97D0: Float 1.5\n"), std::string::npos);
}

TEST_F(Crosstool, JsonIsValidForAnyBytes) {
    std::string const table = Build(
        "json", "t = { a = 'q\"\\\\\\n\\1', b = 'bad \xFF\xC3 good \xC3\xA4', c = 'w', d = 1/0, e = 0.1 }\n"
                "types = { ordered = { 't' }, wide = { 't.c' } }");
    std::string bytes = folder.ReadFile("json.tbl");
    // The wide text becomes an unpaired surrogate.
    std::size_t const wide = bytes.find(std::string("w\0\0\0", 4));
    bytes.replace(wide, 2, "\x00\xD8", 2);
    FixCrc(bytes);
    ToolResult const dumped =
        RunTool({"table", "dump", "--json", WithBytes(bytes), "--names", folder / "json.names"});
    EXPECT_EQ(dumped.code, 0) << dumped.err;
    EXPECT_EQ(firstLine(dumped.out).find("{\"verdict\": \"good\", \"file\": \""), 0u) << dumped.out;
    EXPECT_EQ(dumped.out.substr(dumped.out.find('\n')),
              "\n"
              "  {\"key\": \"0x6742BE70\", \"name\": \"t\", \"type\": \"TableUnsorted\", \"fields\": [\n"
              "    {\"key\": \"0x29EEC818\", \"name\": \"a\", \"type\": \"String\", \"value\": "
              "\"q\\\"\\\\\\n\\u0001\"},\n"
              "    {\"key\": \"0x54ACA597\", \"name\": \"b\", \"type\": \"String\", \"value\": \"bad "
              "\xEF\xBF\xBD\xEF\xBF\xBD good \xC3\xA4\"},\n"
              "    {\"key\": \"0x4FA4BEDB\", \"name\": \"c\", \"type\": \"WString\", \"value\": "
              "\"\xEF\xBF\xBD\"},\n"
              "    {\"key\": \"0x322F4A94\", \"name\": \"d\", \"type\": \"Float\", \"value\": \"inf\"},\n"
              "    {\"key\": \"0xEF61EFCE\", \"name\": \"e\", \"type\": \"Float\", \"value\": 0.1}\n"
              "  ]}\n"
              "]}\n");
}

TEST_F(Crosstool, FindsACutAndAFlipInEveryByte) {
    BuildSample();
    std::string const good = folder.ReadFile("sample.tbl");
    for (std::size_t i = 0; i < good.size(); ++i) {
        std::string const place = "byte " + std::to_string(i) + ": ";
        ExpectDamaged(WithBytes(good.substr(0, i)), "offset ", "cut at " + place);
        // All bits, and one, which moves along with the byte.
        for (int const mask : {0xFF, 1 << (i % 8)}) {
            std::string bytes = good;
            bytes[i] = static_cast<char>(bytes[i] ^ mask);
            ExpectDamaged(WithBytes(bytes), "offset ", place);
        }
    }
}

TEST_F(Crosstool, MapsFaultsToTheirPlaceInTheFile) {
    BuildSample();
    std::string const good = folder.ReadFile("sample.tbl");
    std::size_t const flag = good.find(std::string("\1ab\0", 4)); // the bool `on`, before the text `tag`
    ASSERT_NE(flag, std::string::npos);
    auto const changed = [&good](std::size_t offset, char value) {
        std::string bytes = good;
        bytes[offset] = value;
        return bytes;
    };
    std::string badBool = changed(flag, 2);
    FixCrc(badBool);

    std::tuple<char const *, std::string, std::size_t, std::string> const cases[] = {
        // rule, file, and what the first finding tells: its place and how it begins
        {"a bool of 2", badBool, flag, ""},
        {"of two findings, the crc comes first", changed(flag, 3), c_crc, "the crc is 0x"},
        {"one behind the table", good + "end", good.size(), "3 bytes follow behind the table"},
        {"no version", changed(c_chunkHeader + 8, 0), c_chunkHeader, "the table has version 0, not 1"},
        {"a folder", changed(c_chunkHeader, 1), c_chunkHeader, "a chunk of another kind"},
        {"no room for crc and size", changed(c_chunkHeader + 12, 7), c_crc, "the chunk has 7 bytes, too few"},
        {"another id", changed(c_chunkHeader + 4, 'X'), c_chunkHeader, "a chunk of another kind"},
        {"no chunk", good.substr(0, c_chunkHeader), c_chunkHeader, "the file ends where the table"},
    };
    for (auto const & [rule, bytes, offset, finding] : cases) {
        char place[32];
        std::snprintf(place, sizeof(place), ": offset 0x%zX: ", offset);
        ExpectDamaged(WithBytes(bytes), place + finding, rule);
    }
}

TEST_F(Crosstool, FailsWithAReason) {
    std::string const table = BuildSample();
    folder.WriteFile("bad.lua", "a = 1\nb = function() end\nc = print");
    BinaryConfigCreator creator;
    creator.SetNumber("a", 1);
    std::string const foreign = folder / "foreign.tbl";
    ASSERT_TRUE(BinaryConfigIO::Save(foreign.c_str(), creator, 2));
    std::string const missing = folder / "missing.tbl";
    std::string const here = folder / ".";

    std::string const isMissing = "failed: " + missing + ": does not exist";
    std::pair<std::vector<std::string>, std::string> const cases[] = {
        // arguments, and how the first line of the error begins
        {{"table", "diff", table, missing}, isMissing},
        {{"table", "dump", table, "--names", missing}, isMissing},
        {{"table", "verify", here}, "failed: " + here + ": is a directory"},
        {{"table", "verify", table + "/x"}, "failed: " + table + "/x: "},
        {{"table", "verify", foreign}, "failed: " + foreign + ": offset 0xC: written for platform 2"},
        {{"table", "build", folder / "bad.lua", table},
         "failed: " + (folder / "bad.lua") + ": b: is a function"},
        {{"table", "build", folder / "sample.lua", here}, "failed: " + here + ": cannot be written"},
        {{"table", "build", folder / "sample.lua", folder / "sample.lua"},
         "failed: " + (folder / "sample.lua") + ": would overwrite"},
    };
    std::string const before = folder.ReadFile("sample.tbl");
    for (auto const & [arguments, error] : cases) {
        ToolResult const failed = RunTool(arguments);
        EXPECT_EQ(failed.code, 2) << error;
        EXPECT_EQ(failed.out, "") << error;
        EXPECT_EQ(firstLine(failed.err).find(error), 0u) << failed.err;
    }
    EXPECT_EQ(folder.ReadFile("sample.tbl"), before); // a failed build leaves what stood there
}

TEST_F(Crosstool, DiffTellsEveryDifferenceWithBothValues) {
    std::string const first =
        Build("first", "same = 1 number = 1.5 kind = 2 left = 'only' t = { deep = true, gone = {} }\n"
                       "list = { a = 1, b = 2, c = 3 } zero = 0\n"
                       "types = { ordered = { list = { 'a', 'b', 'c' } } }");
    std::string const second =
        Build("second", "same = 1 number = 2.5 kind = 2 right = 'only' t = { deep = false }\n"
                        "list = { a = 1, b = 2, d = 4, c = 3 } zero = -0\n"
                        "types = { integer = { 'kind' }, ordered = { list = { 'b', 'd', 'a', 'c' } } }");
    folder.WriteFile("all.names", folder.ReadFile("first.names") + folder.ReadFile("second.names"));
    ToolResult const differing = RunTool({"table", "diff", first, second, "--names", folder / "all.names"});
    EXPECT_EQ(differing.code, 1);
    EXPECT_EQ(firstLine(differing.out), "different: " + first + " and " + second + ": 9 differences");
    for (char const * const line : {
             "\nnumber: Float 1.5 | Float 2.5\n",
             "\nkind: Float 2 | Integer 2\n",
             "\nleft: String \"only\" | missing\n",
             "\nright: missing | String \"only\"\n",
             "\nt.deep: Bool true | Bool false\n",
             "\nt.gone: Table of 0 fields | missing\n",
             "\nlist: order a, b, c | order b, a, c\n",
             "\nlist.d: missing | Float 4\n",
             "\nzero: Float 0 | Float -0\n",
         })
        EXPECT_NE(differing.out.find(line), std::string::npos) << line << differing.out;
}

TEST_F(Crosstool, NamesWithOneHashAreShownAsTheirKey) {
    std::string const table = Build("twins", "abhjbwag = 1 _G['a.b'] = 2");
    folder.WriteFile("twins.names", "abhjbwag\r\n\na.b\nwyumcchu");
    std::string const dumped = RunTool({"table", "dump", table, "--names", folder / "twins.names"}).out;
    EXPECT_NE(dumped.find("\na%.b: Float 2\n0xCD8CCD9A: Float 1\n"), std::string::npos) << dumped;
}

TEST_F(Crosstool, BuildsUnderAnyPlainPath) {
    std::filesystem::path const before = std::filesystem::current_path();
    std::filesystem::current_path(folder.Path());
    folder.WriteFile("in.lua", "id = 123456789");
    ToolResult const built = RunTool({"table", "build", "in.lua", "data:out.tbl"}); // no alias
    std::filesystem::current_path(before);
    EXPECT_EQ(built.out.find("good: data:out.tbl: 1 field, 20 bytes, crc 0x"), 0u) << built.out;
    EXPECT_EQ(built.err.find("warning: in.lua: id: is 123456789 and becomes 123456792"), 0u) << built.err;
    EXPECT_TRUE(std::filesystem::exists(folder.Path() / "data:out.tbl"));
}

TEST_F(Crosstool, OutputThatCannotBeWrittenIsAFailure) {
    char const * const argv[] = {"crosstool", "table", "crc", "--help"};
    std::ostringstream out, err;
    out.setstate(std::ios::badbit);
    EXPECT_EQ(RunCrosstool(4, argv, out, err), 2);
    EXPECT_EQ(err.str(), "failed: the output cannot be written\n");
}

// The program itself, as people start it.
TEST_F(Crosstool, TheProgramGivesTextAndExitCode) {
    std::string const command = std::string("'") + TOOLS_CROSSTOOL + "' table verify /nowhere/at/all 2>&1";
    FILE * const pipe = popen(command.c_str(), "r");
    ASSERT_NE(pipe, nullptr);
    char line[200] = "";
    EXPECT_STREQ(std::fgets(line, sizeof(line), pipe), "failed: /nowhere/at/all: does not exist\n");
    int const status = pclose(pipe);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 2);
}

} // namespace
