#include "Cross/engine/filesystem/OpenNotify.h"

#include "Cross/engine/core/Utf.h"

#include <algorithm>

OpenNotify & OpenNotify::Instance() {
    static OpenNotify * const instance = new OpenNotify;
    return *instance;
}

void OpenNotify::Attach(FilePath::Listener * listener) {
    std::unique_lock const lock(mutex);
    if (listener && std::find(listeners.begin(), listeners.end(), listener) == listeners.end())
        listeners.push_back(listener);
}

void OpenNotify::Detach(FilePath::Listener * listener) {
    std::unique_lock lock(mutex);
    std::erase(listeners, listener);
    gate.AwaitEmpty(lock, listener);
}

void OpenNotify::Tell(std::string const & path, char const * alias, StreamMode mode) {
    std::unique_lock lock(mutex);
    if (listeners.empty())
        return;
    std::vector<FilePath::Listener *> const attached = listeners;
    std::u16string const widePath = utf::ToUtf16(path);
    char const * const verb = mode == c_streamWrite ? "write" : "read";
    for (FilePath::Listener * const listener : attached) {
        // A listener before it may have detached this one.
        if (std::find(listeners.begin(), listeners.end(), listener) == listeners.end())
            continue;
        CallGate::Call const call(gate, lock, listener);
        listener->OnFileOpen(widePath.c_str(), alias, verb);
    }
}
