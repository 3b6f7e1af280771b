#pragma once

// Numbers for people.

#include <charconv>
#include <concepts>
#include <string>

// The shortest digits that give the value back.
std::string FloatText(std::floating_point auto value) {
    char digits[32];
    std::to_chars_result const end = std::to_chars(digits, digits + sizeof(digits), value);
    return std::string(digits, end.ptr);
}

// "1 mesh", "2 meshes".
inline std::string CountText(std::size_t count, char const * one, char const * many) {
    return std::to_string(count) + ' ' + (count == 1 ? one : many);
}
