#include "Cross/engine/filesystem/RamStream.h"

#include <algorithm>
#include <cstdint>
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

void * RamStream::Detach() {
    length = capacity = position = 0;
    mode = 0;
    return std::exchange(bytes, nullptr);
}

// Everything that the common write need not look at: whether writing is allowed, room, and a gap in front of
// the position. True when `size` bytes can be copied to the position.
bool RamStream::prepareWrite(unsigned int size) {
    if (mode != c_streamWrite || IsDiscarded() || size == 0)
        return false;
    std::uint64_t const end = std::uint64_t{position} + size;
    if (end > std::numeric_limits<unsigned int>::max())
        throw std::length_error("a stream in memory holds less than 4 GiB");
    if (end > capacity)
        grow(static_cast<unsigned int>(end));
    if (position > length)
        std::memset(bytes + length, 0, position - length);
    return true;
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
