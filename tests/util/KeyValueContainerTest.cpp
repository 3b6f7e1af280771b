#include "Cross/Util/KeyValueContainer.h"
#include "Cross/Util/KeyValueContainerIO.h"

#include "Cross/engine/scriptconfig/LuaConfig.h"
#include "tests/support/FailingStream.h"
#include "tests/support/HeapLimit.h"
#include "tests/support/StreamBytes.h"
#include "tests/support/TraceCapture.h"

#include <gtest/gtest.h>

#include <limits>
#include <map>

namespace {

// All entries; numbers under "name", texts under "name$".
std::map<std::string, std::string> contentOf(KeyValueContainer const & container) {
    std::map<std::string, std::string> content;
    for (unsigned int i = 0; i < container.Size(); ++i)
        content[container.At(i)] = std::to_string(container.Retrieve(container.At(i)));
    for (unsigned int i = 0; i < container.SizeString(); ++i)
        container.RetrieveString(container.AtString(i), content[container.AtString(i) + std::string("$")]);
    return content;
}

using Content = std::map<std::string, std::string>;

} // namespace

TEST(KeyValueContainer, NumbersAndTextsAreApart) {
    KeyValueContainer container;
    EXPECT_TRUE(container.Empty());
    container.Set("Speed", 1.0f);
    container.SetString("speed", "fast");
    container.Set("SPEED", 2.0f);
    EXPECT_EQ(contentOf(container), (Content{{"speed", "2.000000"}, {"speed$", "fast"}}));
    container.Remove("sPeed");
    EXPECT_FALSE(container.Check("speed"));
    EXPECT_TRUE(container.CheckString("Speed"));
    EXPECT_FALSE(container.Empty());
    container.RemoveString("speed");
    container.RemoveString("speed");
    EXPECT_TRUE(container.Empty());
}

TEST(KeyValueContainer, MissingNames) {
    KeyValueContainer container;
    container.Set(nullptr, 1.0f);
    container.SetString(nullptr, "x");
    container.Remove("never named");
    std::string text = "default";
    container.RetrieveString("never named", text);
    EXPECT_EQ(text, "default");
    for (char const * const name : {"never named", "", static_cast<char const *>(nullptr)}) {
        EXPECT_EQ(container.Retrieve(name), -666.0f);
        EXPECT_FALSE(container.Check(name) || container.CheckString(name));
    }
    EXPECT_TRUE(container.Empty());
}

// Ascending keys, of colliding names too, whatever the order of setting.
TEST(KeyValueContainer, EntriesStandByKey) {
    KeyValueContainer container, other;
    char const * const c_names[] = {"root", "health", "abhjbwag", "", "wyumcchu", "ahyibdjr"};
    for (std::size_t i = 0; i < std::size(c_names); ++i) {
        container.Set(c_names[i], static_cast<float>(i));
        other.Set(c_names[std::size(c_names) - 1 - i], 0.0f);
    }
    for (std::size_t i = 0; i < std::size(c_names); ++i) {
        EXPECT_EQ(container.Retrieve(c_names[i]), static_cast<float>(i));
        EXPECT_STREQ(container.At(static_cast<unsigned int>(i)), other.At(static_cast<unsigned int>(i)));
    }
    EXPECT_STREQ(container.At(0), "ahyibdjr"); // its key is 0
    EXPECT_STREQ(container.At(2), "");         // 0xBD49D10D
}

TEST(KeyValueContainer, ManyAtOnceGoInAsOneByOne) {
    KeyValueContainer container;
    container.Set("health", 1.0f);
    container.Set("root", 1.0f);
    container.SetAll({{"SPEED", 2.0f}, {"root", 2.0f}, {"ahyibdjr", 2.0f}, {"speed", 3.0f}});
    container.SetAllStrings({{"b", "x"}, {"a", "y"}, {"B", "z"}});
    EXPECT_EQ(contentOf(container), (Content{{"ahyibdjr", "2.000000"},
                                             {"health", "1.000000"},
                                             {"root", "2.000000"},
                                             {"speed", "3.000000"},
                                             {"a$", "y"},
                                             {"b$", "z"}}));
    EXPECT_STREQ(container.At(0), "ahyibdjr");
}

TEST(KeyValueContainer, RoomIsMadeInAdvance) {
    std::vector<std::string> names;
    for (int i = 0; i < 200; ++i)
        names.push_back("room" + std::to_string(i));
    KeyValueContainer container;
    auto const fill = [&] {
        for (std::string const & name : names) {
            container.Set(name.c_str(), 1.0f);
            container.SetString(name.c_str(), "");
        }
    };
    fill(); // the dictionaries know the names from now on
    container = KeyValueContainer();
    container.Reserve(200);
    container.ReserveString(200);
    HeapLimit const limit(1000);
    EXPECT_NO_THROW(fill());
}

TEST(KeyValueContainer, CopiesAreDeep) {
    KeyValueContainer container, copy;
    container.SetString("a", "one");
    container.Set("n", 1.0f);
    copy.Set("gone", 2.0f);
    copy.CopyFrom(container);
    copy.CopyFrom(copy);
    container.SetString("a", "two");
    EXPECT_EQ(contentOf(copy), (Content{{"a$", "one"}, {"n", "1.000000"}}));
    container.Clear();
    EXPECT_TRUE(container.Empty());
}

TEST(KeyValueContainer, PrintsItsEntries) {
    KeyValueContainer container;
    container.Set("n", 1.5f);
    container.SetString("s", "50% %s");
    TraceCapture trace;
    container.DebugPrint("Box");
    char const * const c_lines[] = {"----------------------Box-START-------------------------", "n=1.500000",
                                    "---", "s=50% %s",
                                    "----------------------Box-END---------------------------"};
    ASSERT_EQ(trace.lines.size(), std::size(c_lines));
    for (std::size_t i = 0; i < std::size(c_lines); ++i)
        EXPECT_NE(trace.lines[i].find(c_lines[i]), std::string::npos) << trace.lines[i];
}

TEST(KeyValueContainer, ShutdownForgetsTheNames) {
    KeyValueContainer container;
    container.Set("speed", 1.0f);
    container.SetString("name", "x");
    KeyValueContainer::Shutdown();
    EXPECT_STREQ(container.At(0), "");
    EXPECT_FALSE(container.Check("speed") || container.CheckString("name"));
    FilledStream stream;
    EXPECT_TRUE(KeyValueContainerIO::Save(container, stream, "box"));
    EXPECT_EQ(stream.Content(), "box = {}\nbox_strings = {}\n");
    KeyValueContainer().Set("speed", 2.0f);
    EXPECT_EQ(container.Retrieve("speed"), 1.0f);
}

TEST(KeyValueContainerIO, ComesBack) {
    KeyValueContainer container, copy;
    container.Set("speed", 0.1f);
    container.Set("end", -3.0f);
    container.Set("none", -std::numeric_limits<float>::infinity());
    container.SetString("Name", "a \"quoted\"\nline");
    for (char const * const odd : {"7", "007", "", "while", "two words", "\"\r\n"})
        container.SetString(odd, odd);
    Content expected = contentOf(container);
    expected["stays"] = "1.000000";
    for (char const * const name : {"box", static_cast<char const *>(nullptr)}) {
        FilledStream stream;
        EXPECT_TRUE(KeyValueContainerIO::Save(container, stream, name));
        stream->SetPos(0);
        copy = KeyValueContainer();
        copy.Set("stays", 1.0f);
        copy.Set("speed", 9.0f);
        EXPECT_TRUE(KeyValueContainerIO::Load(copy, stream, name));
        EXPECT_EQ(contentOf(copy), expected);
        EXPECT_EQ(copy.Retrieve("speed"), 0.1f);
        stream->SetPos(0);
        KeyValueContainer other;
        EXPECT_TRUE(KeyValueContainerIO::Load(other, stream, "crate"));
        EXPECT_TRUE(other.Empty());
    }
}

TEST(KeyValueContainerIO, TakesFromAStateAndLeavesItsCursor) {
    LuaConfig state("", false);
    ASSERT_TRUE(state.RunString(
        "game = { box = { speed = 2 }, box_strings = { name = 'x' } }  box = { speed = 9 }", true));
    state.PushTable("game");
    KeyValueContainer container;
    EXPECT_TRUE(KeyValueContainerIO::Load(container, state, "box"));
    EXPECT_EQ(contentOf(container), (Content{{"speed", "2.000000"}, {"name$", "x"}}));
    EXPECT_EQ(state.CountEntry(), 2u) << "the cursor is back at the game";
}

TEST(KeyValueContainerIO, AFailedSaveIsTold) {
    KeyValueContainer container;
    FilledStream memory;
    FailingStream stream(memory, 5);
    TraceCapture trace;
    EXPECT_FALSE(KeyValueContainerIO::Save(container, stream, "box"));
}

TEST(KeyValueContainerIO, TakesWhatPeopleWrite) {
    TraceCapture trace;

    std::tuple<char const *, char const *, bool, Content> const c_cases[] = {
        {"no script", "box = {", false, {}},
        {"a script that fails late", "box = { a = 1 } error()", false, {}},
        {"no tables", "x = 1", true, {}},
        {"a name that is no table", "box = 3 box_strings = 'x'", true, {}},
        {"fields of other kinds",
         "box = { a = 'x', b = true } box_strings = { c = 1, d = {} }",
         true,
         {{"a", "0.000000"}, {"b", "0.000000"}, {"c$", ""}, {"d$", ""}}},
        {"the last spelling of a name wins", "box = { SPEED = 1, speed = 2 }", true, {{"speed", "2.000000"}}},
        {"texts alone", "box_strings = { a = 'x' }", true, {{"a$", "x"}}},
    };
    for (auto const & [rule, text, result, content] : c_cases) {
        FilledStream stream(text);
        KeyValueContainer container;
        EXPECT_EQ(KeyValueContainerIO::Load(container, stream, "box"), result) << rule;
        EXPECT_EQ(contentOf(container), content) << rule;
    }
}
