#include "Cross/engine/scriptconfig/LuaPrint.h"

#include "Cross/engine/core/Text.h"

#include <cstdio>
#include <mutex>

namespace {

struct Console {
    std::mutex mutex;
    luaxPrintSink sink = nullptr;
    void * context = nullptr;
};

// Immortal: libraries may print while they are unloaded.
Console & console() {
    static Console * const instance = new Console;
    return *instance;
}

} // namespace

void luax_print(lua_State *, char const * format, ...) {
    std::string line;
    std::va_list arguments;
    va_start(arguments, format);
    text::VPrintf(line, format, arguments);
    va_end(arguments);

    std::unique_lock lock(console().mutex);
    luaxPrintSink const sink = console().sink;
    void * const context = console().context;
    if (sink) {
        lock.unlock();
        sink(line.c_str(), context);
    } else {
        std::printf("%s\n", line.c_str());
    }
}

void luaxSetPrintSink(luaxPrintSink sink, void * context) {
    std::lock_guard const lock(console().mutex);
    console().sink = sink;
    console().context = context;
}
