#include "Cross/Util/InvUtil.h"

#include "Cross/engine/core/Text.h"

#include <algorithm>
#include <cstring>

void InvUtil::TranslateResourceName(char * out, char const * name, bool stripExtension) {
    char const * const colon = name ? std::strrchr(name, ':') : nullptr;
    char const * const source = colon ? colon + 1 : name ? name : "";
    std::size_t const length = std::strlen(source);
    std::memmove(out, source, length + 1);
    std::replace(out, out + length, '/', '\\');
    if (stripExtension)
        if (char * const point = std::strrchr(out, '.'))
            *point = '\0';
    text::ToLower(out);
}
