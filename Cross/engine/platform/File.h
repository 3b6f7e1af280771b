#pragma once

// File names that are legal on every system the engine runs on.

#include "Cross/engine/core/Export.h"

#include <string>

namespace Plat {

class CROSS_ENGINE_API File {
public:
    // Turns a text into one legal file name: each of <>:"/\|?* and each control byte becomes '_', trailing
    // points and blanks go, the result is cut to 200 bytes (never inside a UTF-8 character). "", "." and ".."
    // become "_"; null counts as "".
    static std::string ConvertToFilename(char const * text);
};

} // namespace Plat
