#include "tests/support/WarningCapture.h"

#include "Cross/engine/diagnostics/Warning.h"

namespace {

WarningCapture * s_active = nullptr;

void keepWarning(char const * const * lines, unsigned int count, std::uint32_t) {
    std::string text = lines[0];
    for (unsigned int i = 1; i < count; ++i)
        text.append("\n").append(lines[i]);
    s_active->texts.push_back(text);
}

} // namespace

WarningCapture::WarningCapture(std::uint32_t category) : category(category) {
    s_active = this;
    dbWarningHandlerAdd(category, &keepWarning);
}

WarningCapture::~WarningCapture() {
    dbWarningHandlerRmv(category, &keepWarning);
    s_active = nullptr;
}
