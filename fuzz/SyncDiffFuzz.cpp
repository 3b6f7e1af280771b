// Printed sync blocks from outside: the input is cut in two at its first NUL, and both halves are compared
// each way round. A text never differs from itself, and the two ways agree on whether and where texts differ.

#include "tests/support/StreamBytes.h"
#include "tools/syncdiff/SyncDiff.h"

#include <cstdlib>
#include <optional>
#include <stdexcept>

namespace {

std::optional<SyncReport> diff(std::string_view first, std::string_view second) {
    FilledStream firstStream(first), secondStream(second);
    try {
        return DiffSync(firstStream, secondStream);
    } catch (std::runtime_error const &) {
        return std::nullopt;
    }
}

void demand(bool holds) {
    if (!holds)
        std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const * data, std::size_t size) {
    std::string_view const input(reinterpret_cast<char const *>(data), size);
    std::size_t const cut = std::min(input.find('\0'), size);
    std::string_view const first = input.substr(0, cut);
    std::string_view const second = input.substr(std::min(cut + 1, size));
    if (auto const same = diff(first, first))
        demand(same->AreEqual());
    auto const there = diff(first, second);
    auto const back = diff(second, first);
    demand(there.has_value() == back.has_value());
    if (!there)
        return 0;
    demand(there->AreEqual() == back->AreEqual());
    demand(there->linesDiffer == back->linesDiffer && there->frame == back->frame);
    SyncDistances(there->difference[0].text, there->difference[1].text);
    return 0;
}
