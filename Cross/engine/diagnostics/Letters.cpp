#include "Cross/engine/diagnostics/Letters.h"

void dbDecode4Letters(char (&text)[5], std::uint32_t code) {
    char * out = text;
    for (int shift = 24; shift >= 0; shift -= 8) {
        unsigned int const letter = (code >> shift) & 0xFF;
        if (letter == 0 && out == text)
            continue;
        *out++ = letter >= ' ' && letter <= '~' ? static_cast<char>(letter) : '?';
    }
    *out = '\0';
}
