#include "samples/sandbox/Files.h"

#include "Cross/engine/filesystem/FilePath.h"

std::string ReadWholeFile(char const * path) {
    ByteStreamProxy const stream = FilePath::OpenStream(path, c_streamRead);
    if (!stream)
        return {};
    std::string content(stream->GetLen(), '\0');
    content.resize(stream->Read(content.data(), stream->GetLen()));
    return content;
}
