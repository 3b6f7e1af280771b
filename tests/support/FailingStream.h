#pragma once

#include "Cross/engine/filesystem/ByteStream.h"

#include <algorithm>

// A stream over another one through which only so many bytes pass: what goes beyond them comes up short. It
// also counts the reads and writes that reach it.
class FailingStream : public ByteStream {
public:
    FailingStream(ByteStream & inner, unsigned int budget)
        : ByteStream(inner.GetStreamName()), inner(inner), budget(budget) {}

    using ByteStream::IsDiscarded;

    bool IsOpen() const override { return inner.IsOpen(); }

    unsigned int Read(void * buffer, unsigned int size) override { return inner.Read(buffer, take(size)); }

    unsigned int Write(void const * buffer, unsigned int size) override {
        return inner.Write(buffer, take(size));
    }

    unsigned int GetLen() override { return inner.GetLen(); }

    StreamMode GetMode() const override { return inner.GetMode(); }

    bool Flush() override { return inner.Flush(); }

    void SetPos(unsigned int position) override { inner.SetPos(position); }

    unsigned int GetPos() override { return inner.GetPos(); }

    unsigned int transfers = 0;

private:
    unsigned int take(unsigned int size) {
        ++transfers;
        unsigned int const taken = std::min(size, budget);
        budget -= taken;
        return taken;
    }

    ByteStream & inner;
    unsigned int budget;
};
