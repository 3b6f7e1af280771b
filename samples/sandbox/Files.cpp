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

bool WriteWholeFile(char const * path, std::string const & content) {
    ByteStreamProxy const stream = FilePath::OpenStream(path, c_streamWrite);
    auto const size = static_cast<unsigned int>(content.size());
    return stream && stream->Write(content.data(), size) == size && stream->Flush();
}
