#include "Cross/engine/filesystem/FileStream.h"

#include "Cross/engine/diagnostics/Trace.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <limits>
#include <system_error>

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>

namespace {

constexpr std::string_view c_temporaryPrefix = ".unfinished-";
constexpr std::string_view c_temporarySuffix = ".crosstmp";

std::string newTemporaryName() {
    static std::atomic<unsigned int> s_counter{0};
    std::string name(c_temporaryPrefix);
    name += std::to_string(::getpid()) + '-' + std::to_string(++s_counter);
    return name.append(c_temporarySuffix);
}

char * roomOf(FileBuffer & buffer) {
    if (!buffer.bytes)
        buffer.bytes = std::make_unique_for_overwrite<char[]>(FileBuffer::c_size);
    return buffer.bytes.get();
}

// How much of `size` keeps the end of a transfer at a position that 32 bits hold.
unsigned int cutToRange(unsigned int position, unsigned int size) {
    return std::min(size, std::numeric_limits<unsigned int>::max() - position);
}

bool injectWriteFault() {
    std::atomic<unsigned int> & countdown = FileFaults::Instance().failingWrite;
    return countdown > 0 && --countdown == 0;
}

// Gives the number of bytes written; errno tells why they are fewer than `size`.
unsigned int writeAt(int file, char const * data, unsigned int size, unsigned int position) {
    unsigned int done = 0;
    while (done < size) {
        if (injectWriteFault()) {
            errno = ENOSPC;
            break;
        }
        ssize_t const count = ::pwrite(file, data + done, size - done, off_t{position} + done);
        if (count < 0 && errno == EINTR)
            continue;
        if (count == 0)
            errno = EIO;
        if (count <= 0)
            break;
        done += static_cast<unsigned int>(count);
    }
    return done;
}

bool sync(int file) {
    if (FileFaults::Instance().failSync) {
        errno = EIO;
        return false;
    }
    return ::fsync(file) == 0;
}

// Whether another file may take the name of the one that is there. In a folder like /tmp that is up to the
// owners, even where everybody may write.
bool mayReplace(int folder, struct stat const & old) {
    struct stat status;
    if (!MayWrite(folder, ".") || ::fstat(folder, &status) != 0)
        return false;
    uid_t const user = ::geteuid();
    bool const isUpToOwners = (status.st_mode & S_ISVTX) != 0;
    return !isUpToOwners || user == 0 || user == old.st_uid || user == status.st_uid;
}

} // namespace

FileFaults & FileFaults::Instance() {
    static constinit FileFaults instance;
    return instance;
}

void FileFaults::Clear() {
    failingWrite = 0;
    failSync = false;
    failRename = false;
}

bool IsTemporaryName(std::string_view name) {
    return name.starts_with(c_temporaryPrefix) && name.ends_with(c_temporarySuffix);
}

FileReadStream::FileReadStream(Descriptor file, char const * name)
    : ByteStream(name), file(std::move(file)) {}

unsigned int FileReadStream::Read(void * out, unsigned int size) {
    char * const target = static_cast<char *>(out);
    unsigned int const wanted = cutToRange(position, size);
    unsigned int done = takeBuffered(target, wanted);
    unsigned int const left = wanted - done;
    if (left >= FileBuffer::c_size) {
        unsigned int const direct = readAt(target + done, left, position);
        position += direct;
        done += direct;
    } else if (left > 0) {
        buffer.start = position;
        buffer.used = readAt(roomOf(buffer), cutToRange(position, FileBuffer::c_size), position);
        done += takeBuffered(target + done, left);
    }
    return done;
}

unsigned int FileReadStream::takeBuffered(char * out, unsigned int size) {
    if (position < buffer.start || position >= buffer.End())
        return 0;
    unsigned int const count = std::min(size, buffer.End() - position);
    std::memcpy(out, buffer.bytes.get() + (position - buffer.start), count);
    position += count;
    return count;
}

unsigned int FileReadStream::readAt(char * out, unsigned int size, unsigned int from) {
    unsigned int done = 0;
    while (done < size) {
        ssize_t const count = ::pread(file.Get(), out + done, size - done, off_t{from} + done);
        if (count < 0 && errno == EINTR)
            continue;
        if (count <= 0)
            break;
        done += static_cast<unsigned int>(count);
    }
    return done;
}

unsigned int FileReadStream::GetLen() {
    struct stat status;
    if (::fstat(file.Get(), &status) != 0)
        return 0;
    return static_cast<unsigned int>(
        std::min<std::int64_t>(status.st_size, std::numeric_limits<unsigned int>::max()));
}

std::unique_ptr<FileWriteStream> FileWriteStream::Open(FilePlace place, char const * name) {
    if (!place.folder || place.name.empty() || (place.kind != 0 && place.kind != S_IFREG))
        return nullptr;
    std::unique_ptr<FileWriteStream> stream(new FileWriteStream(std::move(place), name));
    // A file that another program creates in between is one to replace.
    bool const opened = stream->place.kind == 0 && stream->create();
    return opened || stream->replace() ? std::move(stream) : nullptr;
}

FileWriteStream::FileWriteStream(FilePlace place, char const * name)
    : ByteStream(name), place(std::move(place)) {}

bool FileWriteStream::create() {
    constexpr int flags = O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC;
    file = Descriptor(::openat(place.folder.Get(), place.name.c_str(), flags, 0666));
    if (file)
        stage = Stage::NewFile;
    return static_cast<bool>(file);
}

bool FileWriteStream::replace() {
    int const folder = place.folder.Get();
    struct stat old;
    // Only looked at: opening it for writing would tell watchers of a change that there is none of yet.
    bool const exists = ::fstatat(folder, place.name.c_str(), &old, AT_SYMLINK_NOFOLLOW) == 0;
    if (!exists || !IsSmallRegular(old) || !MayWrite(folder, place.name.c_str()))
        return false;
    if (mayReplace(folder, old)) {
        if (createTemporary(old))
            return true;
        if (errno != EACCES && errno != EPERM)
            return false;
    }
    file = Descriptor(::memfd_create("unfinished", MFD_CLOEXEC));
    if (file)
        stage = Stage::Memory;
    return static_cast<bool>(file);
}

bool FileWriteStream::createTemporary(struct stat const & old) {
    constexpr int flags = O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC;
    do {
        temporary = newTemporaryName();
        file = Descriptor(::openat(place.folder.Get(), temporary.c_str(), flags, 0600));
    } while (!file && errno == EEXIST);
    if (!file)
        return false;
    stage = Stage::Temporary;
    // Only the superuser may give a file away, and some file systems keep neither owner nor mode.
    [[maybe_unused]] int const ownerKept = ::fchown(file.Get(), old.st_uid, old.st_gid);
    [[maybe_unused]] int const modeKept = ::fchmod(file.Get(), old.st_mode & 07777);
    return true;
}

FileWriteStream::~FileWriteStream() {
    if (isDead() || !push() || (stage != Stage::Named && !takeName(true)))
        removeUnfinished();
}

unsigned int FileWriteStream::Write(void const * data, unsigned int size) {
    if (isDead() || size == 0)
        return 0;
    if (cutToRange(position, size) < size) {
        fail(EFBIG);
        return 0;
    }
    char const * const bytes = static_cast<char const *>(data);
    unsigned int const done =
        size < FileBuffer::c_size ? writeBuffered(bytes, size) : writeThrough(bytes, size);
    position += done;
    length = std::max(length, position);
    return done;
}

unsigned int FileWriteStream::writeThrough(char const * data, unsigned int size) {
    if (!push())
        return 0;
    unsigned int const done = writeAt(file.Get(), data, size, position);
    if (done < size)
        fail(errno);
    return done;
}

unsigned int FileWriteStream::writeBuffered(char const * data, unsigned int size) {
    bool const touches = position >= buffer.start && position <= buffer.End();
    bool const joins = touches && position - buffer.start + size <= FileBuffer::c_size;
    if (!joins && !push())
        return 0;
    if (buffer.used == 0)
        buffer.start = position;
    unsigned int const offset = position - buffer.start;
    std::memcpy(roomOf(buffer) + offset, data, size);
    buffer.used = std::max(buffer.used, offset + size);
    return size;
}

// Hands the buffer to the operating system; what it does not take stays for the next time.
bool FileWriteStream::push() {
    unsigned int const done = writeAt(file.Get(), buffer.bytes.get(), buffer.used, buffer.start);
    bool const all = done == buffer.used;
    if (!all) {
        fail(errno);
        std::memmove(buffer.bytes.get(), buffer.bytes.get() + done, buffer.used - done);
    }
    buffer.start += done;
    buffer.used -= done;
    return all;
}

bool FileWriteStream::Flush() { return !isDead() && push() && (stage == Stage::Named || takeName(false)); }

// Makes what was written the content of the file. `closing` tells that nothing is written afterwards.
bool FileWriteStream::takeName(bool closing) {
    if (stage == Stage::Memory)
        return copyOver();
    if (stage == Stage::Temporary && !renameTemporary(closing))
        return false;
    stage = Stage::Named;
    return true;
}

bool FileWriteStream::renameTemporary(bool closing) {
    if (!sync(file.Get()))
        return fail(errno);
    if (closing)
        file.Close(); // watchers see one change then, under the name
    if (FileFaults::Instance().failRename)
        return fail(EIO);
    int const folder = place.folder.Get();
    if (::renameat(folder, temporary.c_str(), folder, place.name.c_str()) != 0)
        return fail(errno);
    return true;
}

bool FileWriteStream::copyOver() {
    Descriptor target = OpenRegular(place.folder.Get(), place.name.c_str(), O_WRONLY | O_NOFOLLOW);
    if (!target || !reserveRoom(target.Get()) || !copyInto(target.Get()))
        return fail(errno);
    file = std::move(target);
    stage = Stage::Named;
    return true;
}

// Takes the room on the disk before the old content is touched; not every file system can.
bool FileWriteStream::reserveRoom(int target) const {
    struct stat old;
    if (::fstat(target, &old) != 0)
        return false;
    if (length == 0 || ::fallocate(target, 0, 0, off_t{length}) == 0 || errno == EOPNOTSUPP)
        return true;
    int const error = errno;
    [[maybe_unused]] int const restored = ::ftruncate(target, old.st_size);
    errno = error;
    return false;
}

bool FileWriteStream::copyInto(int target) {
    for (unsigned int from = 0; from < length;) {
        ssize_t const count = ::pread(file.Get(), roomOf(buffer), FileBuffer::c_size, from);
        if (count <= 0)
            return false;
        unsigned int const size = static_cast<unsigned int>(count);
        if (writeAt(target, buffer.bytes.get(), size, from) < size)
            return false;
        from += size;
    }
    return ::ftruncate(target, length) == 0 && sync(target);
}

void FileWriteStream::removeUnfinished() {
    int const folder = place.folder.Get();
    if (stage == Stage::Temporary)
        ::unlinkat(folder, temporary.c_str(), 0);
    if (stage == Stage::NewFile && isOwn())
        ::unlinkat(folder, place.name.c_str(), 0);
}

// Another program may have put a file of its own under the name meanwhile.
bool FileWriteStream::isOwn() const {
    struct stat here;
    struct stat there;
    return ::fstat(file.Get(), &here) == 0 &&
           ::fstatat(place.folder.Get(), place.name.c_str(), &there, AT_SYMLINK_NOFOLLOW) == 0 &&
           here.st_dev == there.st_dev && here.st_ino == there.st_ino;
}

bool FileWriteStream::isDead() const { return IsDiscarded() || (failed && stage != Stage::Named); }

// Traces the first failure. Gives false.
bool FileWriteStream::fail(int error) {
    if (!failed)
        dbTimeStampedTracefAux("FILESYSTEM -- Failed to write file '%s': %s", GetStreamName(),
                               std::generic_category().message(error).c_str());
    failed = true;
    return false;
}
