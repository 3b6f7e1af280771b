#pragma once

// The operating system's queue of what happens in watched folders. It belongs to whoever locks it.

#include "Cross/engine/filesystem/Descriptor.h"

#include <cstdint>
#include <map>
#include <string>
#include <vector>

class WatchQueue {
public:
    // `mask` is made of the IN_ bits of sys/inotify.h.
    struct Event {
        int watch;
        std::uint32_t mask;
        std::string name; // of the file or folder in the watched folder; "" for the folder itself
    };

    // Watches one folder, not what is in its folders. Gives the number of the watch, or -1 with the reason in
    // errno. Adding a folder again gives the same number, to be released as often.
    int Add(std::string const & folder);

    void Release(int watch);

    // What happened since the last call, in order.
    std::vector<Event> Take();

private:
    void parse(char const * bytes, std::size_t size, std::vector<Event> & events);

    Descriptor queue; // opened at the first Add
    std::map<int, unsigned int> uses;
};
