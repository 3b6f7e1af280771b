#include "Cross/Util/CRCRecord.h"
#include "Cross/Util/Random.h"
#include "Cross/engine/filesystem/FilePath.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

struct Unit {
    Math::Vector2f pos;
};

// [record]
CRCBlock block; // one for all frames: Clear keeps its memory

void recordFrame(int frame, std::vector<Unit> const & units, bool keepEntries) {
    Dictionary & names = keyedCRCEntry::s_dictionary;
    static Dictionary::Key const c_sim = names.GetKey("Sim"), c_frame = names.GetKey("frame"),
                                 c_unit = names.GetKey("unit"), c_pos = names.GetKey("pos");
    block.Clear();
    CRCGroup const sim(block, c_sim, keepEntries);
    Record(block, c_frame, frame, keepEntries);
    for (Unit const & unit : units) {
        CRCGroup const group(block, c_unit, keepEntries);
        Record(block, c_pos, unit.pos, keepEntries);
    }
}

// [record]

} // namespace

TEST(DeterminismGuide, Draw) {
    // [draw]
    Random random;
    random.SetSeed(12345);
    std::uint32_t const roll = random.GetRange(1, 6);
    double const chance = random.GetUnitExclusive(); // between 0 and 1, never either

    std::uint32_t const seed = random.GetSeed(), index = random.GetIndex(); // save these
    Random resumed;
    resumed.SetSeed(seed); // goes to the beginning of the stream
    resumed.SetIndex(index);
    // [draw]
    EXPECT_TRUE(roll >= 1 && roll <= 6 && chance > 0 && chance < 1);
    EXPECT_EQ(resumed.GetBits(32), random.GetBits(32));
}

TEST(DeterminismGuide, RecordAndPrint) {
    TemporaryFolder const folder;
    FilePath::SetAlias("log", folder.Path().c_str());
    std::vector<Unit> const units = {{{1.25f, 0.0f}}};
    recordFrame(137, units, false);
    std::uint32_t const crc = block.GetCRC();
    recordFrame(137, units, true);
    EXPECT_EQ(block.GetCRC(), crc);

    char path[c_maxPath];
    LogFile::MakeFilename(path, "sync-left", ".txt");
    // [print]
    block.Print("sync-left"); // log:sync-left.(time).txt
    // [print]
    EXPECT_NE(
        folder.ReadFile(path + 4).find("Total CRC: [ bcd6ada7 ]\n"
                                       "Sim: \n"
                                       "{\n"
                                       "  frame: [ 137 ]\n"
                                       "  unit: \n"
                                       "  {\n"
                                       "    pos: [ (1.250000000e+00 <3fa00000>, 0.000000000e+00 <0>) ]\n"
                                       "  }\n"
                                       "}\n"),
        std::string::npos);
    FilePath::RemoveAlias("log");
}
