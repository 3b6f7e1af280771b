#pragma once

// A stream in memory whose buffer grows as bytes are written.
//
// Threads: one. Lifetime: the stream owns its buffer until Detach gives it away. Growing moves the buffer: a
// pointer from GetBuffer is valid until the next write. GetStreamName gives "RamStream".

#include "Cross/engine/filesystem/ByteStream.h"

class CROSS_ENGINE_API RamStream : public ByteStream {
public:
    RamStream();
    ~RamStream() override;

    // Starts anew with an empty stream. Mode 2 writes, and reads back what was written; `size` bytes are
    // allocated at first. Mode 1 gives an empty stream to read. False, with the stream closed, for another
    // mode and after Discard. Throws std::bad_alloc, and then the stream is closed.
    bool Open(unsigned int size, StreamMode mode);

    bool IsOpen() const override { return mode != 0; }

    unsigned int Read(void * buffer, unsigned int size) override;

    // Overwrites at the position and grows at the end; a gap in front of the position is filled with zeros.
    // Throws std::bad_alloc, or std::length_error at 4 GiB, and then nothing was written. Bytes come from
    // outside the stream's own buffer.
    unsigned int Write(void const * buffer, unsigned int size) override;

    // The number of bytes written.
    unsigned int GetLen() override { return length; }

    StreamMode GetMode() const override { return mode; }

    bool Flush() override { return IsOpen(); }

    void SetPos(unsigned int newPosition) override { position = newPosition; }

    unsigned int GetPos() override { return position; }

    // The bytes; null before anything was allocated.
    void * GetBuffer() { return bytes; }

    // Gives the buffer away: the caller frees it with delete[] of char. Null when nothing was allocated. The
    // stream is closed and empty afterwards: ask GetLen first.
    void * Detach();

private:
    void makeRoom(unsigned int size);
    void grow(unsigned int needed);

    char * bytes = nullptr;
    unsigned int length = 0;
    unsigned int capacity = 0;
    unsigned int position = 0;
    StreamMode mode = 0;
};
