#include "Cross/Util/Dictionary.h"
#include "Cross/Util/NameHash.h"
#include "Cross/engine/core/Text.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <map>
#include <random>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

static_assert(!std::is_constructible_v<Dictionary, _HMEMPOOL *>, "a pool must not pass as a bool");
static_assert(!std::is_copy_constructible_v<Dictionary> && !std::is_copy_assignable_v<Dictionary>);
static_assert(sizeof(Dictionary::Key) == 4 && std::is_trivially_copyable_v<Dictionary::Key>);
static_assert(Dictionary::Key(0x80000000) == Dictionary::Key(0x80000000));
static_assert(Dictionary::Key(1) < Dictionary::Key(0x80000000), "keys are unsigned");

namespace {

using Key = Dictionary::Key;
using Content = std::vector<std::pair<std::uint32_t, std::string>>;

Content contentOf(Dictionary const & dictionary) {
    Content content;
    dictionary.ForEach([&](Key key, char const * text) { content.emplace_back(key.GetValue(), text); });
    return content;
}

// The key a lookup finds; INVALID also stands for false, so do not use it for a text with that key.
std::uint32_t find(Dictionary const & dictionary, char const * text) {
    Key key(77);
    bool const known = dictionary.FindKey(text, key);
    EXPECT_EQ(known, key.GetValue() != 0) << text;
    return key.GetValue();
}

// The rules of keys put down as plainly as can be.
class Model {
public:
    explicit Model(bool caseSensitive) : caseSensitive(caseSensitive) {}

    std::uint32_t GetKey(std::string text) {
        if (!caseSensitive)
            text::ToLower((text = text.substr(0, 1024)).data());
        std::uint32_t key = NameHash(text.c_str());
        while (texts.count(key) > 0 && texts[key] != text)
            ++key;
        texts[key] = text;
        return key;
    }

    Content All() const { return {texts.begin(), texts.end()}; }

private:
    std::map<std::uint32_t, std::string> texts;
    bool caseSensitive;
};

std::string randomText(std::mt19937 & random) {
    static constexpr char c_letters[] = "abAB@[`{_\x80\xC1\xFF";
    std::string text(random() % 8 == 0 ? random() % 1100 : random() % 50, '\0');
    for (char & c : text)
        c = c_letters[random() % (sizeof(c_letters) - 1)];
    return text;
}

} // namespace

TEST(Dictionary, NoTextAndTheEmptyTextAreApart) {
    Dictionary dictionary;
    Key key(77);
    EXPECT_FALSE(dictionary.FindKey(0u, key));
    EXPECT_EQ(key.GetValue(), 77u) << "a value that is not there leaves the key alone";
    EXPECT_TRUE(dictionary.GetKey(nullptr) == Key::INVALID);
    EXPECT_EQ(find(dictionary, nullptr), 0u);
    EXPECT_EQ(find(dictionary, ""), 0u);
    EXPECT_STREQ(dictionary.GetString(Key::INVALID), "");
    dictionary.EditLock(); // which forbids nothing
    EXPECT_EQ(dictionary.GetKey("").GetValue(), 0xBD49D10Du);
    dictionary.EditUnlock();
    EXPECT_EQ(contentOf(dictionary), (Content{{0xBD49D10D, ""}}));
}

TEST(Dictionary, CollidingTextsMoveUpInTheOrderOfTheirComing) {
    std::pair<std::vector<char const *>, Content> const cases[] = {
        // the first keeps the hash, the second gets the next value
        {{"abhjbwag", "wyumcchu"}, {{0xCD8CCD9A, "abhjbwag"}, {0xCD8CCD9B, "wyumcchu"}}},
        {{"wyumcchu", "abhjbwag"}, {{0xCD8CCD9A, "wyumcchu"}, {0xCD8CCD9B, "abhjbwag"}}},
        // one whose own value is taken by such a pair moves on too
        {{"ahyibdjr", "aolouwdz", "aqlskaan"}, {{0, "ahyibdjr"}, {1, "aolouwdz"}, {2, "aqlskaan"}}},
        {{"aqlskaan", "ahyibdjr", "aolouwdz"}, {{0, "ahyibdjr"}, {1, "aqlskaan"}, {2, "aolouwdz"}}},
        // behind the last value comes 0
        {{"agkckhek", "akjtljcv", "ahyibdjr", "aqlskaan"},
         {{0, "akjtljcv"}, {1, "ahyibdjr"}, {2, "aqlskaan"}, {0xFFFFFFFF, "agkckhek"}}},
    };

    for (auto const & [texts, content] : cases) {
        Dictionary dictionary;
        for (char const * text : texts)
            dictionary.GetKey(text);
        EXPECT_EQ(contentOf(dictionary), content);
        for (auto const & [value, text] : content) {
            Key key(77);
            EXPECT_TRUE(dictionary.FindKey(text.c_str(), key));
            EXPECT_EQ(key.GetValue(), value);
            EXPECT_EQ(dictionary.GetKey(text.c_str()).GetValue(), value)
                << "a text that comes again keeps its key";
            EXPECT_EQ(dictionary.GetString(Key(value)), text);
        }
    }
    Dictionary dictionary;
    dictionary.GetKey("abhjbwag");
    EXPECT_EQ(find(dictionary, "wyumcchu"), 0u) << "to ask for it neither finds nor stores it";
    EXPECT_EQ(contentOf(dictionary).size(), 1u);
}

// Texts of one length that differ in one byte, for every length around the widths in which texts are read,
// every place and every byte: so many that some are told apart by nothing but the comparison.
TEST(Dictionary, EveryByteOfATextCounts) {
    for (std::size_t length = 1; length <= 50; ++length) {
        std::string const base(length, 'M');
        Dictionary sensitive, blind(false);
        for (int filler = 0; filler < 11; ++filler)
            for (Dictionary * dictionary : {&sensitive, &blind})
                dictionary->GetKey((std::string(60, '-') + std::to_string(filler)).c_str());
        std::uint32_t const key = sensitive.GetKey(base.c_str()).GetValue();
        std::uint32_t const blindKey = blind.GetKey(base.c_str()).GetValue();
        for (std::size_t i = 0; i < length; ++i) {
            std::string other(base);
            for (int byte = 1; byte < 256; ++byte) {
                other[i] = static_cast<char>(byte);
                ASSERT_EQ(find(sensitive, other.c_str()), byte == 'M' ? key : 0) << other;
                ASSERT_EQ(find(blind, other.c_str()), byte == 'M' || byte == 'm' ? blindKey : 0) << other;
            }
        }
        EXPECT_EQ(find(sensitive, (base + 'M').c_str()), 0u);
    }
}

// All rules at once, through several growths.
void expectRules(bool caseSensitive, std::vector<std::string> const & texts) {
    Dictionary dictionary(caseSensitive);
    Model model(caseSensitive);
    for (std::string const & text : texts)
        ASSERT_EQ(dictionary.GetKey(text.c_str()).GetValue(), model.GetKey(text));
    EXPECT_EQ(contentOf(dictionary), model.All());
    for (auto const & [value, text] : model.All()) {
        Key key(77);
        ASSERT_TRUE(dictionary.FindKey(text.c_str(), key) && key.GetValue() == value);
        ASSERT_TRUE(dictionary.FindKey(value, key));
        ASSERT_EQ(dictionary.GetString(key), text);
    }
}

TEST(Dictionary, KeepsToTheRulesOverManyTexts) {
    // many repetitions, near letters and bytes above 127
    std::mt19937 random(5);
    std::vector<std::string> texts(5000);
    std::generate(texts.begin(), texts.end(), [&] { return randomText(random); });
    expectRules(true, texts);
    expectRules(false, texts);

    // hashes that all lie in the last 32nd of the range: no spreading out helps there
    texts.clear();
    for (int i = 0; i < 50000; ++i)
        if (std::string const text = "name " + std::to_string(i); NameHash(text.c_str()) >> 27 == 31)
            texts.push_back(text);
    expectRules(true, texts);
}

TEST(Dictionary, TextsStayWhereTheyAreUntilClear) {
    MemoryPoolObj const pool("DictionaryTest", 0, 0, false);
    std::size_t const inDefault = MemPoolGetStats(MemPoolDefault()).liveBlocks;
    {
        Dictionary dictionary(pool.Get(), true), fromNull(nullptr, true), plain;
        char const * const first = dictionary.GetString(dictionary.GetKey("first"));
        for (int i = 0; i < 1000; ++i)
            dictionary.GetKey(("name " + std::to_string(i)).c_str());
        EXPECT_EQ(dictionary.GetString(Key(NameHash("first"))), first);
        EXPECT_STREQ(first, "first");
        EXPECT_EQ(MemPoolGetStats(pool.Get()).liveBlocks, 1001u) << "one block each, and nothing else";
        EXPECT_EQ(MemPoolGetStats(MemPoolDefault()).liveBlocks, inDefault);
        fromNull.GetKey("name");
        plain.GetKey("name");
        EXPECT_EQ(MemPoolGetStats(MemPoolDefault()).liveBlocks, inDefault + 2);

        dictionary.Clear();
        EXPECT_EQ(MemPoolGetStats(pool.Get()).liveBlocks, 0u);
        EXPECT_STREQ(dictionary.GetString(Key(NameHash("first"))), "");
        EXPECT_EQ(find(dictionary, "first"), 0u);
        EXPECT_EQ(dictionary.GetKey("second").GetValue(), NameHash("second"));
        EXPECT_EQ(contentOf(dictionary).size(), 1u);
    }
    EXPECT_EQ(MemPoolGetStats(pool.Get()).liveBlocks, 0u);
    EXPECT_EQ(MemPoolGetStats(MemPoolDefault()).liveBlocks, inDefault);
}

namespace {

// Comes up before the process's dictionary and goes after its end.
struct LateCaller {
    ~LateCaller() {
        if (!armed)
            return;
        Dictionary & dictionary = Dictionary::Instance();
        Key key;
        bool const isEmpty = !dictionary.FindKey("early", key) && contentOf(dictionary).empty();
        bool const isCaseBlind = *dictionary.GetString(dictionary.GetKey("Late")) == 'l';
        if (!isEmpty || !isCaseBlind)
            std::_Exit(1);
    }

    bool armed = false;
} s_lateCaller;

} // namespace

TEST(DictionaryDeathTest, AtProcessEndTheOneOfTheProcessIsEmptiedAndStillThere) {
    EXPECT_EXIT(
        {
            Dictionary::Instance().GetKey("Early");
            s_lateCaller.armed = true;
            std::exit(0);
        },
        testing::ExitedWithCode(0), "");
}
