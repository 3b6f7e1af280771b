#include "tools/tablesource/TableSource.h"

#include "Cross/Util/BinaryConfigIO.h"
#include "Cross/Util/NameHash.h"
#include "Cross/engine/filesystem/FilePathHDRaw.h"
#include "tests/support/FailingStream.h"
#include "tests/support/StreamBytes.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <fstream>

namespace {

// A source, built.
struct Built {
    explicit Built(std::string const & source) {
        TemporaryFolder const folder;
        folder.WriteFile("in.lua", source);
        path = folder / "in.lua";
        ByteStreamProxy const stream(FilePathHDRaw::UnaliasedFileOpen(path.c_str(), c_streamRead, false));
        BinaryConfigCreator creator;
        isGood = TableSource::Build(*stream, creator, report);
        BinaryConfigIO::CreateBinaryConfig(creator, table, 1);
    }

    std::string Errors() const { return joined(report.errors); }

    std::string Warnings() const { return joined(report.warnings); }

    bool isGood = false;
    std::string path;
    TableSource::Report report;
    BinaryConfig table;

private:
    static std::string joined(std::vector<std::string> const & lines) {
        std::string text;
        for (std::string const & line : lines)
            text += line + "\n";
        return text;
    }
};

std::vector<std::uint32_t> keysOf(BinaryConfig const & table) {
    std::vector<std::uint32_t> keys;
    for (unsigned int i = 0; i < table.GetCount(); ++i)
        keys.push_back(table.GetAt(i));
    return keys;
}

std::vector<std::uint32_t> hashesOf(std::initializer_list<char const *> names) {
    std::vector<std::uint32_t> keys;
    for (char const * const name : names)
        keys.push_back(NameHash(name));
    return keys;
}

TEST(TableSource, StoresEachValueUnderItsType) {
    Built built("a = 1.5 b = -7 c = true d = 'text' e = 'w\xC3\xA4' f = { g = { 2 ^ 31 - 1 } } empty = {}\n"
                "types = { integer = { 'b', 'f.g.1' }, wide = { 'e' } }");
    ASSERT_TRUE(built.isGood) << built.Errors();
    EXPECT_EQ(built.report.fieldCount, 9u);
    EXPECT_EQ(built.report.names, (std::set<std::string>{"1", "a", "b", "c", "d", "e", "empty", "f", "g"}));

    float real = 0;
    int whole = 0;
    bool flag = false;
    char text[8];
    char16_t wide[8];
    EXPECT_TRUE(built.table.GetNumber("a", real) && real == 1.5f);
    EXPECT_TRUE(built.table.GetNumber("b", whole) && whole == -7);
    EXPECT_TRUE(built.table.GetBool("c", flag) && flag);
    EXPECT_TRUE(built.table.GetString("d", text, 8) && std::string(text) == "text");
    EXPECT_TRUE(built.table.GetWString("e", wide, 8) && std::u16string(wide) == u"w\u00E4");
    EXPECT_TRUE(built.table.TableExists("empty"));
    EXPECT_FALSE(built.table.TableExists("types"));
    built.table.TablePush("f");
    built.table.TablePush("g");
    EXPECT_TRUE(built.table.GetNumber("1", whole) && whole == 2147483647);
}

TEST(TableSource, OrderedTablesKeepTheirOrder) {
    Built built("list = {} for i = 1, 12 do list[i] = i end list.tail = 0\n"
                "crew = { driver = 1, gunner = 2, [3] = 3 }\n"
                "types = { ordered = { 'list', crew = { 'gunner', 3, 'driver' } } }");
    ASSERT_TRUE(built.isGood) << built.Errors();
    built.table.TablePush("list");
    // 10 comes behind 9, not behind 1
    EXPECT_EQ(keysOf(built.table),
              hashesOf({"1", "2", "3", "4", "5", "6", "7", "8", "9", "10", "11", "12", "tail"}));
    built.table.TablePop();
    built.table.TablePush("crew");
    EXPECT_EQ(keysOf(built.table), hashesOf({"gunner", "3", "driver"}));
}

TEST(TableSource, RefusesWhatATableCannotHold) {
    std::string const longName(256, 'n');
    std::string const longSource = longName + " = 1";
    std::string const longError = longName + ": has a name of 256 bytes; 255 is the most";
    std::pair<char const *, char const *> const cases[] = {
        // source, what stands behind "file: "
        // kinds of values and keys
        {"a = { f = function() end }", "a.f: is a function; values are"},
        {"a = { [true] = 1 }", "a: has a key that is a boolean"},
        {"a = { [1.5] = 1 }", "a: has the key 1.5; number keys"},
        {"a = { [-1] = 1 }", "a: has the key -1; number keys"},
        {"a = { [2 ^ 60] = 1 }", "a: has the key 1.1529215046068e+18; number keys"},
        {"_G[0/1 - 2] = 1", "the root table: has the key -2; number keys"},
        {"a = 'x\\0y'", "a: is a text with a zero byte"},
        {"a = { ['x\\0y'] = 1 }", "has a name with a zero byte"},
        // names that cannot stand side by side
        {"a = { 1, ['1'] = 2 }", "a.1: stands twice"},
        {"t = { abhjbwag = 1, wyumcchu = 2 }", "t.wyumcchu: has the same hash as \"abhjbwag\""},
        {longSource.c_str(), longError.c_str()},
        // numbers that do not fit
        {"a = 1.5 types = { integer = { 'a' } }", "a: is 1.5, not a whole number"},
        {"a = 1/0 types = { integer = { 'a' } }", "a: is inf, not a whole number"},
        {"a = 2 ^ 31 types = { integer = { 'a' } }", "a: is 2147483648, which does not fit 32 bits"},
        {"a = 1e39", "a: is 1e+39, which does not fit a float"},
        // structures without bound
        {"a = {} a.b = { c = a }", "a.b.c: is a table that contains itself"},
        {"a = {} local t = a for i = 1, 200 do t.t = {} t = t.t end", "is nested more than 100 tables deep"},
        {"local t, a_ = {}, {} for i = 1, 1000 do t[i] = i end for i = 1, 1000 do a_[i] = t end a = a_",
         "more than 1000000 fields"},
        // lists of types
        {"types = 1", "types: is a number; the name is kept"},
        {"types = { intger = { 'a' } }", "types.intger: is unknown; there are integer, wide and ordered"},
        {"types = { wide = 'a' }", "types.wide: is a text, not a list of paths"},
        {"types = { wide = { 7 } }", "types.wide: the entry 1 is no path"},
        {"t = {} types = { integer = { t = { 'a' } } }", "types.integer: the entry t is no path"},
        {"t = {} types = { integer = { t = 'a' } }", "types.integer: the entry t is no path"},
        {"a = 'x' types = { integer = { 'a' } }", "a: is a text, not a number (types.integer \"a\")"},
        {"a = 1 types = { wide = { 'a' } }", "a: is a number, not a text (types.wide \"a\")"},
        {"a = 1 types = { ordered = { 'a' } }", "a: is a number, not a table (types.ordered \"a\")"},
        {"a = '\xC3' types = { wide = { 'a' } }", "a: is a wide text that is not valid UTF-8"},
        // paths
        {"a = 1 types = { integer = { 'b' } }", "types.integer \"b\": matches nothing"},
        {"a = { 1 } types = { integer = { 'a.*.x' } }", "types.integer \"a.*.x\": matches nothing"},
        {"types = { integer = { '' } }", "types.integer \"\": has an empty component"},
        {"a = { 1 } types = { integer = { 'a..1' } }", "has an empty component"},
        {"a = 1 types = { integer = { 'a*' } }", "has a * that is not a whole component"},
        {"a = 1 types = { integer = { '%a' } }", "has a % that stands before none of"},
        {"a = 1 types = { integer = { 'a%' } }", "has a % that stands before none of"},
        // orders
        {"a = { x = 1, y = 1 } types = { ordered = { a = { 'x' } } }",
         "a: has a field \"y\" that the list leaves out"},
        {"a = { x = 1 } types = { ordered = { a = { 'x', 'z' } } }", "a: has no field \"z\""},
        {"a = { x = 1 } types = { ordered = { a = { 'x', 'x' } } }", "or the list names it twice"},
        {"a = { x = 1 } types = { ordered = { a = { x = 'x' } } }",
         "types.ordered \"a\": is no list of names"},
        {"a = { 1 } types = { ordered = { a = { 1.5 } } }", "types.ordered \"a\": is no list of names"},
        {"a = { 1 } types = { ordered = { a = { true } } }", "types.ordered \"a\": is no list of names"},
        {"a = {} types = { ordered = { 'a', a = {} } }", "a: is listed a second time"},
        // faults of the script, with their line
        {"a = 1\nb = = 2", ":2: unexpected symbol near '='"},
        {"a = nil + 1", ":1: attempt to perform arithmetic"},
        {"error('enough', 0)", ": enough"},
        {"error({})", ": a script error without a message"},
        {"\x1BLua", ": is bytecode, not Lua source"},
        {"\n\nwhile true do end", ":3: runs for more than 100000000 instructions"},
        {"while true do pcall(function() while true do end end) end",
         "runs for more than 100000000 instructions"},
        // several at once: the last of them
        {"a = 1.5 f = print types = { integer = { 'a', 'gone' } }",
         "types.integer \"gone\": matches nothing"},
    };
    for (auto const & [source, expected] : cases) {
        Built built(source);
        SCOPED_TRACE(source);
        EXPECT_FALSE(built.isGood);
        EXPECT_NE(built.Errors().find(expected), std::string::npos) << built.Errors();
        EXPECT_EQ(built.Errors().find(built.path + ":"), 0u) << built.Errors();
        EXPECT_EQ(built.table.GetCount(), 0u) << "nothing went to the builder";
    }
}

TEST(TableSource, ASourceThatCannotBeReadIsTold) {
    FilledStream memory("a = 1");
    FailingStream stream(memory, 2);
    BinaryConfigCreator creator;
    TableSource::Report report;
    EXPECT_FALSE(TableSource::Build(stream, creator, report));
    EXPECT_EQ(report.errors, std::vector<std::string>{"RamStream: cannot be read"});
}

TEST(TableSource, AcceptsTheNearMisses) {
    char const * const sources[] = {
        "",
        "\xEF\xBB\xBF#!/usr/bin/lua\na = 1",
        "types = {}",
        "types = { integer = {}, wide = {}, ordered = {} }",
        "local function double(x) return 2 * x end a = double(2)",
        "a = 1/0 b = 0/0 c = -1/0 d = 3.4028234e38 e = 1e-60",
        "a = -2 ^ 31 types = { integer = { 'a' } }",
        // twins in different tables; one table under two names
        "a = { abhjbwag = 1 } b = { wyumcchu = 1 }",
        "local t = { 1 } a = t b = t",
        // a star over an empty list, or over values that only some have
        "a = {} types = { integer = { 'a.*.x', 'a.*' } }",
        "a = { { x = 1 }, {}, 5 } types = { integer = { 'a.*.x' } }",
        // listed twice, to the same effect
        "a = { x = 1 } types = { integer = { 'a.x', 'a.*' } }",
        // names with the characters of the notation, and a field called types below the root
        "_G['*'] = { ['a.b'] = 1, ['%'] = 2 } types = { integer = { '%*.a%.b', '%*.%%' } }",
        "a = { types = 1 }",
        "a = { ['007'] = 1, [0] = 2, ['7'] = 3 }",
    };
    for (char const * const source : sources) {
        Built built(source);
        EXPECT_TRUE(built.isGood) << source << "\n" << built.Errors();
        EXPECT_EQ(built.Warnings(), "") << source;
    }
    EXPECT_TRUE(Built(std::string(255, 'n') + " = 1").isGood);
}

TEST(TableSource, WarnsOfWholeNumbersThatChangeAsFloats) {
    Built built("ids = { player = 16777217, exact = 16777216, large = 1e20, tenth = 0.1 }");
    EXPECT_TRUE(built.isGood);
    EXPECT_EQ(built.Warnings(),
              built.path +
                  ": ids.player: is 16777217 and becomes 16777216 as a float; types.integer keeps it\n");
}

// What the guide shows must work.
TEST(TableSource, TheGuidesExamplesBuild) {
    std::ifstream file(TOOLS_GUIDE);
    std::string const guide((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
    std::string const fence = "```lua\n";
    int count = 0;
    for (std::size_t begin = guide.find(fence); begin != std::string::npos;
         begin = guide.find(fence, begin)) {
        begin += fence.size();
        Built built(guide.substr(begin, guide.find("```\n", begin) - begin));
        EXPECT_TRUE(built.isGood) << built.Errors();
        EXPECT_GT(built.report.fieldCount, 5u);
        ++count;
    }
    EXPECT_EQ(count, 2);
}

} // namespace
