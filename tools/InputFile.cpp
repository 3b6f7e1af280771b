#include "tools/InputFile.h"

#include "tools/Progress.h"

#include "Cross/engine/filesystem/FilePathHDRaw.h"

#include <filesystem>

namespace {

std::string whyNotOpen(std::string const & path) {
    std::error_code error;
    std::filesystem::file_status const status = std::filesystem::status(path, error);
    switch (status.type()) {
    case std::filesystem::file_type::not_found:
        return "does not exist";
    case std::filesystem::file_type::directory:
        return "is a directory";
    default:
        return error ? error.message() : "cannot be opened";
    }
}

} // namespace

ByteStreamProxy OpenForReading(std::string const & path, std::vector<std::string> & findings) {
    ByteStreamProxy stream(FilePathHDRaw::UnaliasedFileOpen(path.c_str(), c_streamRead, false));
    if (!stream)
        findings.push_back(path + ": " + whyNotOpen(path));
    return Progress::Watch(stream);
}

bool IsSameFile(std::string const & left, std::string const & right) {
    std::error_code error;
    return std::filesystem::equivalent(left, right, error);
}

bool ReadWholeFile(std::string const & path, std::string & bytes, std::vector<std::string> & findings) {
    ByteStreamProxy const stream = OpenForReading(path, findings);
    if (!stream)
        return false;
    bytes.resize(stream->GetLen());
    if (stream->Read(bytes.data(), stream->GetLen()) == bytes.size())
        return true;
    findings.push_back(path + ": cannot be read");
    return false;
}
