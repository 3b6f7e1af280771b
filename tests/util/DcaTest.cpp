#include "Cross/Util/Dca.h"
#include "Cross/Util/DictionaryLoad.h"

#include "tests/support/FailingStream.h"
#include "tests/support/StreamBytes.h"
#include "tests/support/TraceCapture.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <type_traits>

static_assert(!std::is_constructible_v<dca::Key, Dictionary::Key>,
              "a key of any dictionary is none of dca's");
static_assert(std::is_convertible_v<dca::Key, Dictionary::Key>);

namespace {

using Content = std::vector<std::pair<std::uint32_t, std::string>>;

Content contentOf(Dictionary const & dictionary) {
    Content content;
    dictionary.ForEach(
        [&](Dictionary::Key key, char const * text) { content.emplace_back(key.GetValue(), text); });
    return content;
}

// A stream in memory, open for writing and reading, with some bytes in it.
ByteStreamProxy streamOf(std::string const & bytes) {
    auto * const stream = new RamStream;
    stream->Open(16, c_streamWrite);
    stream->Write(bytes.data(), static_cast<unsigned int>(bytes.size()));
    stream->SetPos(0);
    return ByteStreamProxy(stream);
}

std::string saved(Dictionary const & dictionary) {
    ByteStreamProxy stream = streamOf("");
    EXPECT_TRUE(DictionaryLoad::Save(stream, dictionary));
    std::string bytes(stream->GetLen(), '\0');
    stream->SetPos(0);
    stream->Read(bytes.data(), stream->GetLen());
    return bytes;
}

bool load(std::string const & bytes, Dictionary & dictionary) {
    ByteStreamProxy stream = streamOf(bytes);
    return DictionaryLoad::Load(stream, dictionary);
}

void fill(Dictionary & dictionary, std::initializer_list<char const *> texts) {
    for (char const * const text : texts)
        dictionary.GetKey(text);
}

// Asks for a number when the dictionary of the process has been emptied.
struct LateCaller {
    ~LateCaller() {
        if (armed && std::strcmp(dca::GetString(dca::GetKeyForNumber(5)), "5") != 0)
            std::_Exit(1);
    }

    bool armed = false;
} s_lateCaller;

} // namespace

// Runs before anything else asks for a number.
TEST(Dca, NumbersAreCachedBelowTheCapacity) {
    EXPECT_EQ(s_numberToKeyVector.size(), 0u);
    EXPECT_EQ(s_numberToKeyVector.capacity(), 1024u);
    for (unsigned int const number : {1024u, 5u, 1023u, 5u, 0u, 0xFFFFFFFFu})
        EXPECT_EQ(dca::GetKeyForNumber(number),
                  dca::GetKey(std::to_string(static_cast<int>(number)).c_str()));
    EXPECT_EQ(s_numberToKeyVector.size(), 1024u);
    EXPECT_EQ(s_numberToKeyVector[5], dca::GetKey("5"));
    EXPECT_EQ(s_numberToKeyVector[6], dca::Key::INVALID);
}

TEST(Dca, NamesHaveOneSpelling) {
    std::pair<std::string, std::string> const c_cases[] = {
        {"DcaTest", "dcatest"}, {"DcaTest/Tank//Gun\\\\1", "dcatest\\tank\\gun\\1"}, {"", ""},
        {"/\\/", "\\"},         {std::string(300, 'X'), std::string(259, 'x')}, // a path's length
    };
    for (auto const & [name, stored] : c_cases) {
        dca::Key const key = dca::GetKey(name.c_str());
        EXPECT_EQ(dca::GetString(key), stored);
        EXPECT_EQ(dca::GetKey(stored.c_str()), key);
        dca::Key found;
        EXPECT_TRUE(dca::FindKey(name.c_str(), found));
        EXPECT_EQ(found, key);
        Dictionary::Key const plain = key;
        EXPECT_STREQ(Dictionary::Instance().GetString(plain), stored.c_str());
    }
}

TEST(Dca, KeysStandInTheOrderOfUnsignedNumbers) {
    dca::Key const low = dca::GetKey("health"), high = dca::GetKey(""); // 0x2D909FCC, 0xBD49D10D
    EXPECT_TRUE(low < high && dca::Key() < low && dca::Key() == dca::Key::INVALID);
    EXPECT_TRUE(!(high < low) && !(low < low) && low != high && !(low != low));
}

TEST(Dca, UnknownNamesAreNotStored) {
    for (char const * const name : {"never asked for", static_cast<char const *>(nullptr)}) {
        dca::Key key = dca::GetKey("known");
        EXPECT_FALSE(dca::FindKey(name, key));
        EXPECT_EQ(key, dca::Key::INVALID);
    }
    Dictionary::Key found;
    EXPECT_FALSE(Dictionary::Instance().FindKey("never asked for", found));
    EXPECT_EQ(dca::GetKey(nullptr), dca::Key::INVALID);
}

TEST(DcaDeathTest, NumbersAreForgottenWithTheDictionaryAtProcessEnd) {
    EXPECT_EXIT(
        {
            dca::GetKeyForNumber(5);
            s_lateCaller.armed = true;
            std::exit(0);
        },
        testing::ExitedWithCode(0), "");
}

// The bytes of a chunk with one entry, behind the file header of a native file.
TEST(DictionaryLoad, ChunkHasItsForm) {
    Dictionary dictionary(true);
    dictionary.GetKey("aqlskaan"); // its key is 1
    EXPECT_EQ(saved(dictionary).substr(16), FromHex("02000000 54434944 01000000 14000000 00000000"
                                                    "01000000 01000000 08000000") +
                                                "aqlskaan");
}

// Texts with one hash move to the next free keys; saved in the order of the keys they get the same again.
TEST(DictionaryLoad, ComesBackWithTheSameKeys) {
    Dictionary dictionary(true);
    EXPECT_TRUE(load(saved(dictionary), dictionary));
    EXPECT_TRUE(contentOf(dictionary).empty());
    fill(dictionary, {"", "speed", "wyumcchu", "abhjbwag", "ahyibdjr", "aolouwdz", "Speed"});
    Dictionary copy(true);
    EXPECT_TRUE(load(saved(dictionary), copy));
    EXPECT_EQ(contentOf(copy), contentOf(dictionary));
}

TEST(DictionaryLoad, MovedKeysAreTracedAndAllTextsAreStored) {
    TraceCapture trace;
    Dictionary dictionary(true);
    fill(dictionary, {"abhjbwag", "speed", "wyumcchu", "range"});
    Dictionary other(true);
    fill(other, {"wyumcchu"});
    EXPECT_FALSE(load(saved(dictionary), other));
    ASSERT_EQ(trace.lines.size(), 2u); // the two have changed places
    EXPECT_NE(
        trace.lines[0].find("Mismatched key values found when loading string data.  String 'abhjbwag' has "
                            "values -846410341 in DB and -846410342 in string file."),
        std::string::npos)
        << trace.lines[0];
    EXPECT_EQ(contentOf(other).size(), 4u);
}

// A text of 127 bytes fits; a longer one is cut and so has another key.
TEST(DictionaryLoad, LongTextsAreCut) {
    for (std::size_t const length : {127u, 128u, 1000u}) {
        TraceCapture trace;
        Dictionary dictionary(true), copy(true);
        fill(dictionary, {std::string(length, 'x').c_str(), "behind"});
        EXPECT_EQ(load(saved(dictionary), copy), length == 127);
        Dictionary::Key key;
        EXPECT_TRUE(copy.FindKey(std::string(127, 'x').c_str(), key) && copy.FindKey("behind", key))
            << length;
    }
}

TEST(DictionaryLoad, ASaveThatCannotBeFlushedThrowsAndIsDiscarded) {
    struct Unflushable : FailingStream {
        using FailingStream::FailingStream;

        bool Flush() override { return false; }
    };

    FilledStream memory;
    auto * const stream = new Unflushable(memory, 1000);
    ByteStreamProxy proxy(stream);
    EXPECT_THROW(DictionaryLoad::Save(proxy, Dictionary()), std::exception);
    EXPECT_TRUE(stream->IsDiscarded());
}

TEST(DictionaryLoad, DamageThrowsAtEveryLength) {
    TraceCapture trace;
    Dictionary dictionary(true);
    fill(dictionary, {"speed", "range"});
    std::string const bytes = saved(dictionary);
    for (std::size_t length = 0; length < bytes.size(); ++length) {
        Dictionary copy(true);
        EXPECT_THROW(load(bytes.substr(0, length), copy), std::exception) << length;
    }
    std::string lying = bytes;
    lying[36] = '\xFF'; // more entries than there are
    EXPECT_THROW(load(lying, dictionary), std::exception);
    lying = bytes;
    lying[44] = lying[47] = '\x7F'; // a text longer than the chunk
    EXPECT_THROW(load(lying, dictionary), std::exception);
    ByteStreamProxy none;
    EXPECT_THROW(DictionaryLoad::Save(none, dictionary), std::exception);
}
