#pragma once

// Byte streams: the one interface through which files and memory are read and written.
//
// Threads: a stream belongs to one thread at a time.
// Lifetime: an open gives a stream to its caller, as a pointer or inside a ByteStreamProxy; destroying it
// closes it. Positions and lengths are 32 bits: nothing of 4 GiB or more opens.

#include "Cross/engine/core/Export.h"
#include "Cross/engine/core/Types.h"

#include <string>

class CROSS_ENGINE_API ByteStream {
public:
    ByteStream(ByteStream const &) = delete;
    ByteStream & operator=(ByteStream const &) = delete;

    // The virtual functions are called by position: their order stays.

    // Closes the stream. What was written is complete in the file afterwards, or the old file stands there
    // unchanged.
    virtual ~ByteStream();

    virtual bool IsOpen() const = 0;

    // Gives the number of bytes read, fewer than `size` only at the end of the stream or on an error; 0 at
    // the end.
    virtual unsigned int Read(void * buffer, unsigned int size) = 0;

    // Gives the number of bytes written; fewer than `size` is a failure. A size of 0 gives 0 and is none.
    virtual unsigned int Write(void const * buffer, unsigned int size) = 0;

    // The whole length in bytes, what was written so far included.
    virtual unsigned int GetLen() = 0;

    virtual StreamMode GetMode() const = 0;

    // Everything written so far is in the file when it returns. True on success.
    virtual bool Flush() = 0;

    // Sets the absolute position. A position behind the end reads nothing.
    virtual void SetPos(unsigned int position) = 0;
    virtual unsigned int GetPos() = 0;

    // The name under which the stream was opened, as the caller spelt it. Never null; valid while the stream
    // lives.
    char const * GetStreamName() const { return name.c_str(); }

    // Gives up what was written: later writes fail, and closing the stream removes the unfinished file and
    // keeps the one that stood there before. After a successful Flush the new bytes have taken the name
    // already, and they stay.
    void Discard() { discarded = true; }

protected:
    explicit ByteStream(char const * name);

    bool IsDiscarded() const { return discarded; }

private:
    std::string name;
    bool discarded = false;
};

// The owning handle of a stream; empty when an open failed. Copying moves: the target closes what it held and
// takes over the stream of the source, which is left empty.
class CROSS_ENGINE_API ByteStreamProxy {
public:
    ByteStreamProxy() = default;

    explicit ByteStreamProxy(ByteStream * stream) : stream(stream) {}

    ByteStreamProxy(ByteStreamProxy const & source) : stream(source.Release()) {}

    ByteStreamProxy & operator=(ByteStreamProxy const & source);

    ~ByteStreamProxy() { delete stream; }

    explicit operator bool() const { return stream != nullptr; }

    ByteStream * Get() const { return stream; }

    ByteStream & operator*() const { return *stream; }

    ByteStream * operator->() const { return stream; }

    // Hands the stream over to the caller and leaves the proxy empty; null when it is empty already. Const,
    // as copying out of a const proxy is.
    ByteStream * Release() const;

private:
    mutable ByteStream * stream = nullptr;
};

// Writes a text as it stands, and with `lineEnd` a "\n" behind it. True when all of it was written; a null
// text counts as "".
CROSS_ENGINE_API bool BSWriteText(ByteStream & stream, char const * text, bool lineEnd);

// printf into a stream of CR LF lines: each lone "\n" of `format` itself is written as CR LF, text that comes
// from the arguments stays as it is. True when all of it was written; false also for a format that the C
// library refuses.
CROSS_ENGINE_API bool BSPrintf(ByteStream & stream, char const * format, ...) CROSS_PRINTF_FORMAT(2, 3);
