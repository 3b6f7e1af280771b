#pragma once

// CRCBlock: the named values of a piece of state, in the order in which they came, under one running CRC. Two
// runs that are meant to stay identical compare one number, and when it differs each prints its block and the
// texts are compared (crosstool sync diff).
//
// The CRC is zlib's crc32. A block is a row of entries (CRCEntry.h) in one buffer; values come in through
// Record (CRCRecord.h). It is written often and printed rarely: Clear keeps the buffer, so a block that is
// used again for each frame soon allocates nothing.
//
// Threads: one at a time, and only one block of the process prints at a time. An exhausted heap, and a block
// of more than 2 GiB, are fatal errors.

#include "Cross/engine/core/Export.h"

#include <algorithm>
#include <cstdint>
#include <limits>

class CROSS_UTIL_API CRCBlock {
public:
    CRCBlock() = default;
    CRCBlock(CRCBlock const & other);
    CRCBlock & operator=(CRCBlock const & other);

    // Runs no destructor of an entry.
    ~CRCBlock();

    // Room for an entry behind the last one. The caller constructs there at once an entry whose SizeOf gives
    // `size`. Addresses that were given out before are dead.
    void * AllocateEntry(unsigned int size) {
        unsigned int const place = used;
        auto const wanted = static_cast<unsigned int>(
            std::min<std::uint64_t>(std::uint64_t{used} + size, std::numeric_limits<unsigned int>::max()));
        Reserve(wanted);
        used = wanted;
        return data + place;
    }

    // Feeds bytes into the CRC; no entry is made. Null is no empty range: as zlib has it, the CRC is 0 then.
    void AddToCRC(void const * bytes, unsigned int size);

    // 0 in a new or cleared block.
    std::uint32_t GetCRC() const { return crc; }

    // Forgets everything but the buffer.
    void Clear();

    // Feeds the CRC of another block into this one and, if this one has entries, appends the other's.
    void CopyLocal(CRCBlock const & other);

    // Writes a new log file "log:NAME.(time).txt" (LogFile::Create): the total CRC, then a line per entry.
    // Nothing is reported when the file cannot be created.
    void Print(char const * name) const;

private:
    void Reserve(unsigned int size) {
        if (size > capacity) [[unlikely]]
            ReserveImpl(size);
    }

    void ReserveImpl(unsigned int size);

    char * data = nullptr;     // from realloc
    unsigned int used = 0;     // bytes that hold entries
    unsigned int capacity = 0; // bytes allocated: 0, or a power of two from 256 up
    std::uint32_t crc = 0;
    std::uint32_t crcBytes = 0; // fed into the CRC so far
};
