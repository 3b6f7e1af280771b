#include "samples/sandbox/Checks.h"

#include "Cross/Util/BinaryConfig.h"
#include "Cross/Util/BinaryConfigIO.h"

namespace {

// Loads and verifies one table and compares its CRC with the one that is read alone; gives the size of its
// image.
unsigned int check(Asset const & asset, Report & report) {
    std::string const path = asset.TablePath();
    BinaryConfig table;
    if (!report.Expect(BinaryConfigIO::Load(path.c_str(), table), "loading " + path))
        return 0;
    unsigned int const size = table.GetBinaryConfigDataSize();
    BinaryConfigIO::VerifyError error;
    if (!BinaryConfigIO::Verify(table.GetBinaryConfigData(), size, &error))
        report.Expect(false, path + ": " + error.reason);
    std::uint32_t crc = 0;
    report.Expect(BinaryConfigIO::LoadCRCOnly(path.c_str(), crc) && crc == table.GetCRC(),
                  "the CRC read alone is that of the loaded table " + path);
    return size;
}

} // namespace

void CheckTables(Report & report, std::vector<Asset> const & assets) {
    report.Begin(Subsystem::Tables);
    std::size_t bytes = 0;
    for (Asset const & asset : assets)
        bytes += check(asset, report);
    report.Expect(assets.size() >= 30, "at least 30 attribute files are built");
    report.Evidence(std::to_string(assets.size()) + " scripts of 2 kinds became tables of " +
                    std::to_string(bytes) + " bytes");
    report.Evidence("each table verified, each CRC read alone equals the loaded one");

    BinaryConfig missing;
    report.Expect(!BinaryConfigIO::Load("GENERIC:units/nobody.attr", missing) && missing.GetCount() == 0,
                  "a missing table does not load");
    report.Evidence("a missing table was refused");
}
