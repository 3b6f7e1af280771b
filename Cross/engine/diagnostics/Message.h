#pragma once

// The text of one diagnostic message. A usual one needs no heap; when the heap has nothing left for a long
// one, the text is cut instead of failing, for that may be just what is being reported. Private to the
// diagnostics.

#include "Cross/engine/core/Export.h"

#include <cstdarg>
#include <cstddef>
#include <memory>

class Message {
public:
    // `arguments` stays as it was.
    Message(char const * format, std::va_list arguments) CROSS_PRINTF_FORMAT(2, 0);
    Message(Message const &) = delete;
    Message & operator=(Message const &) = delete;

    char * Text() { return longer ? longer.get() : usual; }

private:
    static constexpr std::size_t c_usualSize = 1024;

    char usual[c_usualSize];
    std::unique_ptr<char[]> longer;
};
