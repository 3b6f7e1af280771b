#pragma once

// The exception of bound functions: it ends a script call as a script error with its text.

#include "Cross/engine/core/Export.h"

#include <stdexcept>

namespace LuaBinding {

class CROSS_UTIL_API Exception : public std::runtime_error {
public:
    // The text is printf's, cut to 1023 characters.
    explicit Exception(char const * format, ...) CROSS_PRINTF_FORMAT(2, 3);
    Exception(Exception const &) = default;
    ~Exception() override;
};

} // namespace LuaBinding
