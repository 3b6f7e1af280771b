#include "Cross/engine/filesystem/FileWatch.h"

#include "Cross/engine/core/Text.h"
#include "Cross/engine/diagnostics/Trace.h"
#include "Cross/engine/filesystem/FilePlace.h"
#include "Cross/engine/filesystem/PathText.h"

#include <algorithm>
#include <cstring>
#include <set>
#include <utility>

#include <sys/inotify.h>

namespace {

std::string withoutLastSlashes(std::string path) {
    while (path.size() > 1 && (path.back() == '/' || path.back() == '\\'))
        path.pop_back();
    return path;
}

// The one spelling of all that name the same place whatever stands there: the case of an alias and the kind
// of slash behind it do not count.
std::string unified(std::string path) {
    char alias[c_maxPath];
    if (!fs::RetrieveAlias(path.c_str(), alias))
        return path;
    text::ToLower(alias);
    path.replace(0, std::strlen(alias), alias);
    std::replace(path.begin(), path.end(), '\\', '/');
    return path;
}

} // namespace

FileWatch & FileWatch::Instance() {
    static FileWatch * const instance = new FileWatch;
    return *instance;
}

void FileWatch::Attach(char const * path, FilePath::IFileChangeNotify * listener) {
    if (IsNoPath(path) || !listener)
        return;
    std::unique_lock lock(mutex);
    std::string const attached = withoutLastSlashes(path);
    WatchedTree * tree = find(attached);
    if (!tree) {
        readEvents(); // they are older than the new tree
        tree = trees.emplace_back(std::make_unique<WatchedTree>(attached, queue)).get();
        tree->Follow();
    }
    auto & listeners = tree->listeners;
    if (std::find(listeners.begin(), listeners.end(), listener) == listeners.end())
        listeners.push_back(listener);
    traceTroubles(lock);
}

void FileWatch::Detach(FilePath::IFileChangeNotify * listener, char const * path) {
    std::unique_lock lock(mutex);
    std::string const attached = path ? unified(withoutLastSlashes(path)) : "";
    for (auto const & tree : trees) {
        if (!path || unified(tree->Attached()) == attached)
            std::erase(tree->listeners, listener);
    }
    std::erase_if(trees, [](auto const & tree) { return tree->listeners.empty(); });
    gate.AwaitEmpty(lock, listener);
}

void FileWatch::FollowAliases() {
    std::unique_lock lock(mutex);
    readEvents();
    for (auto const & tree : trees)
        tree->Follow();
    traceTroubles(lock);
}

unsigned int FileWatch::Pump() {
    std::unique_lock lock(mutex);
    std::vector<Notice> const notices = collect();
    traceTroubles(lock);
    unsigned int calls = 0;
    for (Notice const & notice : notices) {
        if (!isWanted(notice))
            continue;
        CallGate::Call const call(gate, lock, notice.listener);
        notice.listener->OnFileChanged(notice.path.c_str());
        ++calls;
    }
    return calls;
}

std::vector<FileWatch::Notice> FileWatch::collect() {
    readEvents();
    std::vector<std::vector<std::string>> linked;
    for (auto const & tree : trees) {
        tree->Follow();
        linked.push_back(tree->FindLinked());
    }
    readEvents();

    std::vector<Notice> notices;
    std::set<std::pair<FilePath::IFileChangeNotify *, std::string>> told;
    for (std::size_t i = 0; i < trees.size(); ++i) {
        WatchedTree & tree = *trees[i];
        tree.FinishLinked(linked[i]);
        for (std::string const & path : tree.TakeFinished()) {
            for (FilePath::IFileChangeNotify * const listener : tree.listeners) {
                if (told.emplace(listener, path).second)
                    notices.push_back({path, listener, tree.Attached()});
            }
        }
    }
    return notices;
}

void FileWatch::readEvents() {
    bool overflow = false;
    for (WatchQueue::Event const & event : queue.Take()) {
        overflow = overflow || (event.mask & IN_Q_OVERFLOW) != 0;
        for (auto const & tree : trees)
            tree->TakeEvent(event);
    }
    if (!overflow)
        return;
    hasOverflowed = true;
    for (auto const & tree : trees)
        tree->Rescan();
}

WatchedTree * FileWatch::find(std::string const & attached) const {
    auto const found = std::find_if(trees.begin(), trees.end(),
                                    [&](auto const & tree) { return tree->Attached() == attached; });
    return found == trees.end() ? nullptr : found->get();
}

// A listener called before this one may have detached it.
bool FileWatch::isWanted(Notice const & notice) const {
    WatchedTree const * const tree = find(notice.attached);
    return tree && std::find(tree->listeners.begin(), tree->listeners.end(), notice.listener) !=
                       tree->listeners.end();
}

// The lock is given up meanwhile: whoever takes the trace may come back here.
void FileWatch::traceTroubles(std::unique_lock<std::mutex> & lock) {
    std::vector<std::string> troubles;
    if (std::exchange(hasOverflowed, false))
        troubles.push_back("Too many file changes at once, looked through the watched folders");
    for (auto const & tree : trees) {
        std::string trouble = tree->TakeTrouble();
        if (!trouble.empty())
            troubles.push_back(std::move(trouble));
    }
    if (troubles.empty())
        return;
    lock.unlock();
    for (std::string const & trouble : troubles)
        dbTimeStampedTracefAux("FILESYSTEM -- %s", trouble.c_str());
    lock.lock();
}
