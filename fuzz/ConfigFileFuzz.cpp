// Sectioned files from outside: what loads is saved, loads again, and is the same then.

#include "Cross/Util/ConfigFile.h"
#include "tests/support/StreamBytes.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <unistd.h>

namespace {

void demand(bool holds) {
    if (!holds)
        std::abort();
}

// One file for all runs of this process.
std::u16string const & savePath() {
    static std::u16string const path =
        (std::filesystem::temp_directory_path() / ("fuzz-config-" + std::to_string(getpid()) + ".ini"))
            .u16string();
    return path;
}

std::string savedBytes(ConfigFile const & file) {
    demand(file.Save(savePath().c_str()));
    std::ifstream stream(std::filesystem::path(savePath()), std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

// Lines near the longest that loading takes whole may be cut at another place the second time.
bool hasLongLine(std::string_view bytes) {
    std::size_t begin = 0;
    for (std::size_t end; (end = bytes.find("\r\n", begin)) != std::string_view::npos; begin = end + 2)
        if (end - begin > 1000)
            return true;
    return false;
}

void readAll(ConfigFile & file) {
    for (unsigned int s = 0; s < file.GetSectionCount(); ++s) {
        file.SetSection(file.GetSectionAt(s), nullptr, 0);
        for (unsigned int k = 0; k < file.GetKeyCount(); ++k) {
            std::string value;
            int number = 0;
            file.GetString(file.GetKeyAt(k), value);
            file.GetInt(file.GetKeyAt(k), number);
        }
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const * data, std::size_t size) {
    FilledStream input(std::string_view(reinterpret_cast<char const *>(data), size));
    ConfigFile file;
    bool const loaded = file.Load(static_cast<ByteStream *>(input));
    demand(loaded == (file.GetSectionCount() > 0));
    readAll(file);
    std::string const saved = savedBytes(file);
    if (hasLongLine(saved))
        return 0;
    ConfigFile again;
    demand(again.Load(savePath().c_str()) == loaded);
    demand(savedBytes(again) == saved);
    return 0;
}
