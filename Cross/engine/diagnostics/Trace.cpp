#include "Cross/engine/diagnostics/Trace.h"

#include "Cross/engine/diagnostics/Message.h"

#include <chrono>
#include <cstdio>
#include <ctime>
#include <mutex>

namespace {

struct Trace {
    std::recursive_mutex lock;  // a sink may put another sink in place
    dbTraceSink sink = nullptr; // null = stderr
    void * context = nullptr;

    // Immortal: static destructors trace too.
    static Trace & Instance() {
        static Trace & trace = *new Trace;
        return trace;
    }
};

// Whether this thread is handing out a line, and so holds the lock.
thread_local bool t_tracing = false;

class TracingScope {
public:
    TracingScope() { t_tracing = true; }

    TracingScope(TracingScope const &) = delete;
    TracingScope & operator=(TracingScope const &) = delete;

    ~TracingScope() { t_tracing = false; }
};

void printToStderr(char const * text) {
    auto const now = std::chrono::system_clock::now();
    std::time_t const seconds = std::chrono::system_clock::to_time_t(now);
    auto const milliseconds = std::chrono::duration_cast<std::chrono::milliseconds>(
        now - std::chrono::system_clock::from_time_t(seconds));
    std::tm local = {};
    localtime_r(&seconds, &local);
    std::fprintf(stderr, "[%02d:%02d:%02d.%03d] %s\n", local.tm_hour, local.tm_min, local.tm_sec,
                 static_cast<int>(milliseconds.count()), text);
}

} // namespace

void dbTimeStampedTracefAux(char const * format, ...) {
    if (t_tracing)
        return;
    std::va_list arguments;
    va_start(arguments, format);
    Message message(format, arguments);
    va_end(arguments);

    Trace & trace = Trace::Instance();
    std::lock_guard const guard(trace.lock);
    TracingScope const scope;
    if (trace.sink)
        trace.sink(message.Text(), trace.context);
    else
        printToStderr(message.Text());
}

void dbTraceSetSink(dbTraceSink sink, void * context) {
    Trace & trace = Trace::Instance();
    std::lock_guard const guard(trace.lock);
    trace.sink = sink;
    trace.context = context;
}
