#include "samples/sandbox/Checks.h"

#include "Cross/Util/BinaryConfigIO.h"
#include "Cross/Util/LogFile.h"
#include "Cross/engine/core/Types.h"
#include "samples/sandbox/Files.h"

#include <unistd.h>

#include <algorithm>

namespace {

std::size_t countLines(char const * path) {
    std::string const content = ReadWholeFile(path);
    return static_cast<std::size_t>(std::count(content.begin(), content.end(), '\n'));
}

} // namespace

void CheckLogs(Report & report, std::vector<Asset> const & assets) {
    report.Begin(Subsystem::Keys);
    // Ten logs of one name and stamp is all there can be, and runs may share a second: the process makes the
    // name its own.
    std::string const name = "Assets-" + std::to_string(getpid());
    char path[c_maxPath];
    LogFile::MakeFilename(path, name.c_str(), ".txt");

    LogFile log;
    report.Expect(log.Create(name.c_str(), ".txt", true, false), "a log is created");
    for (Asset const & asset : assets) {
        std::uint32_t crc = 0;
        BinaryConfigIO::LoadCRCOnly(asset.TablePath().c_str(), crc);
        log.printf("%s %08X", asset.TablePath().c_str(), static_cast<unsigned int>(crc));
    }
    report.Expect(countLines(path) == assets.size(), "every line is in the file while the log is open");
    log.Close();
    report.Evidence(std::to_string(countLines(path)) + " lines in " + path);

    LogFile second;
    report.Expect(second.Create(name.c_str(), ".txt", true, false),
                  "a second log of the same name is created");
    second.puts("the first one is kept");
    report.Expect(countLines(path) == assets.size(), "the first log is never overwritten");
    report.Evidence("a second log of that name went beside it");
}
