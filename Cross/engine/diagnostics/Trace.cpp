#include "Cross/engine/diagnostics/Trace.h"

#include "Cross/engine/diagnostics/Message.h"
#include "Cross/engine/platform/Time.h"

#include <cstdio>
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
    Plat::Time::SystemTime now;
    unsigned int milliseconds;
    Plat::Time::TimeNow(now, milliseconds);
    std::fprintf(stderr, "[%02d:%02d:%02d.%03u] %s\n", now.hour, now.minute, now.second, milliseconds, text);
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
