#include "Cross/engine/diagnostics/Message.h"

#include "Cross/engine/core/Text.h"

#include <new>

Message::Message(char const * format, std::va_list arguments) {
    std::size_t const length = text::VPrintfCut(usual, sizeof(usual), format, arguments);
    if (length < sizeof(usual))
        return;
    longer.reset(new (std::nothrow) char[length + 1]);
    if (longer)
        text::VPrintfCut(longer.get(), length + 1, format, arguments);
}
