#include "tools/OutputFile.h"

#include "Cross/engine/filesystem/ByteStream.h"
#include "Cross/engine/filesystem/FilePathHDRaw.h"

#include <limits>

std::string WithoutAlias(std::string const & path) {
    // A slash in front of the first ':' keeps a path out of the mapping.
    return path.find(':') < path.find('/') ? "./" + path : path;
}

bool WriteWholeFile(std::string const & path, std::string_view bytes) {
    if (bytes.size() > std::numeric_limits<unsigned int>::max())
        return false;
    ByteStreamProxy const stream(FilePathHDRaw::UnaliasedFileOpen(path.c_str(), c_streamWrite, false));
    if (!stream)
        return false;
    auto const size = static_cast<unsigned int>(bytes.size());
    if (stream->Write(bytes.data(), size) == size && stream->Flush())
        return true;
    stream->Discard();
    return false;
}
