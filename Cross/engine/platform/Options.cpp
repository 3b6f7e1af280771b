#include "Cross/engine/platform/Options.h"

#include "Cross/engine/core/Text.h"

#include <charconv>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

namespace Plat {

namespace {

struct Option {
    std::string name;
    std::optional<int> value; // empty for a bare option
};

// Immortal: static destructors may still ask.
std::vector<Option> & allOptions() {
    static std::vector<Option> & options = *new std::vector<Option>;
    return options;
}

struct WholeNumber {
    bool negative;
    std::string_view digits;
    int base;
};

WholeNumber splitNumber(std::string_view text) {
    WholeNumber number = {false, text, 10};
    if (text.starts_with('-') || text.starts_with('+')) {
        number.negative = text[0] == '-';
        number.digits.remove_prefix(1);
    }
    if (number.digits.starts_with("0x") || number.digits.starts_with("0X")) {
        number.digits.remove_prefix(2);
        number.base = 16;
    }
    return number;
}

// Empty for anything but a whole number that fits.
std::optional<int> parseInt(std::string_view text) {
    WholeNumber const number = splitNumber(text);
    std::uint64_t magnitude = 0;
    char const * const end = number.digits.data() + number.digits.size();
    auto const [stop, error] = std::from_chars(number.digits.data(), end, magnitude, number.base);
    std::uint64_t const limit = number.negative ? 0x80000000u : 0x7FFFFFFFu;
    if (error != std::errc() || stop != end || magnitude > limit)
        return {};
    std::int64_t const value = static_cast<std::int64_t>(magnitude);
    return static_cast<int>(number.negative ? -value : value);
}

// The argument without its dashes; empty when it is no option.
std::string_view withoutDashes(std::string_view argument) {
    if (!argument.starts_with('-'))
        return {};
    argument.remove_prefix(argument.starts_with("--") ? 2 : 1);
    return argument;
}

Option const * find(char const * name) {
    if (!name)
        return nullptr;
    for (Option const & option : allOptions())
        if (text::EqualNoCase(option.name.c_str(), name))
            return &option;
    return nullptr;
}

} // namespace

void Options::SetCommandLine(int argc, char const * const * argv) {
    std::vector<Option> options;
    for (int i = 1; i < argc; ++i) {
        std::string_view const argument = withoutDashes(argv[i]);
        std::size_t const sign = argument.find_first_of("=:");
        std::string_view const name = argument.substr(0, sign);
        if (name.empty())
            continue;
        Option & option = options.emplace_back(Option{std::string(name), {}});
        if (sign != std::string_view::npos)
            option.value = parseInt(argument.substr(sign + 1));
        else if (i + 1 < argc && (option.value = parseInt(argv[i + 1])))
            ++i; // a negative number is no option of its own
    }
    allOptions() = std::move(options);
}

bool Options::Exist(char const * name) { return find(name) != nullptr; }

bool Options::Get(char const * name, int & value) {
    Option const * const option = find(name);
    if (!option || !option->value)
        return false;
    value = *option->value;
    return true;
}

} // namespace Plat
