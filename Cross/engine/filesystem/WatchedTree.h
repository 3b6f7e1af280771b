#pragma once

// One path that listeners of file changes are attached to: a folder with all below it, or one file. It need
// not exist yet; the alias neither.
//
// Files and folders are named relative to the root folder. A folder's name ends with a slash, the root's own
// is "". It belongs to whoever locks it.

#include "Cross/engine/filesystem/FilePath.h"
#include "Cross/engine/filesystem/WatchQueue.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include <sys/stat.h>

class WatchedTree {
public:
    // `attached` has no slash at its end. The queue must outlive the tree.
    WatchedTree(std::string attached, WatchQueue & queue);
    WatchedTree(WatchedTree const &) = delete;
    WatchedTree & operator=(WatchedTree const &) = delete;
    ~WatchedTree();

    std::string const & Attached() const { return attached; }

    // Looks where the path leads now. What is found where nothing or something else was before counts as
    // changed; what an alias uncovers that was mapped meanwhile does not.
    void Follow();

    void TakeEvent(WatchQueue::Event const & event);

    // Finds what changed without events.
    void Rescan();

    // Files that appeared with their content in them: linked into place, or being written with the event of
    // that still to come. Those of which no event came meanwhile are finished.
    std::vector<std::string> FindLinked() const;
    void FinishLinked(std::vector<std::string> const & linked);

    // Paths of the finished files for the listeners, in order; they are forgotten here.
    std::vector<std::string> TakeFinished();

    // Why folders could not be watched, "" when all could.
    std::string TakeTrouble();

    std::vector<FilePath::IFileChangeNotify *> listeners;

private:
    struct Root {
        std::optional<std::string>
            base;             // directory of the alias, "" for a raw path, nothing for an unknown alias
        std::string folder;   // real path, "" while it does not exist
        std::string onlyFile; // name of the file when the path leads to one
        dev_t device = 0;
        ino_t node = 0;
        bool operator==(Root const &) const = default;
    };

    // What tells two contents of a file apart without reading them. Times are in nanoseconds.
    struct Stamp {
        explicit Stamp(struct stat const & status);
        bool operator==(Stamp const &) const = default;

        ino_t node;
        off_t size;
        std::int64_t modified;
        std::int64_t changed;
    };

    enum class Change {
        Created, // and not written to since: linked into place, or just opened
        Writing,
        Finished
    };

    Root findRoot() const;
    void leave();
    void scan(std::string const & start, bool report);
    std::vector<std::string> scanFolder(std::string const & folder, bool report);
    void watch(std::string const & folder);
    void forget(std::string const & folder);
    void takeFileEvent(std::string const & file, std::uint32_t mask);
    bool concerns(std::string const & name) const;
    bool look(std::string const & file, struct stat & status) const;
    bool remember(std::string const & file);
    std::string realPath(std::string const & relative) const;
    std::string attachedPath(std::string const & file) const;

    std::string attached;
    WatchQueue & queue;
    Root root;
    std::map<int, std::string> folders; // by watch
    std::map<std::string, Stamp> files; // as last seen
    std::map<std::string, Change> changes;
    std::string trouble;
};
