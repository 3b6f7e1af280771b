#include "tools/Progress.h"

#include "Cross/engine/platform/Time.h"

#include <algorithm>
#include <iomanip>
#include <utility>

namespace {

constexpr std::uint32_t c_patience = 1000, c_period = 100; // milliseconds

Progress * s_progress = nullptr;

} // namespace

class Progress::WatchedStream final : public ByteStream {
public:
    explicit WatchedStream(ByteStreamProxy const & source)
        : ByteStream(source->GetStreamName()), source(source) {}

    bool IsOpen() const override { return source->IsOpen(); }

    // What is read again counts once.
    unsigned int Read(void * buffer, unsigned int size) override {
        unsigned int const count = source->Read(buffer, size);
        unsigned int const position = source->GetPos();
        if (s_progress && position > furthest)
            s_progress->countRead(position - furthest);
        furthest = std::max(furthest, position);
        return count;
    }

    unsigned int Write(void const * buffer, unsigned int size) override {
        return source->Write(buffer, size);
    }

    unsigned int GetLen() override { return source->GetLen(); }

    StreamMode GetMode() const override { return source->GetMode(); }

    bool Flush() override { return source->Flush(); }

    void SetPos(unsigned int position) override { source->SetPos(position); }

    unsigned int GetPos() override { return source->GetPos(); }

private:
    ByteStreamProxy source;
    unsigned int furthest = 0;
};

Progress::Progress(std::ostream & terminal, std::ostream & out, std::ostream & err)
    : line(terminal.rdbuf()),
      ending(this),
      out(out),
      err(err),
      outTie(out.tie(&ending)),
      errTie(err.tie(&ending)),
      start(Plat::Time::GetTimeMilliseconds()),
      shownAt(start) {
    s_progress = this;
}

Progress::~Progress() {
    s_progress = nullptr;
    sync();
    out.tie(outTie);
    err.tie(errTie);
}

ByteStreamProxy Progress::Watch(ByteStreamProxy const & stream) {
    if (!s_progress || !stream)
        return stream;
    s_progress->total += stream->GetLen();
    return ByteStreamProxy(new WatchedStream(stream));
}

int Progress::sync() {
    isEnded = true;
    if (std::exchange(isShown, false))
        line << "\r         \r" << std::flush;
    return 0;
}

void Progress::countRead(std::uint64_t bytes) {
    done += bytes;
    std::uint32_t const now = Plat::Time::GetTimeMilliseconds();
    if (isEnded || now - start < c_patience || now - shownAt < c_period)
        return;
    total = std::max(total, done); // a file may grow, and a pipe tells no length
    line << '\r' << std::setw(3) << done * 100 / total << "% read" << std::flush;
    shownAt = now;
    isShown = true;
}
