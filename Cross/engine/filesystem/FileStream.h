#pragma once

// Streams on regular files: one to read, one to write. Both gather small transfers in a buffer of their own
// and pass big ones straight through.
//
// A file that exists is not touched while its new content is written: that goes to a temporary file beside
// it, which takes the name at the first flush, or when the stream closes and every write succeeded. Where the
// folder takes no new files, or keeps the name for another owner's file, the content waits in memory instead
// and is copied over the file at that moment. A
// file that does not exist yet is created at once, and removed again when writing it fails before the first
// flush.
//
// After that moment the stream writes to the file under its name. A write that fails then keeps its bytes and
// tries them again with the next one, so that a log goes on when the disk has room again.

#include "Cross/engine/core/Export.h"
#include "Cross/engine/filesystem/ByteStream.h"
#include "Cross/engine/filesystem/FilePlace.h"

#include <atomic>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include <sys/stat.h>

// Makes the file operations of write streams fail, for tests of savers. Process-wide.
struct CROSS_ENGINE_API FileFaults {
    static FileFaults & Instance();

    void Clear();

    // The n-th write to the operating system from now on fails with ENOSPC, counted from 1; 0 for none.
    std::atomic<unsigned int> failingWrite{0};
    std::atomic<bool> failSync{false};
    std::atomic<bool> failRename{false};
};

// True for the names of the temporary files that hold unfinished content.
bool IsTemporaryName(std::string_view name);

// The bytes of a file around the position where a stream works.
struct FileBuffer {
    static constexpr unsigned int c_size = 64 * 1024;

    unsigned int End() const { return start + used; }

    std::unique_ptr<char[]> bytes; // allocated at the first use
    unsigned int start = 0;        // position in the file
    unsigned int used = 0;
};

class FileReadStream final : public ByteStream {
public:
    // `file` comes from OpenRegular.
    FileReadStream(Descriptor file, char const * name);

    bool IsOpen() const override { return true; }

    unsigned int Read(void * out, unsigned int size) override;

    unsigned int Write(void const *, unsigned int) override { return 0; }

    unsigned int GetLen() override;

    StreamMode GetMode() const override { return c_streamRead; }

    bool Flush() override { return true; }

    void SetPos(unsigned int newPosition) override { position = newPosition; }

    unsigned int GetPos() override { return position; }

private:
    unsigned int takeBuffered(char * out, unsigned int size);
    unsigned int readAt(char * out, unsigned int size, unsigned int from);

    Descriptor file;
    FileBuffer buffer;
    unsigned int position = 0;
};

class FileWriteStream final : public ByteStream {
public:
    // Null when the place does not take a regular file for writing.
    static std::unique_ptr<FileWriteStream> Open(FilePlace place, char const * name);

    ~FileWriteStream() override;

    bool IsOpen() const override { return true; }

    unsigned int Read(void *, unsigned int) override { return 0; }

    unsigned int Write(void const * data, unsigned int size) override;

    unsigned int GetLen() override { return length; }

    StreamMode GetMode() const override { return c_streamWrite; }

    bool Flush() override;

    void SetPos(unsigned int newPosition) override { position = newPosition; }

    unsigned int GetPos() override { return position; }

private:
    // Where the bytes go until they stand under the name.
    enum class Stage { NewFile, Temporary, Memory, Named };

    FileWriteStream(FilePlace place, char const * name);

    bool create();
    bool replace();
    bool createTemporary(struct stat const & old);

    unsigned int writeThrough(char const * data, unsigned int size);
    unsigned int writeBuffered(char const * data, unsigned int size);
    bool push();

    bool takeName(bool closing);
    bool renameTemporary(bool closing);
    bool copyOver();
    bool reserveRoom(int target) const;
    bool copyInto(int target);
    void removeUnfinished();

    bool isOwn() const;
    bool isDead() const;
    bool fail(int error);

    FilePlace place;
    std::string temporary; // its name in the folder
    Descriptor file;
    Stage stage = Stage::Named;
    bool failed = false;
    FileBuffer buffer;
    unsigned int position = 0;
    unsigned int length = 0;
};
