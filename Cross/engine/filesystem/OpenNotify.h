#pragma once

// Tells the attached listeners of each file that was opened. Threads: any.

#include "Cross/engine/filesystem/CallGate.h"
#include "Cross/engine/filesystem/FilePath.h"

#include <mutex>
#include <string>
#include <vector>

class OpenNotify {
public:
    static OpenNotify & Instance();

    void Attach(FilePath::Listener * listener);
    void Detach(FilePath::Listener * listener);

    // `path` stands behind the alias, or is the whole one and `alias` is "".
    void Tell(std::string const & path, char const * alias, StreamMode mode);

private:
    std::mutex mutex;
    std::vector<FilePath::Listener *> listeners;
    CallGate gate;
};
