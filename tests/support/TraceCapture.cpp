#include "tests/support/TraceCapture.h"

#include "Cross/engine/diagnostics/Trace.h"

TraceCapture::TraceCapture() {
    dbTraceSetSink([](char const * text,
                      void * context) { static_cast<TraceCapture *>(context)->lines.push_back(text); },
                   this);
}

TraceCapture::~TraceCapture() { dbTraceSetSink(nullptr, nullptr); }
