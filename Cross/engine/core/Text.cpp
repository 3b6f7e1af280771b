#include "Cross/engine/core/Text.h"

#include <cstdio>
#include <cstring>
#include <locale.h>

namespace text {

namespace {

// Texts up to this length are formatted in one go, without measuring first.
constexpr std::size_t c_usualSize = 1024;

// Puts the calling thread under the C locale and back: a decimal comma of the application's locale must not
// get into files. Other threads are not touched.
class CLocaleScope {
public:
    CLocaleScope() : previous(uselocale(cLocale())) {}

    CLocaleScope(CLocaleScope const &) = delete;
    CLocaleScope & operator=(CLocaleScope const &) = delete;

    ~CLocaleScope() { uselocale(previous); }

private:
    static locale_t cLocale() {
        static locale_t const locale = newlocale(LC_ALL_MASK, "C", nullptr);
        return locale;
    }

    locale_t previous;
};

// Length of the whole text, or below 0 for a format that the C library refuses. Every printf-like function of
// the engine ends here. `arguments` stays as it was.
int format(char * buffer, std::size_t size, char const * format, std::va_list arguments)
    CROSS_PRINTF_FORMAT(3, 0);

int format(char * buffer, std::size_t size, char const * format, std::va_list arguments) {
    CLocaleScope const scope;
    std::va_list copy;
    va_copy(copy, arguments);
    int const length = std::vsnprintf(buffer, size, format, copy);
    va_end(copy);
    return length;
}

} // namespace

void ToLower(char * text) {
    if (!text)
        return;
    for (; *text; ++text)
        *text = ToLower(*text);
}

int CompareNoCase(char const * left, char const * right) {
    while (*left && ToLower(*left) == ToLower(*right)) {
        ++left;
        ++right;
    }
    return static_cast<unsigned char>(ToLower(*left)) - static_cast<unsigned char>(ToLower(*right));
}

bool EqualNoCase(char const * left, char const * right) { return CompareNoCase(left, right) == 0; }

bool CopyCut(char * buffer, std::size_t size, char const * source) {
    std::size_t const length = source ? std::strlen(source) : 0;
    if (size == 0)
        return length == 0;
    bool const fits = length < size;
    std::size_t const count = fits ? length : size - 1;
    if (count > 0)
        std::memmove(buffer, source, count);
    buffer[count] = '\0';
    return fits;
}

bool Printf(std::string & out, char const * format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    bool const formatted = VPrintf(out, format, arguments);
    va_end(arguments);
    return formatted;
}

// An argument may point into `out`, so that is written last.
bool VPrintf(std::string & out, char const * format, std::va_list arguments) {
    char usual[c_usualSize];
    int const length = text::format(usual, sizeof(usual), format, arguments);
    if (length < 0) {
        out.clear();
        return false;
    }
    std::size_t const count = static_cast<std::size_t>(length);
    if (count < sizeof(usual)) {
        out.assign(usual, count);
        return true;
    }
    std::string whole(count, '\0');
    text::format(whole.data(), count + 1, format, arguments);
    out.assign(whole);
    return true;
}

std::size_t PrintfCut(char * buffer, std::size_t size, char const * format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    std::size_t const length = VPrintfCut(buffer, size, format, arguments);
    va_end(arguments);
    return length;
}

std::size_t VPrintfCut(char * buffer, std::size_t size, char const * format, std::va_list arguments) {
    int const length = text::format(buffer, size, format, arguments);
    if (length >= 0)
        return static_cast<std::size_t>(length);
    if (size > 0)
        buffer[0] = '\0';
    return 0;
}

} // namespace text
