#pragma once

#include <string>
#include <vector>

// Takes the trace while it lives and keeps its lines. One at a time.
class TraceCapture {
public:
    TraceCapture();
    TraceCapture(TraceCapture const &) = delete;
    TraceCapture & operator=(TraceCapture const &) = delete;
    ~TraceCapture();

    std::vector<std::string> lines;
};
