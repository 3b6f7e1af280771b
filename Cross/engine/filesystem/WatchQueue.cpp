#include "Cross/engine/filesystem/WatchQueue.h"

#include <cerrno>
#include <cstring>

#include <sys/inotify.h>

namespace {

constexpr std::uint32_t c_watched = IN_CLOSE_WRITE | IN_MOVED_TO | IN_CREATE | IN_MODIFY | IN_MOVED_FROM |
                                    IN_DELETE | IN_ONLYDIR | IN_EXCL_UNLINK;

} // namespace

int WatchQueue::Add(std::string const & folder) {
    if (!queue)
        queue = Descriptor(::inotify_init1(IN_NONBLOCK | IN_CLOEXEC));
    int const watch = queue ? ::inotify_add_watch(queue.Get(), folder.c_str(), c_watched) : -1;
    if (watch >= 0)
        ++uses[watch];
    return watch;
}

void WatchQueue::Release(int watch) {
    auto const found = uses.find(watch);
    if (found == uses.end() || --found->second > 0)
        return;
    uses.erase(found);
    ::inotify_rm_watch(queue.Get(), watch);
}

std::vector<WatchQueue::Event> WatchQueue::Take() {
    std::vector<Event> events;
    alignas(inotify_event) char bytes[16 * 1024];
    while (queue) {
        ssize_t const size = ::read(queue.Get(), bytes, sizeof(bytes));
        if (size < 0 && errno == EINTR)
            continue;
        if (size <= 0)
            break;
        parse(bytes, static_cast<std::size_t>(size), events);
    }
    return events;
}

void WatchQueue::parse(char const * bytes, std::size_t size, std::vector<Event> & events) {
    for (std::size_t at = 0; at < size;) {
        inotify_event event;
        std::memcpy(&event, bytes + at, sizeof(event));
        char const * const name = bytes + at + sizeof(event);
        events.push_back({event.wd, event.mask, event.len > 0 ? name : ""});
        if (event.mask & IN_IGNORED)
            uses.erase(event.wd); // the folder is gone, and its watch with it
        at += sizeof(event) + event.len;
    }
}
