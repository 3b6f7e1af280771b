#include "Cross/Util/NameHash.h"
#include "Cross/Util/FourLetterID.h"
#include "Cross/engine/core/Types.h"

#include <gtest/gtest.h>

#include <cstring>
#include <random>
#include <string>
#include <string_view>

namespace {

// lookup2 as its author describes it, byte by byte and with the tail as a block filled up with zeros.
std::uint32_t lookup2(std::string_view text) {
    std::uint32_t a = 0x9E3779B9, b = 0x9E3779B9, c = 0;
    auto const add = [&](std::string_view bytes, std::size_t at, std::uint32_t & word) {
        for (std::size_t i = 0; i < 4 && at + i < bytes.size(); ++i)
            word += static_cast<std::uint32_t>(static_cast<unsigned char>(bytes[at + i])) << (8 * i);
    };
    auto const mix = [&] {
        a -= b, a -= c, a ^= c >> 13;
        b -= c, b -= a, b ^= a << 8;
        c -= a, c -= b, c ^= b >> 13;
        a -= b, a -= c, a ^= c >> 12;
        b -= c, b -= a, b ^= a << 16;
        c -= a, c -= b, c ^= b >> 5;
        a -= b, a -= c, a ^= c >> 3;
        b -= c, b -= a, b ^= a << 10;
        c -= a, c -= b, c ^= b >> 15;
    };
    std::size_t at = 0;
    for (; text.size() - at >= 12; at += 12) {
        add(text, at, a), add(text, at + 4, b), add(text, at + 8, c);
        mix();
    }
    std::string const last = std::string(text.substr(at, 8)) +
                             std::string(8 - text.substr(at, 8).size(), '\0') + '\0' +
                             std::string(text.substr(std::min(at + 8, text.size())));
    c += static_cast<std::uint32_t>(text.size());
    add(last, 0, a), add(last, 4, b), add(last, 8, c);
    mix();
    return c;
}

} // namespace

TEST(NameHash, CheckValues) {
    struct {
        char const * text;
        std::uint32_t hash;
    } const cases[] = {
        {"", 0xBD49D10D},
        {nullptr, 0xBD49D10D},
        {"Root", 0x7F402352},
        {"health", 0x2D909FCC},
        // pairs that collide, at both ends of the range too
        {"abhjbwag", 0xCD8CCD9A},
        {"wyumcchu", 0xCD8CCD9A},
        {"agkckhek", 0xFFFFFFFF},
        {"akjtljcv", 0xFFFFFFFF},
        {"ahyibdjr", 0},
        {"aolouwdz", 0},
        {"aqlskaan", 1},
    };

    for (auto const & [text, hash] : cases) {
        EXPECT_EQ(NameHash(text), hash) << text;
        EXPECT_EQ(NameHash(text, text ? std::strlen(text) : 0), hash) << text;
    }
}

// Every length of tail behind up to four blocks, with bytes of all values, NUL among them, at odd addresses;
// each text has a heap block of its own, so that a sanitizer sees one byte too many.
TEST(NameHash, AllLengthsAndBytes) {
    std::mt19937 random(1);
    for (std::size_t length = 0; length <= 60; ++length)
        for (int round = 0; round < 20; ++round) {
            std::vector<char> bytes(1 + length);
            for (char & byte : bytes)
                byte = static_cast<char>(random());
            bytes.shrink_to_fit();
            EXPECT_EQ(NameHash(bytes.data() + 1, length), lookup2({bytes.data() + 1, length})) << length;
        }
}

TEST(NameHash, LowerFoldsTheFirst2047LettersOfAscii) {
    EXPECT_EQ(NameHashLower(nullptr), NameHash(""));
    EXPECT_EQ(NameHashLower("RooT@AZ[`az{\xC4\xE4"), NameHash("root@az[`az{\xC4\xE4"));
    std::string const longest(2047, 'X'), folded(2047, 'x');
    EXPECT_EQ(NameHashLower((longest + "anything").c_str()), NameHash(folded.c_str()));
    EXPECT_EQ(NameHashLower(longest.c_str() + 1), NameHash(folded.c_str() + 1));
}

TEST(FourLetterID, HoldsTheFirstLetterOnTop) {
    FourLetterID id = FourCC("BVOL");
    EXPECT_EQ(id.GetValue(), 0x42564F4Cu);
    id = FourLetterID(FourCC("DICT"));
    EXPECT_EQ(id.GetValue(), 0x44494354u);
}
