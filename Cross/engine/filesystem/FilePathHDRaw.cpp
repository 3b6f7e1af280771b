#include "Cross/engine/filesystem/FilePathHDRaw.h"

#include "Cross/engine/core/Utf.h"
#include "Cross/engine/filesystem/FileStream.h"
#include "Cross/engine/filesystem/OpenNotify.h"

#include <string>

namespace {

std::unique_ptr<ByteStream> open(std::string const & path, StreamMode mode) {
    if (mode == c_streamWrite) {
        FilePlace place;
        return FindRawPlace(path, place) ? FileWriteStream::Open(std::move(place), path.c_str()) : nullptr;
    }
    Descriptor file = mode == c_streamRead ? OpenRawForReading(path) : Descriptor();
    return file ? std::make_unique<FileReadStream>(std::move(file), path.c_str()) : nullptr;
}

ByteStream * openAndTell(std::string const & path, StreamMode mode) {
    std::unique_ptr<ByteStream> stream = open(path, mode);
    if (stream)
        OpenNotify::Instance().Tell(path, "", mode);
    return stream.release();
}

bool isWidePath(char16_t const * path) {
    return path && *path && std::char_traits<char16_t>::length(path) < c_maxPath;
}

} // namespace

ByteStream * FilePathHDRaw::UnaliasedFileOpen(char const * path, StreamMode mode, bool) {
    return IsNoPath(path) ? nullptr : openAndTell(path, mode);
}

ByteStream * FilePathHDRaw::UnaliasedFileOpen(char16_t const * path, StreamMode mode, bool) {
    if (!isWidePath(path))
        return nullptr;
    std::string const narrow = utf::ToUtf8(path);
    // Text that is no UTF-16 has no name of its own: it would open whatever its replacement names.
    return utf::ToUtf16(narrow) == path ? openAndTell(narrow, mode) : nullptr;
}
