#include "Cross/engine/platform/Guid.h"

#include "Cross/engine/core/Text.h"

#include <boost/uuid/random_generator.hpp>
#include <boost/uuid/uuid.hpp>
#include <cstring>

namespace {

constexpr std::size_t c_bareLength = 36;

std::uint32_t bigEndian(unsigned char const * bytes, int count) {
    std::uint32_t value = 0;
    for (int i = 0; i < count; ++i)
        value = (value << 8) | bytes[i];
    return value;
}

} // namespace

_GUID GUIDGenerate() {
    boost::uuids::uuid const fresh = boost::uuids::random_generator()();
    _GUID guid = {};
    guid.Data1 = bigEndian(fresh.data, 4);
    guid.Data2 = static_cast<std::uint16_t>(bigEndian(fresh.data + 4, 2));
    guid.Data3 = static_cast<std::uint16_t>(bigEndian(fresh.data + 6, 2));
    std::memcpy(guid.Data4, fresh.data + 8, sizeof(guid.Data4));
    return guid;
}

bool GUIDToString(char * out, unsigned int size, _GUID const & guid, bool flag) {
    if (!out)
        return false;
    std::size_t const needed = c_bareLength + (flag ? 2 : 0) + 1;
    if (size != 0 && size < needed) {
        out[0] = '\0';
        return false;
    }
    unsigned char const * const tail = guid.Data4;
    text::PrintfCut(out, needed, "%s%08x-%04x-%04x-%02x%02x-%02x%02x%02x%02x%02x%02x%s", flag ? "{" : "",
                    guid.Data1, guid.Data2, guid.Data3, tail[0], tail[1], tail[2], tail[3], tail[4], tail[5],
                    tail[6], tail[7], flag ? "}" : "");
    return true;
}
