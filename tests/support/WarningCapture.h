#pragma once

#include <cstdint>
#include <string>
#include <vector>

// Takes the warnings of one category while it lives and keeps their texts, the lines of one joined by "\n".
// One at a time.
class WarningCapture {
public:
    explicit WarningCapture(std::uint32_t category);
    WarningCapture(WarningCapture const &) = delete;
    WarningCapture & operator=(WarningCapture const &) = delete;
    ~WarningCapture();

    std::vector<std::string> texts;

private:
    std::uint32_t category;
};
