#pragma once

// Tells listeners of finished file changes below the paths that they are attached to. There is no thread: the
// operating system queues what happens until the application pumps.
//
// Told is each regular file whose writing ended, that was renamed or linked into place, or that came with a
// new folder, when it is still there at the pump. Links to folders are not followed. Threads: any; one pump
// at a time.

#include "Cross/engine/filesystem/CallGate.h"
#include "Cross/engine/filesystem/FilePath.h"
#include "Cross/engine/filesystem/WatchedTree.h"

#include <memory>
#include <mutex>
#include <string>
#include <vector>

class FileWatch {
public:
    static FileWatch & Instance();

    void Attach(char const * path, FilePath::IFileChangeNotify * listener);
    void Detach(FilePath::IFileChangeNotify * listener, char const * path);
    unsigned int Pump();

    // An alias came, went or leads elsewhere.
    void FollowAliases();

private:
    struct Notice {
        std::string path;
        FilePath::IFileChangeNotify * listener;
        std::string attached;
    };

    WatchedTree * find(std::string const & attached) const;
    void readEvents();
    std::vector<Notice> collect();
    bool isWanted(Notice const & notice) const;
    void traceTroubles(std::unique_lock<std::mutex> & lock);

    std::mutex mutex;
    WatchQueue queue;
    std::vector<std::unique_ptr<WatchedTree>> trees;
    bool hasOverflowed = false;
    CallGate gate;
};
