#pragma once

// On a terminal, how much of their files verbs have read, while that takes above a second.

#include "Cross/engine/filesystem/ByteStream.h"

#include <cstdint>
#include <ostream>
#include <streambuf>

// Shows it from its construction until the first text goes to `out` or `err`, for which the line is wiped;
// that takes over their ties while it lives. One at a time. The terminal may be the one of `err`.
class Progress : std::streambuf {
public:
    Progress(std::ostream & terminal, std::ostream & out, std::ostream & err);
    Progress(Progress const &) = delete;
    Progress & operator=(Progress const &) = delete;
    ~Progress() override;

    // A stream whose reading counts; the stream itself when nothing is shown.
    static ByteStreamProxy Watch(ByteStreamProxy const & stream);

private:
    class WatchedStream;

    int sync() override; // through the ties, in front of every text
    void countRead(std::uint64_t bytes);

    std::ostream line, ending;
    std::ostream &out, &err;
    std::ostream *outTie, *errTie;
    std::uint64_t total = 0, done = 0; // bytes of all watched streams
    std::uint32_t start, shownAt;      // milliseconds
    bool isShown = false, isEnded = false;
};
