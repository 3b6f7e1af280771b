#pragma once

// Texts from files on their way to a terminal or into JSON.

#include <string>
#include <string_view>

// In double quotes for people: control bytes, quotes and backslashes escaped. Text that is not valid UTF-8 or
// UTF-16 shows every unit beyond ASCII escaped, so that different texts look different.
std::string Quote(std::string_view text);
std::string Quote(std::u16string_view text);

// A JSON string, valid whatever the text holds: what is malformed becomes U+FFFD.
std::string QuoteJson(std::string_view text);
std::string QuoteJson(std::u16string_view text);
