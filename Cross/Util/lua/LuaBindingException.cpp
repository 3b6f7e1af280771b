#include "Cross/Util/lua/LuaBindingException.h"

#include "Cross/engine/core/Text.h"

namespace LuaBinding {

namespace {

constexpr std::size_t c_textSize = 1024;

} // namespace

Exception::Exception(char const * format, ...) : std::runtime_error("") {
    char text[c_textSize];
    std::va_list arguments;
    va_start(arguments, format);
    text::VPrintfCut(text, sizeof(text), format, arguments);
    va_end(arguments);
    static_cast<std::runtime_error &>(*this) = std::runtime_error(text);
}

Exception::~Exception() = default;

} // namespace LuaBinding
