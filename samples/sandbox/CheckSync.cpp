// Two worlds of one seed agree on one number per frame; when a bit drifts, the printed blocks tell where.

#include "samples/sandbox/Checks.h"

#include "Cross/Util/LogFile.h"
#include "Cross/engine/core/Text.h"
#include "Cross/engine/filesystem/FilePath.h"
#include "samples/sandbox/Simulation.h"
#include "tools/syncdiff/SyncDiff.h"

#include <unistd.h>

#include <algorithm>
#include <optional>

namespace {

constexpr std::uint32_t c_seed = 20261122;
constexpr unsigned int c_units = 40;
constexpr unsigned int c_frames = 300;
constexpr unsigned int c_nudgedUnit = 17;

// What this seed gives in every build, on every machine.
constexpr std::uint32_t c_finalCRC = 0x15B7B566;

// Steps both worlds, the second of which drifts at the start of a frame, 0 for never, and gives the first
// frame after which they differ. The blocks hold that frame then, else the last one.
std::optional<unsigned int> firstDrift(unsigned int driftFrame, CRCBlock & left, CRCBlock & right) {
    Simulation first(c_seed, c_units), second(c_seed, c_units);
    while (first.GetFrame() < std::max(c_frames, driftFrame)) {
        if (first.GetFrame() + 1 == driftFrame)
            second.Nudge(c_nudgedUnit);
        first.Step();
        second.Step();
        first.RecordTo(left, false);
        second.RecordTo(right, true);
        if (left.GetCRC() == right.GetCRC())
            continue;
        first.RecordTo(left, true);
        return first.GetFrame();
    }
    return std::nullopt;
}

// Prints a block into a log of its own and gives the log's name.
std::string printed(CRCBlock const & block, char const * side) {
    // Runs may share a second: the process makes the name its own.
    std::string const name = std::string("Sync-") + side + "-" + std::to_string(getpid());
    char path[c_maxPath];
    LogFile::MakeFilename(path, name.c_str(), ".txt");
    block.Print(name.c_str());
    return path;
}

std::string placeOf(SyncReport const & report) {
    std::string place = "frame " + report.frame + ", " + report.path;
    for (std::string const & distance : SyncDistances(report.difference[0].text, report.difference[1].text))
        place += ", " + distance;
    return place;
}

} // namespace

void CheckSync(Report & report, unsigned int driftFrame) {
    report.Begin(Subsystem::Determinism);
    CRCBlock left, right;
    report.Expect(!firstDrift(0, left, right), "two worlds of one seed agree in every frame");
    std::string crc;
    text::Printf(crc, "%08X", left.GetCRC());
    report.Expect(left.GetCRC() == c_finalCRC, "the final CRC is that of every build, not " + crc);
    report.Evidence(std::to_string(c_frames) + " frames of two worlds agree, final CRC " + crc);

    report.Expect(firstDrift(driftFrame, left, right) == driftFrame,
                  "the CRCs differ from frame " + std::to_string(driftFrame) + " on");
    std::string const leftLog = printed(left, "left"), rightLog = printed(right, "right");
    ByteStreamProxy const leftText = FilePath::OpenStream(leftLog.c_str(), c_streamRead);
    ByteStreamProxy const rightText = FilePath::OpenStream(rightLog.c_str(), c_streamRead);
    if (!report.Expect(leftText && rightText, "both blocks are printed"))
        return;
    SyncReport const found = DiffSync(*leftText, *rightText);
    report.Expect(found.frame == std::to_string(driftFrame) && found.path == "Sim/unit/pos",
                  "the drift is found, not " + placeOf(found));
    report.Evidence("one bit changed: " + placeOf(found) + " (" + leftLog + " | " + rightLog + ")");
}
