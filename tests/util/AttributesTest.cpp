#include "Cross/Util/AttributesBinary.h"
#include "Cross/Util/AttributesEmpty.h"
#include "Cross/Util/AttributesLua.h"

#include "Cross/Util/BinaryConfig.h"
#include "Cross/Util/BinaryConfigCreator.h"
#include "Cross/Util/BinaryConfigIO.h"
#include "Cross/engine/core/Types.h"
#include "Cross/engine/scriptconfig/LuaConfig.h"
#include "tests/support/SlotOf.h"
#include "tests/support/WarningCapture.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <sstream>
#include <string>
#include <tuple>
#include <vector>

namespace {

constexpr unsigned int c_native = 1;
constexpr int c_intMin = std::numeric_limits<int>::min();
constexpr int c_intMax = std::numeric_limits<int>::max();

// The same values as a binary table and as a script, with a reader over each.
class AttributesTest : public testing::Test {
protected:
    AttributesTest() {
        BinaryConfigCreator creator;
        creator.SetNumber("half", 0.5f);
        creator.SetNumber("zero", 0.0f);
        creator.SetNumber("nan", std::nanf(""));
        creator.SetNumber("debt", -1.9f);
        creator.SetNumber("count", 7);
        creator.SetBool("on", true);
        creator.SetBool("off", false);
        creator.SetString("tag", "12");
        creator.SetWString("title", u"\u00E9t\u00E9");
        creator.TablePush("sub", false);
        creator.SetNumber("depth", 1);
        creator.TablePush("inner", true);
        creator.SetNumber("depth", 2);
        BinaryConfigIO::CreateBinaryConfig(creator, table, c_native);

        EXPECT_TRUE(script.RunString("half = 0.5 zero = 0 nan = 0/0 debt = -1.9 count = 7 on = true "
                                     "off = false tag = '12' title = '\xC3\xA9t\xC3\xA9' "
                                     "sub = { depth = 1, inner = { depth = 2 } }",
                                     false));
    }

    BinaryConfig table;
    LuaConfig script{"level.lua", false};
    AttributesBinary binary{table, "level.table"};
    AttributesLua lua{&script, "level"};
    AttributesEmpty empty{"nothing"};
    AttributesInterface * const filled[2] = {&binary, &lua};
};

// Everything that a name or a key reads as, by way of the interface: the kinds of read that succeed with
// their values. Checks that failed reads leave numbers alone and texts empty.
template <class NameOrKey>
std::string reads(AttributesInterface const & reader, NameOrKey const & which) {
    int integer = -77;
    float number = -77.0f;
    bool flag = true;
    char text[16] = "left over";
    char16_t wide[16] = u"left over";
    std::ostringstream all;
    all << (reader.AttributeExists(which) ? "attribute" : reader.TableExists(which) ? "table" : "none");
    if (reader.GetNumber(which, integer))
        all << " int " << std::exchange(integer, -77);
    if (reader.GetNumber(which, number))
        all << " float " << std::exchange(number, -77.0f);
    if (reader.GetBool(which, flag))
        all << " bool " << flag;
    if (reader.GetString(which, text, sizeof(text)))
        all << " text " << text, text[0] = '\0';
    if (reader.GetWString(which, wide, 16))
        all << " wide " << std::u16string(wide).size(), wide[0] = u'\0';
    EXPECT_TRUE(integer == -77 && number == -77.0f && !text[0] && !wide[0]) << which << ": " << all.str();
    return all.str();
}

// The key of a field of the script's current table.
std::uint32_t scriptKey(LuaConfig & script, char const * wanted) {
    char name[256];
    for (unsigned int i = 0; script.AtEntry(i, name, sizeof(name)); ++i)
        if (std::strcmp(name, wanted) == 0)
            return i;
    return std::numeric_limits<std::uint32_t>::max();
}

TEST_F(AttributesTest, OneReadingCodeOverAllReaders) {
    struct Case {
        char const * name;
        char const * binaryByName;
        char const * binaryByKey;
        char const * scriptEither;
    };

    Case const cases[] = {
        // in a binary table a float also reads as an int and as a flag, but only by name
        {"half", "attribute int 0 float 0.5 bool 1", "attribute float 0.5", "attribute int 0 float 0.5"},
        {"zero", "attribute int 0 float 0 bool 0", "attribute float 0", "attribute int 0 float 0"},
        {"debt", "attribute int -1 float -1.9 bool 1", "attribute float -1.9", "attribute int -1 float -1.9"},
        // an integer reads as nothing else; numbers of scripts are all alike
        {"count", "attribute int 7", "attribute int 7", "attribute int 7 float 7"},
        {"on", "attribute bool 1", "attribute bool 1", "attribute bool 1"},
        {"off", "attribute bool 0", "attribute bool 0", "attribute bool 0"},
        // texts are never numbers; a script has one kind of text, a binary table has two
        {"tag", "attribute text 12", "attribute text 12", "attribute text 12 wide 2"},
        {"title", "attribute wide 3", "attribute wide 3", "attribute text \xC3\xA9t\xC3\xA9 wide 3"},
        // a table is no attribute, and names are exact
        {"sub", "table", "table", "table"},
        {"depth", "none", "none", "none"},
        {"Half", "none", "none", "none"},
        {"", "none", "none", "none"},
    };
    for (Case const & c : cases) {
        EXPECT_EQ(reads(binary, c.name), c.binaryByName) << c.name;
        EXPECT_EQ(reads(binary, NameHash(c.name)), c.binaryByKey) << c.name;
        EXPECT_EQ(reads(lua, c.name), c.scriptEither) << c.name;
        EXPECT_EQ(reads(lua, scriptKey(script, c.name)), c.scriptEither) << c.name;
        EXPECT_EQ(reads(empty, c.name), "none") << c.name;
        EXPECT_EQ(reads(empty, NameHash(c.name)), "none") << c.name;
    }
}

TEST_F(AttributesTest, WhatAFailedReadLeaves) {
    struct Case {
        AttributesInterface const & reader;
        std::uint32_t count, tag; // keys
        bool flagByName, flagByKey;
        char textByName; // of size 0
    };

    Case const cases[] = {
        // the name form clears a flag where there is data; the key form leaves it, but in a script it is the
        // name form of the field that it finds
        {binary, NameHash("count"), NameHash("tag"), false, true, '\0'},
        {lua, scriptKey(script, "count"), scriptKey(script, "tag"), false, false, 'x'},
        {lua, lua.GetCount(), lua.GetCount(), false, true, 'x'},
        {empty, 0, 0, true, true, '\0'},
    };
    for (Case const & c : cases) {
        bool byName = true, byKey = true;
        EXPECT_FALSE(c.reader.GetBool("count", byName) || c.reader.GetBool(c.count, byKey));
        EXPECT_TRUE(byName == c.flagByName && byKey == c.flagByKey) << c.reader.GetDebugName();

        char text[] = "x";
        char16_t wide[] = u"x";
        c.reader.GetString("missing", text, 0);
        c.reader.GetWString("missing", wide, 0);
        EXPECT_TRUE(text[0] == c.textByName && wide[0] == static_cast<char16_t>(c.textByName));
        c.reader.GetString(c.tag, text, 0);
        c.reader.GetWString(c.tag, wide, 0);
        EXPECT_TRUE(text[0] == '\0' && wide[0] == u'\0') << c.reader.GetDebugName();
    }
    bool flag = false;
    EXPECT_TRUE(binary.GetBool("nan", flag)); // not equal to 0
    EXPECT_TRUE(flag);
}

TEST_F(AttributesTest, NumbersCutTheirFractionAndSaturate) {
    std::tuple<double, int, int> const cases[] = {
        // the int of a script and that of a table, which holds floats
        {2147483520.0, 2147483520, 2147483520}, // the last float below 2^31
        {-2147483648.9, c_intMin, c_intMin},
        {HUGE_VAL, c_intMax, c_intMax},
        {std::nan(""), 0, 0},
        // a script's number reaches the int without a stop at float, which would round it
        {16777217.0, 16777217, 16777216},
        {2147483646.9, 2147483646, c_intMax},
    };
    for (auto const & [number, want, wantFromFloat] : cases) {
        BinaryConfigCreator creator;
        creator.SetNumber("n", static_cast<float>(number));
        BinaryConfigIO::CreateBinaryConfig(creator, table, c_native);
        script.SetNumber("n", number);
        int value = -77;
        EXPECT_TRUE(binary.GetNumber("n", value));
        EXPECT_EQ(value, wantFromFloat) << number;
        EXPECT_TRUE(lua.GetNumber("n", value));
        EXPECT_EQ(value, want) << number;
    }
    float value = 0.0f;
    EXPECT_TRUE(lua.GetNumber("nan", value));
    EXPECT_TRUE(std::isnan(value));
}

TEST_F(AttributesTest, RangeReadsClamp) {
    struct Case {
        char const * name;
        float min, max, want;
    };

    float const nan = std::nanf("");
    Case const cases[] = {
        {"debt", 0, 10, 0},
        {"half", -1, 0.25f, 0.25f},
        // bounds the wrong way round: the lower one is tested first and decides
        {"half", 10, -10, 10},
        // what is no number bounds nothing
        {"half", nan, nan, 0.5f},
    };
    for (AttributesInterface * reader : filled) {
        float value = -77.0f;
        EXPECT_FALSE(reader->GetNumber("tag", 0, 1, value));
        EXPECT_EQ(value, -77.0f);
        for (Case const & c : cases) {
            EXPECT_TRUE(reader->GetNumber(c.name, c.min, c.max, value));
            EXPECT_EQ(value, c.want) << c.name << " in " << c.min << ", " << c.max;
        }
        EXPECT_TRUE(reader->GetNumber("nan", 0, 1, value));
        EXPECT_TRUE(std::isnan(value));
    }

    struct Doubling : AttributesBinary {
        using AttributesBinary::AttributesBinary;
        using AttributesBinary::GetNumber;

        bool GetNumber(char const * name, float & value) const override {
            bool const found = AttributesBinary::GetNumber(name, value);
            value *= 2;
            return found;
        }
    };

    float value = -77.0f;
    EXPECT_FALSE(binary.GetNumber("count", 0, 10, value)); // an integer is no float
    EXPECT_FALSE(empty.GetNumber("count", 0, 10, value));
    EXPECT_EQ(value, -77.0f);
    EXPECT_TRUE(Doubling(table, "").GetNumber("half", 0, 10, value));
    EXPECT_EQ(value, 1.0f) << "through the virtual read";
}

int depthOf(AttributesInterface const & reader) {
    int depth = 0;
    reader.GetNumber("depth", depth);
    return depth;
}

TEST_F(AttributesTest, TheCursorWalksInAndOut) {
    WarningCapture warnings(FourCC("PBGM"));
    for (AttributesInterface * reader : filled) {
        reader->TablePop(); // there is nothing to leave yet
        reader->TableRootPop();
        EXPECT_EQ(reader->GetCount(), 10u);
        for (unsigned int i = 0; i < reader->GetCount(); ++i) // by the keys of GetAt alone
            if (reader->TableExists(reader->GetAt(i)))
                reader->TablePush(reader->GetAt(i));
        EXPECT_EQ(depthOf(*reader), 1);
        reader->TablePush("inner");
        EXPECT_EQ(depthOf(*reader), 2);
        EXPECT_EQ(reader->GetCount(), 1u);
        reader->TableRootPush();
        EXPECT_EQ(reader->GetCount(), 10u);
        reader->TableRootPop();
        EXPECT_EQ(depthOf(*reader), 2);
        reader->TablePop();
        EXPECT_EQ(depthOf(*reader), 1);
        reader->TablePop();
    }
    empty.TablePush("sub"); // does nothing, not even warn
    EXPECT_EQ(empty.GetCount(), 0u);
    EXPECT_TRUE(warnings.texts.empty());
}

TEST_F(AttributesTest, AMissingTableIsWarnedOfByNameAndEnteredAllTheSame) {
    char const * const noName = nullptr;
    std::string const longName(300, 'n');
    AttributesBinary longNamed(table, longName.c_str());
    WarningCapture warnings(0x5042474D);
    auto const pushAndPop = [](AttributesInterface & reader, auto const & which) {
        reader.TablePush(which);
        EXPECT_EQ(reader.GetCount(), 0u);
        reader.TablePop();
        EXPECT_EQ(reader.GetCount(), 10u);
    };
    pushAndPop(binary, noName);
    pushAndPop(binary, "half");
    pushAndPop(binary, NameHash("missing")); // a key has no name to tell
    pushAndPop(longNamed, "%s%n");
    // in a script it is the script's name that tells, and the key finds the name
    pushAndPop(lua, "half");
    pushAndPop(lua, scriptKey(script, "tag"));
    std::vector<std::string> const expected = {
        "TablePush(\"\") called on non-existant table in file \"level.table\"",
        "TablePush(\"half\") called on non-existant table in file \"level.table\"",
        "TablePush(\"%s%n\") called on non-existant table in file \"" + longName.substr(0, 256) + "\"",
        "TablePush(\"half\") called on non-existant table in file \"level.lua\"",
        "TablePush(\"tag\") called on non-existant table in file \"level.lua\"",
    };
    EXPECT_EQ(warnings.texts, expected);
}

TEST_F(AttributesTest, AScriptPopsNoMoreThanWasPushed) {
    script.PushTable("sub"); // the owner of the script has moved the cursor
    lua.TablePop();
    EXPECT_EQ(depthOf(lua), 1);

    lua.TablePush("inner");
    AttributesLua copy(lua); // knows of that push too
    lua.TablePop();
    lua.TablePop();
    // without a field at that position nothing is pushed, and root pushes are no pushes
    lua.TablePush(lua.GetCount());
    lua.TableRootPush();
    lua.TablePop();
    EXPECT_EQ(depthOf(lua), 0);
    lua.TableRootPop();
    EXPECT_EQ(depthOf(lua), 1);
    copy.TablePop();
    EXPECT_EQ(lua.GetCount(), 10u);
}

TEST_F(AttributesTest, ScriptNamesAreFoundByKeyUpToTheirLimit) {
    std::string const fits(255, 'f');
    std::string const tooLong(256, 'g');
    LuaConfig names("", false);
    names.SetNumber(fits.c_str(), 1);
    names.SetNumber(tooLong.c_str(), 2);
    AttributesLua reader(&names, "");
    EXPECT_EQ(reads(reader, reader.GetAt(0)), "attribute int 1 float 1");
    EXPECT_EQ(reads(reader, reader.GetAt(1)), "none");
    EXPECT_EQ(reads(reader, tooLong.c_str()), "attribute int 2 float 2");
}

TEST_F(AttributesTest, TheRunningCRC) {
    // published values of CRC-32 over "1234" and "12345678"
    EXPECT_EQ(lua.GetCRC(), 0u);
    lua.AddCRCVal(0x34333231);
    EXPECT_EQ(lua.GetCRC(), 0x9BE3E0A3u);
    lua.AddCRCVal(0x38373635);
    EXPECT_EQ(lua.GetCRC(), 0x9AE0DAAFu);

    // a binary reader starts with the identity of its table; reading adds nothing
    AttributesEmpty identity("");
    identity.AddCRCVal(table.GetCRC());
    AttributesBinary fresh(table, "");
    reads(fresh, "half");
    EXPECT_EQ(fresh.GetCRC(), identity.GetCRC());
    BinaryConfig blank;
    EXPECT_EQ(AttributesBinary(blank, "").GetCRC(), 0x2144DF1Cu); // of four zero bytes
}

TEST_F(AttributesTest, CopiesTakeNameAndCRCAndShareTheCursor) {
    binary.AddCRCVal(1);
    AttributesBinary copy(binary);
    EXPECT_EQ(copy.GetCRC(), binary.GetCRC());
    EXPECT_STREQ(copy.GetDebugName(), "level.table");
    copy.TablePush("sub");
    EXPECT_EQ(depthOf(binary), 1);
    binary.TablePop();
    EXPECT_EQ(depthOf(copy), 0);
    EXPECT_STREQ(AttributesEmpty(nullptr).GetDebugName(), "");
    EXPECT_EQ(std::strlen(AttributesEmpty(std::string(300, 'n').c_str()).GetRelativeName()), 256u);
}

#if defined(__x86_64__)

TEST(AttributesInterfaceTest, VirtualFunctionsKeepTheirSlots) {
    using I = AttributesInterface;
    using Key = std::uint32_t;
    using Name = char const *;
    EXPECT_TRUE(FollowTheDestructor({
        SlotOf<bool (I::*)(Key) const>(&I::AttributeExists),
        SlotOf<bool (I::*)(Name) const>(&I::AttributeExists),
        SlotOf<bool (I::*)(Key, int &) const>(&I::GetNumber),
        SlotOf<bool (I::*)(Key, float &) const>(&I::GetNumber),
        SlotOf<bool (I::*)(Name, float, float, float &) const>(&I::GetNumber),
        SlotOf<bool (I::*)(Name, float &) const>(&I::GetNumber),
        SlotOf<bool (I::*)(Name, int &) const>(&I::GetNumber),
        SlotOf<bool (I::*)(Key, bool &) const>(&I::GetBool),
        SlotOf<bool (I::*)(Name, bool &) const>(&I::GetBool),
        SlotOf<bool (I::*)(Key, char *, unsigned int) const>(&I::GetString),
        SlotOf<bool (I::*)(Name, char *, unsigned int) const>(&I::GetString),
        SlotOf<bool (I::*)(Key, char16_t *, unsigned int) const>(&I::GetWString),
        SlotOf<bool (I::*)(Name, char16_t *, unsigned int) const>(&I::GetWString),
        SlotOf<bool (I::*)(Key) const>(&I::TableExists),
        SlotOf<bool (I::*)(Name) const>(&I::TableExists),
        SlotOf<void (I::*)(Key)>(&I::TablePush),
        SlotOf<void (I::*)(Name)>(&I::TablePush),
        SlotOf(&I::TablePop),
        SlotOf(&I::TableRootPush),
        SlotOf(&I::TableRootPop),
        SlotOf(&I::GetCount),
        SlotOf(&I::GetAt),
    }));
}

#endif

} // namespace
