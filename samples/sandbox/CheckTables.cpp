#include "samples/sandbox/Checks.h"

#include "Cross/Util/BinaryConfig.h"
#include "Cross/Util/BinaryConfigCreator.h"
#include "Cross/Util/BinaryConfigIO.h"
#include "Cross/engine/filesystem/FilePath.h"
#include "tools/tablesource/TableSource.h"

namespace {

bool build(Asset const & asset, Report & report) {
    ByteStreamProxy const source = FilePath::OpenStream(asset.ScriptPath().c_str(), c_streamRead);
    if (!report.Expect(static_cast<bool>(source), asset.ScriptPath() + " opens"))
        return false;
    BinaryConfigCreator creator;
    TableSource::Report built;
    if (!TableSource::Build(*source, creator, built))
        return report.Expect(false, built.errors.front());
    return report.Expect(BinaryConfigIO::Save(asset.TablePath().c_str(), creator, 1),
                         "saving " + asset.TablePath());
}

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
    report.Begin("tables");
    std::size_t built = 0;
    std::size_t bytes = 0;
    for (Asset const & asset : assets) {
        if (!build(asset, report))
            continue;
        ++built;
        bytes += check(asset, report);
    }
    report.Expect(built >= 30, "at least 30 attribute files are built");
    report.Evidence(std::to_string(built) + " scripts of 2 kinds became tables of " + std::to_string(bytes) +
                    " bytes");
    report.Evidence("each verified, each CRC read alone equals the loaded one");

    BinaryConfig missing;
    report.Expect(!BinaryConfigIO::Load("BUILT:units/nobody.attr", missing) && missing.GetCount() == 0,
                  "a missing table does not load");
    report.Evidence("a missing one was refused");
}
