#include "Cross/engine/filesystem/FilePath.h"

#include "Cross/engine/core/Text.h"
#include "Cross/engine/filesystem/AliasTable.h"
#include "Cross/engine/filesystem/FilePathHDRaw.h"
#include "Cross/engine/filesystem/FileStream.h"
#include "Cross/engine/filesystem/FileWatch.h"
#include "Cross/engine/filesystem/OpenNotify.h"
#include "Cross/engine/filesystem/PathText.h"

#include <cstring>

namespace {

std::unique_ptr<ByteStream> openAliased(char const * path, StreamMode mode) {
    if (mode == c_streamWrite) {
        FilePlace place;
        bool const found = FindPlace(path, MissingFolders::Create, place);
        return found ? FileWriteStream::Open(std::move(place), path) : nullptr;
    }
    Descriptor file = mode == c_streamRead ? OpenForReading(path) : Descriptor();
    return file ? std::make_unique<FileReadStream>(std::move(file), path) : nullptr;
}

} // namespace

FilePath::IFileChangeNotify::~IFileChangeNotify() = default;

FilePath::Listener::~Listener() = default;

bool FilePath::SetAlias(char const * alias, char const * realDirectory) {
    bool const set = AliasTable::Instance().Set(alias, realDirectory);
    if (set)
        FileWatch::Instance().FollowAliases();
    return set;
}

bool FilePath::RemoveAlias(char const * alias) {
    bool const removed = AliasTable::Instance().Remove(alias);
    if (removed)
        FileWatch::Instance().FollowAliases();
    return removed;
}

ByteStreamProxy FilePath::OpenStream(char const * path, StreamMode mode) {
    if (!fs::HasAlias(path))
        return ByteStreamProxy(FilePathHDRaw::UnaliasedFileOpen(path, mode, false));
    std::unique_ptr<ByteStream> stream = openAliased(path, mode);
    if (stream) {
        char alias[c_maxPath];
        fs::RetrieveAlias(path, alias);
        OpenNotify::Instance().Tell(path + std::strlen(alias) + 1, alias, mode);
    }
    return ByteStreamProxy(stream.release());
}

FilePath::FILE_Type FilePath::GetFileType(char const * path) {
    FilePlace place;
    if (!FindPlace(path, MissingFolders::Leave, place))
        return FT_NONE;
    switch (place.kind) {
    case 0:
        return FT_NONE;
    case S_IFREG:
        return FT_FILE;
    case S_IFDIR:
        return FT_DIRECTORY;
    default:
        return FT_OTHER;
    }
}

bool FilePath::ConvertFromAlias(char * path, StreamMode, char const *) {
    if (IsNoPath(path))
        return false;
    if (!fs::HasAlias(path))
        return true;
    FilePlace place;
    if (!FindPlace(path, MissingFolders::Leave, place) || place.realPath.size() >= c_maxPath)
        return false;
    return text::CopyCut(path, c_maxPath, place.realPath.c_str());
}

void FilePath::AttachFileChangeNotification(char const * path, IFileChangeNotify * listener) {
    FileWatch::Instance().Attach(path, listener);
}

void FilePath::DetachFileChangeNotification(IFileChangeNotify * listener, char const * path) {
    FileWatch::Instance().Detach(listener, path);
}

unsigned int FilePath::PumpFileChanges() { return FileWatch::Instance().Pump(); }

void FilePath::AttachListener(Listener * listener) { OpenNotify::Instance().Attach(listener); }

void FilePath::DetachListener(Listener * listener) { OpenNotify::Instance().Detach(listener); }
