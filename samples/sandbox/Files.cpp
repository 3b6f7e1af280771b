#include "samples/sandbox/Files.h"

#include "Cross/engine/core/Text.h"
#include "Cross/engine/core/Types.h"
#include "Cross/engine/core/Utf.h"
#include "Cross/engine/filesystem/FilePath.h"

std::string RealPath(std::string const & aliased) {
    char path[c_maxPath];
    text::CopyCut(path, sizeof(path), aliased.c_str());
    FilePath::ConvertFromAlias(path, c_streamRead, nullptr);
    return path;
}

std::u16string WideRealPath(char const * aliased) {
    std::u16string wide;
    utf::ToUtf16Strict(RealPath(aliased).c_str(), wide);
    return wide;
}

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
