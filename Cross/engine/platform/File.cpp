#include "Cross/engine/platform/File.h"

#include <cstring>

namespace Plat {

namespace {

constexpr std::size_t c_longest = 200;

bool isForbidden(char c) {
    unsigned char const byte = static_cast<unsigned char>(c);
    return byte < 0x20 || byte == 0x7F || std::strchr("<>:\"/\\|?*", c) != nullptr;
}

bool isTrailByte(char c) { return (static_cast<unsigned char>(c) & 0xC0) == 0x80; }

// Number of bytes to keep of a text that is too long. A character of UTF-8 has at most three trail bytes; in
// anything else there is no character to spare.
std::size_t placeOfCut(std::string const & name) {
    for (std::size_t place = c_longest; place + 3 >= c_longest; --place)
        if (!isTrailByte(name[place]))
            return place;
    return c_longest;
}

} // namespace

std::string File::ConvertToFilename(char const * text) {
    std::string name = text ? text : "";
    for (char & c : name)
        if (isForbidden(c))
            c = '_';
    if (name.size() > c_longest)
        name.resize(placeOfCut(name));
    name.erase(name.find_last_not_of(". ") + 1); // behind the cut, which may have bared some
    return name.empty() ? "_" : name;
}

} // namespace Plat
