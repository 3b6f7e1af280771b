#include "Cross/Util/AttributesInterface.h"

#include <zlib.h>

AttributesInterface::AttributesInterface(char const * debugName) : debugName(debugName) {}

AttributesInterface::~AttributesInterface() = default;

char const * AttributesInterface::GetDebugName() const { return debugName.c_str(); }

char const * AttributesInterface::GetRelativeName() const { return debugName.c_str(); }

std::uint32_t AttributesInterface::GetCRC() const { return crc; }

void AttributesInterface::AddCRCVal(std::uint32_t value) {
    crc = static_cast<std::uint32_t>(crc32(crc, reinterpret_cast<Bytef const *>(&value), sizeof(value)));
    crcBytes += static_cast<std::uint32_t>(sizeof(value));
}
