#include "Cross/engine/filesystem/RamStream.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <limits>
#include <stdexcept>
#include <utility>

RamStream::RamStream() : ByteStream("RamStream") {}

RamStream::~RamStream() { delete[] bytes; }

bool RamStream::Open(unsigned int size, StreamMode newMode) {
    delete[] static_cast<char *>(Detach());
    if (IsDiscarded() || (newMode != c_streamRead && newMode != c_streamWrite))
        return false;
    if (newMode == c_streamWrite && size > 0)
        grow(size);
    mode = newMode;
    return true;
}

unsigned int RamStream::Read(void * buffer, unsigned int size) {
    if (position >= length)
        return 0;
    unsigned int const count = std::min(size, length - position);
    if (count > 0)
        std::memcpy(buffer, bytes + position, count);
    position += count;
    return count;
}

unsigned int RamStream::Write(void const * buffer, unsigned int size) {
    if (mode != c_streamWrite || IsDiscarded() || size == 0)
        return 0;
    makeRoom(size);
    std::memcpy(bytes + position, buffer, size);
    position += size;
    length = std::max(length, position);
    return size;
}

void * RamStream::Detach() {
    length = capacity = position = 0;
    mode = 0;
    return std::exchange(bytes, nullptr);
}

// Room for `size` bytes at the position, behind zeros where that leaves a gap.
void RamStream::makeRoom(unsigned int size) {
    std::uint64_t const end = std::uint64_t{position} + size;
    if (end > std::numeric_limits<unsigned int>::max())
        throw std::length_error("a stream in memory holds less than 4 GiB");
    if (end > capacity)
        grow(static_cast<unsigned int>(end));
    if (position > length)
        std::memset(bytes + length, 0, position - length);
}

// Doubles, so that many small writes cost no more than a few copies. The new bytes are left as they are: only
// what was written is ever read.
void RamStream::grow(unsigned int needed) {
    std::uint64_t const limit = std::numeric_limits<unsigned int>::max();
    auto const newCapacity =
        static_cast<unsigned int>(std::clamp<std::uint64_t>(std::uint64_t{capacity} * 2, needed, limit));
    auto const newBytes = new char[newCapacity];
    if (length > 0)
        std::memcpy(newBytes, bytes, length);
    delete[] std::exchange(bytes, newBytes);
    capacity = newCapacity;
}
