#include "Cross/Util/CRCRecord.h"
#include "Cross/Util/Random.h"
#include "tests/support/AliasedFolder.h"
#include "tests/support/CrashFiles.h"

#include <gtest/gtest.h>
#include <zlib.h>

#include <bit>
#include <limits>

#include <malloc.h>

namespace {

Dictionary::Key key(char const * name) { return keyedCRCEntry::s_dictionary.GetKey(name); }

// Prints into a folder of its own and gives the text.
class SyncLog : public testing::Test {
protected:
    std::string Printed(CRCBlock const & block) {
        block.Print("block");
        std::string const name = folder.OnlyEntry();
        EXPECT_TRUE(name.starts_with("block.") && name.ends_with(".txt")) << name;
        std::string const text = folder.ReadFile(name);
        std::filesystem::remove(folder / name);
        return text;
    }

    template <class T>
    std::string PrintedValue(T const & value) {
        CRCBlock block;
        Record(block, key("v"), value);
        std::string const text = Printed(block);
        return text.substr(text.find('\n') + 1);
    }

    AliasedFolder folder{"log"};
};

// A client's own entries: one with a line of its own, and one that takes the print that prints nothing.
struct Mark : CRCEntry {
    void Print(LogFile & log) const override {
        Indent(log);
        log.puts("mark\n");
    }

    unsigned int SizeOf() const override { return sizeof(*this); }
};

struct Silent : CRCEntry {
    unsigned int SizeOf() const override { return sizeof(*this); }
};

std::uint32_t crcOf(void const * bytes, std::size_t size) {
    return static_cast<std::uint32_t>(crc32(0, static_cast<Bytef const *>(bytes), static_cast<uInt>(size)));
}

} // namespace

TEST_F(SyncLog, PrintsGroupsTwoBlanksALevel) {
    CRCBlock block;
    EXPECT_EQ(Printed(block), "Total CRC: [ 0 ]\n");
    {
        CRCGroup const sim(block, key("Sim"));
        Record(block, key("frame"), 12);
        CRCGroup const unit(block, key("unit"));
        AddEntry<commentCRCEntry>(block, "between moves");
        Record(block, key("alive"), true);
    }
    EXPECT_EQ(Printed(block), "Total CRC: [ 74d52a8a ]\n"
                              "Sim: \n"
                              "{\n"
                              "  frame: [ 12 ]\n"
                              "  unit: \n"
                              "  {\n"
                              "    between moves\n"
                              "    alive: [ true <1> ]\n"
                              "  }\n"
                              "}\n");
}

TEST_F(SyncLog, PrintsTheEntriesOfItsClients) {
    CRCBlock block;
    {
        CRCGroup const sim(block, key("Sim"));
        AddEntry<Silent>(block);
        AddEntry<Mark>(block);
    }
    EXPECT_EQ(Printed(block), "Total CRC: [ 0 ]\nSim: \n{\n  mark\n}\n");
}

// The depth belongs to all blocks: what one leaves open moves the next. Below 0 nothing is indented.
TEST_F(SyncLog, UnbalancedGroupsMoveTheNextBlock) {
    CRCBlock open, close, value;
    AddEntry<pushCRCEntry>(open, key("g"));
    AddEntry<popCRCEntry>(close);
    Record(value, key("v"), 1);
    auto const line = [&] { return Printed(value).substr(Printed(value).find('\n') + 1); };
    Printed(open);
    EXPECT_EQ(line(), "  v: [ 1 ]\n");
    for (int depth : {0, -1}) {
        Printed(close);
        EXPECT_EQ(line(), "v: [ 1 ]\n") << depth;
    }
    Printed(open);
    EXPECT_EQ(line(), "v: [ 1 ]\n");
}

TEST_F(SyncLog, ValuesHaveTheirForms) {
    Math::Vector3f const v{1.0f, -2.5f, 0x1p-149f};
    std::string const triple =
        "(1.000000000e+00 <3f800000>, -2.500000000e+00 <c0200000>, 1.401298464e-45 <1>)";
    std::string const rows3 = triple + ", " + triple + ", " + triple;
    std::string const longText(300, 'x');
    std::pair<std::string, std::string> const cases[] = {
        {PrintedValue(false), "false <0>"},
        {PrintedValue(std::uint8_t{200}), "200"},
        {PrintedValue(std::uint16_t{65535}), "65535"},
        {PrintedValue(0xFFFFFFFFu), "-1"},
        {PrintedValue(std::uint64_t{0xFFFFFFFFFFFFFFFF}), "18446744073709551615"},
        {PrintedValue(std::numeric_limits<float>::infinity()), "inf <7f800000>"},
        {PrintedValue(Math::Vector2f{0.0f, -0.0f}), "(0.000000000e+00 <0>, -0.000000000e+00 <80000000>)"},
        {PrintedValue(v), triple},
        {PrintedValue(Math::Matrix3f{{v, v, v}}), rows3},
        {PrintedValue(Math::Matrix43f{{v, v, v, v}}), rows3 + ", " + triple},
        {PrintedValue(FourLetterID(0x42564F4C)), "BVOL"},
        {PrintedValue(fixedstring<63, tarnstring_trait<char>>("50% %s")), "50% %s"},
        {PrintedValue(fixedstring<255, tarnstring_trait<char>>(longText.c_str())), longText.substr(0, 255)},
    };
    for (auto const & [printed, value] : cases)
        EXPECT_EQ(printed, "v: [ " + value + " ]\n");

    CRCBlock block;
    AddEntry<commentCRCEntry>(block, longText.c_str());
    EXPECT_EQ(Printed(block), "Total CRC: [ 0 ]\n" + longText.substr(0, 63) + "\n") << "a comment is cut";
}

// A printed file stays in the crash report. A log that cannot be created is not an error, and the depth moves
// all the same.
TEST_F(SyncLog, PrintsNothingWithoutAFile) {
    CRCBlock open, close;
    AddEntry<pushCRCEntry>(open, key("g"));
    AddEntry<popCRCEntry>(close);
    std::size_t const before = VisitedCrashFiles().size();
    FilePath::RemoveAlias("log");
    open.Print("nowhere");
    FilePath::SetAlias("log", folder.Path().c_str());
    EXPECT_EQ(PrintedValue(1), "  v: [ 1 ]\n");
    Printed(close);
    EXPECT_EQ(VisitedCrashFiles().size(), before + 2);
}

TEST(CRCBlock, TheCRCIsThatOfAllValues) {
    CRCBlock with, without;

    struct {
        float number = 0.1f;
        std::uint32_t word = 0x12345678;
    } const values;

    for (CRCBlock * const block : {&with, &without}) {
        Record(*block, key("number"), values.number, block == &with);
        Record(*block, key("word"), values.word, block == &with);
    }
    EXPECT_EQ(with.GetCRC(), crcOf(&values, sizeof(values)));
    EXPECT_EQ(without.GetCRC(), with.GetCRC());
    without.AddToCRC(nullptr, 0);
    EXPECT_EQ(without.GetCRC(), 0u);

    // Equal texts give equal CRCs, whatever stood in the string before.
    CRCBlock fresh, reused;
    fixedstring<63, tarnstring_trait<char>> text("a longer text");
    text = "short";
    Record(reused, key("text"), text);
    Record(fresh, key("text"), fixedstring<63, tarnstring_trait<char>>("short"));
    EXPECT_EQ(fresh.GetCRC(), reused.GetCRC());
}

TEST_F(SyncLog, CopyLocalTakesTheCRCAndAppendsEntries) {
    CRCBlock values, empty, target;
    target.CopyLocal(empty);
    EXPECT_EQ(target.GetCRC(), 0x2144DF1Cu) << "of four zeros";

    Record(values, key("v"), 1);
    target.CopyLocal(values);
    EXPECT_EQ(Printed(target).find("v:"), std::string::npos) << "a block without entries takes none";

    target.Clear();
    EXPECT_EQ(target.GetCRC(), 0u);
    AddEntry<commentCRCEntry>(target, "first");
    target.CopyLocal(values);
    std::uint32_t const crc = values.GetCRC();
    EXPECT_EQ(target.GetCRC(), crcOf(&crc, 4));
    target.CopyLocal(target);
    target.CopyLocal(target); // the buffer grows while it is copied from
    std::string const text = Printed(target), once = "first\nv: [ 1 ]\n";
    EXPECT_EQ(text.substr(text.find('\n') + 1), once + once + once + once);
}

TEST_F(SyncLog, CopiesAreDeep) {
    CRCBlock source;
    Record(source, key("v"), 1);
    CRCBlock copy(source), assigned;
    Record(assigned, key("w"), 2);
    assigned = source;
    std::string const text = Printed(source);
    source.Clear();
    Record(source, key("v"), 3);
    EXPECT_EQ(Printed(copy), text);
    EXPECT_EQ(Printed(assigned), text);
}

// The buffer has 256 bytes at first, then powers of two, and stays over Clear. The heap knows how many; it
// may add some of its own.
TEST(CRCBlock, GrowsByPowersOfTwoAndKeepsItsBuffer) {
    auto const capacityOf = [](void * buffer) { return std::bit_floor(malloc_usable_size(buffer)); };
    CRCBlock block;
    char * const first = static_cast<char *>(block.AllocateEntry(4));
    EXPECT_EQ(block.AllocateEntry(252), first + 4);
    EXPECT_EQ(capacityOf(first), 256u);
    char * const grown = static_cast<char *>(block.AllocateEntry(1)) - 256;
    EXPECT_EQ(capacityOf(grown), 512u);
    block.Clear();
    EXPECT_EQ(block.AllocateEntry(512), grown);
}

TEST(CRCBlockDeathTest, MoreThan2GiBAreFatal) {
    CRCBlock block;
    block.AllocateEntry(256);
    for (unsigned int const size : {0x7FFFFF01u, 0xFFFFFF80u}) // the second sum does not fit 32 bits
        EXPECT_DEATH(block.AllocateEntry(size), "CRCBlock: no memory");
}

// The same in every build: by any compiler, at any optimisation, under sanitizers.
TEST(CRCBlock, AStoredSeedHasItsCRC) {
    Random random;
    random.SetSeed(20261122);
    CRCBlock block;
    float position = 0;
    for (int i = 0; i < 10'000; ++i) {
        position += static_cast<float>(random.GetUnitExclusive()) * 0.1f - 0.05f;
        Record(block, key("position"), position, false);
        Record(block, key("roll"), random.GetRange(1, 6), false);
    }
    EXPECT_EQ(block.GetCRC(), 1235711956u);
}
