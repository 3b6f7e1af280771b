#pragma once

// UTF-8 and UTF-16 text. Malformed input never fails here: each bad sequence becomes U+FFFD. The strict form
// tells it instead. All functions may be called from any thread.

#include "Cross/engine/core/Export.h"

#include <string>
#include <string_view>

namespace utf {

CROSS_ENGINE_API std::string ToUtf8(std::u16string_view text);
CROSS_ENGINE_API std::u16string ToUtf16(std::string_view text);

// False when `text` is not well-formed UTF-8; `result` is then empty.
CROSS_ENGINE_API bool ToUtf16Strict(std::string_view text, std::u16string & result);

} // namespace utf
