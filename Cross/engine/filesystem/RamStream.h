#pragma once

// A stream in memory whose buffer grows as bytes are written.
//
// Threads: one. Lifetime: the stream owns its buffer until Detach gives it away. Growing moves the buffer: a
// pointer from GetBuffer is valid until the next write.

#include "Cross/engine/filesystem/ByteStream.h"

class CROSS_ENGINE_API RamStream : public ByteStream {
public:
    RamStream();
    ~RamStream() override;

    // Starts anew with an empty stream; `size` bytes are allocated at first. Mode 2 writes, and reads back
    // what was written; mode 1 gives an empty stream to read. False, with the stream closed, for another
    // mode. Throws std::bad_alloc.
    bool Open(unsigned int size, StreamMode mode);

    bool IsOpen() const override;
    unsigned int Read(void * buffer, unsigned int size) override;

    // Overwrites at the position and grows at the end; a gap in front of the position is filled with zeros.
    // Throws std::bad_alloc, or std::length_error at 4 GiB, and then nothing was written.
    unsigned int Write(void const * buffer, unsigned int size) override;

    // The number of bytes written.
    unsigned int GetLen() override;
    StreamMode GetMode() const override;
    bool Flush() override;
    void SetPos(unsigned int position) override;
    unsigned int GetPos() override;

    // The bytes; null before anything was allocated.
    void * GetBuffer();

    // Gives the buffer away: the caller frees it with delete[] of char. The stream is closed and empty
    // afterwards.
    void * Detach();

private:
    void grow(unsigned int needed);

    char * bytes = nullptr;
    unsigned int length = 0;
    unsigned int capacity = 0;
    unsigned int position = 0;
    StreamMode mode = 0;
};
