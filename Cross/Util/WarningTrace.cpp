#include "Cross/Util/WarningTrace.h"

#include "Cross/engine/diagnostics/Trace.h"
#include "Cross/engine/diagnostics/Warning.h"

void WarningTraceCB(char const * const * lines, unsigned int count, std::uint32_t) {
    for (unsigned int i = 0; i < count; ++i)
        dbTimeStampedTracefAux("%s", lines[i]);
}

void EnableWarningTraceOutput(std::uint32_t category) { dbWarningHandlerAdd(category, &WarningTraceCB); }

void DisableWarningTraceOutput(std::uint32_t category) { dbWarningHandlerRmv(category, &WarningTraceCB); }

void SetWarningTraceOutput(std::uint32_t category, bool enable) {
    if (enable)
        EnableWarningTraceOutput(category);
    else
        DisableWarningTraceOutput(category);
}
