#include "Cross/Util/CRCBlock.h"

#include "Cross/Util/CRCEntry.h"
#include "Cross/Util/LogFile.h"
#include "Cross/engine/diagnostics/Fatal.h"

#include <zlib.h>

#include <bit>
#include <cstdlib>
#include <cstring>
#include <utility>

namespace {

constexpr unsigned int c_leastCapacity = 256;
constexpr unsigned int c_mostCapacity = 0x80000000;

} // namespace

CRCBlock::CRCBlock(CRCBlock const & other) : crc(other.crc), crcBytes(other.crcBytes) {
    if (other.used > 0)
        std::memcpy(AllocateEntry(other.used), other.data, other.used);
}

CRCBlock & CRCBlock::operator=(CRCBlock const & other) {
    CRCBlock copy(other);
    std::swap(data, copy.data);
    std::swap(used, copy.used);
    std::swap(capacity, copy.capacity);
    crc = other.crc;
    crcBytes = other.crcBytes;
    return *this;
}

CRCBlock::~CRCBlock() { std::free(std::exchange(data, nullptr)); }

void CRCBlock::AddToCRC(void const * bytes, unsigned int size) {
    crc = static_cast<std::uint32_t>(crc32(crc, static_cast<Bytef const *>(bytes), size));
    crcBytes += size;
}

void CRCBlock::Clear() {
    used = 0;
    crc = 0;
    crcBytes = 0;
}

void CRCBlock::CopyLocal(CRCBlock const & other) {
    unsigned char bytes[4]; // least significant first, whatever the machine
    for (unsigned int i = 0; i < 4; ++i)
        bytes[i] = static_cast<unsigned char>(other.crc >> 8 * i);
    AddToCRC(bytes, sizeof(bytes));
    if (used == 0 || other.used == 0)
        return;
    unsigned int const size = other.used;
    void * const target = AllocateEntry(size);
    std::memcpy(target, other.data, size);
}

void CRCBlock::Print(char const * name) const {
    LogFile log;
    log.Create(name, ".txt", false, true);
    log.printf("Total CRC: [ %x ]\n", crc);
    for (unsigned int place = 0; place < used;) {
        auto const * const entry = reinterpret_cast<CRCEntry const *>(data + place);
        entry->Print(log);
        place += entry->SizeOf();
    }
}

void CRCBlock::ReserveImpl(unsigned int size) {
    void * grown = nullptr;
    unsigned int rounded = 0;
    if (size <= c_mostCapacity) {
        rounded = std::max(std::bit_ceil(size), c_leastCapacity);
        grown = std::realloc(data, rounded);
    }
    if (!grown) {
        dbLineAux(__FILE__, __LINE__);
        dbFatalfAux("CRCBlock: no memory for %u bytes of entries", size);
    }
    data = static_cast<char *>(grown);
    capacity = rounded;
}
