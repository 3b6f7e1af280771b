#include "Cross/engine/filesystem/WatchedTree.h"

#include "Cross/engine/filesystem/AliasTable.h"
#include "Cross/engine/filesystem/FileStream.h"
#include "Cross/engine/filesystem/PathText.h"

#include <cerrno>
#include <filesystem>
#include <system_error>

#include <sys/inotify.h>

namespace {

std::int64_t nanoseconds(timespec const & time) {
    return std::int64_t{time.tv_sec} * 1'000'000'000 + time.tv_nsec;
}

template <class Map>
void eraseBelow(Map & map, std::string const & folder) {
    std::erase_if(map, [&](auto const & entry) { return entry.first.starts_with(folder); });
}

} // namespace

WatchedTree::Stamp::Stamp(struct stat const & status)
    : node(status.st_ino),
      size(status.st_size),
      modified(nanoseconds(status.st_mtim)),
      changed(nanoseconds(status.st_ctim)) {}

WatchedTree::WatchedTree(std::string attached, WatchQueue & queue)
    : attached(std::move(attached)), queue(queue) {}

WatchedTree::~WatchedTree() { leave(); }

void WatchedTree::Follow() {
    Root found = findRoot();
    if (found == root)
        return;
    bool const isMappedAnew = found.base != root.base;
    leave();
    if (isMappedAnew) {
        files.clear();
        changes.clear();
    }
    root = std::move(found);
    if (!root.folder.empty())
        scan("", !isMappedAnew);
}

WatchedTree::Root WatchedTree::findRoot() const {
    Root found;
    found.base = "";
    char alias[c_maxPath];
    if (fs::RetrieveAlias(attached.c_str(), alias))
        found.base = AliasTable::Instance().Find(alias);

    FilePlace place;
    if (!FindPlace(attached.c_str(), MissingFolders::Leave, place))
        return found;
    std::filesystem::path folder = place.realPath;
    if (place.kind == S_IFREG) {
        found.onlyFile = folder.filename().string();
        folder = folder.has_parent_path() ? folder.parent_path() : ".";
    }
    struct stat status;
    if ((place.kind == S_IFDIR || place.kind == S_IFREG) && ::stat(folder.c_str(), &status) == 0) {
        found.folder = folder.string();
        found.device = status.st_dev;
        found.node = status.st_ino;
    }
    return found;
}

void WatchedTree::leave() {
    for (auto const & [watch, folder] : folders)
        queue.Release(watch);
    folders.clear();
}

void WatchedTree::Rescan() {
    leave();
    if (!root.folder.empty())
        scan("", true);
}

void WatchedTree::scan(std::string const & start, bool report) {
    std::vector<std::string> left{start};
    while (!left.empty()) {
        std::string const folder = std::move(left.back());
        left.pop_back();
        // Watched first: what comes while the folder is listed shows in one of the two at least.
        watch(folder);
        std::vector<std::string> inside = scanFolder(folder, report);
        left.insert(left.end(), inside.begin(), inside.end());
    }
}

// Looks at the files directly in a folder; gives the folders in it.
std::vector<std::string> WatchedTree::scanFolder(std::string const & folder, bool report) {
    std::vector<std::string> inside;
    std::error_code error;
    std::filesystem::directory_iterator entries(realPath(folder), error);
    for (; !error && entries != std::filesystem::directory_iterator(); entries.increment(error)) {
        std::string const name = entries->path().filename().string();
        std::error_code gone;
        bool const isFolder = entries->symlink_status(gone).type() == std::filesystem::file_type::directory;
        if (isFolder && root.onlyFile.empty())
            inside.push_back(folder + name + '/');
        if (!isFolder && concerns(name) && remember(folder + name) && report)
            changes[folder + name] = Change::Finished;
    }
    return inside;
}

void WatchedTree::watch(std::string const & folder) {
    std::string const path = realPath(folder);
    int const number = queue.Add(path);
    if (number < 0) {
        bool const isGone = errno == ENOENT || errno == ENOTDIR;
        if (!isGone && trouble.empty())
            trouble = "Failed to watch folder '" + path + "': " + std::generic_category().message(errno);
        return;
    }
    if (!folders.insert_or_assign(number, folder).second)
        queue.Release(number);
}

void WatchedTree::forget(std::string const & folder) {
    std::erase_if(folders, [&](auto const & entry) {
        bool const isBelow = entry.second.starts_with(folder);
        if (isBelow)
            queue.Release(entry.first);
        return isBelow;
    });
    eraseBelow(files, folder);
    eraseBelow(changes, folder);
}

void WatchedTree::TakeEvent(WatchQueue::Event const & event) {
    auto const found = folders.find(event.watch);
    if (found == folders.end())
        return;
    if (event.mask & IN_IGNORED) {
        folders.erase(found);
        return;
    }
    std::string const path = found->second + event.name;
    if (!(event.mask & IN_ISDIR)) {
        if (concerns(event.name))
            takeFileEvent(path, event.mask);
    } else if (root.onlyFile.empty()) {
        if (event.mask & (IN_CREATE | IN_MOVED_TO))
            scan(path + '/', true);
        if (event.mask & IN_MOVED_FROM)
            forget(path + '/');
    }
}

void WatchedTree::takeFileEvent(std::string const & file, std::uint32_t mask) {
    if (mask & (IN_CLOSE_WRITE | IN_MOVED_TO))
        changes[file] = Change::Finished;
    if (mask & IN_CREATE)
        changes[file] = Change::Created;
    if (mask & (IN_DELETE | IN_MOVED_FROM)) {
        changes.erase(file);
        files.erase(file);
    }
    auto const change = changes.find(file);
    if (mask & IN_MODIFY && change != changes.end() && change->second == Change::Created)
        change->second = Change::Writing;
}

// Unfinished content of a write stream is nobody's file yet.
bool WatchedTree::concerns(std::string const & name) const {
    return !name.empty() && !IsTemporaryName(name) && (root.onlyFile.empty() || name == root.onlyFile);
}

std::vector<std::string> WatchedTree::FindLinked() const {
    std::vector<std::string> linked;
    for (auto const & [file, change] : changes) {
        struct stat status;
        if (change == Change::Created && look(file, status) && (status.st_size > 0 || status.st_nlink > 1))
            linked.push_back(file);
    }
    return linked;
}

void WatchedTree::FinishLinked(std::vector<std::string> const & linked) {
    for (std::string const & file : linked) {
        auto const change = changes.find(file);
        if (change != changes.end() && change->second == Change::Created)
            change->second = Change::Finished;
    }
}

std::vector<std::string> WatchedTree::TakeFinished() {
    std::vector<std::string> finished;
    std::erase_if(changes, [&](auto const & entry) {
        auto const & [file, change] = entry;
        struct stat status;
        if (change != Change::Finished)
            return false;
        remember(file);
        std::string path = attachedPath(file);
        if (look(file, status) && !IsNoPath(path.c_str()))
            finished.push_back(std::move(path));
        return true;
    });
    return finished;
}

std::string WatchedTree::TakeTrouble() { return std::exchange(trouble, {}); }

// Links to files are files; what is neither is not looked at.
bool WatchedTree::look(std::string const & file, struct stat & status) const {
    return ::stat(realPath(file).c_str(), &status) == 0 && S_ISREG(status.st_mode);
}

// True when the file is another one than before.
bool WatchedTree::remember(std::string const & file) {
    struct stat status;
    if (!look(file, status))
        return false;
    Stamp const stamp(status);
    auto const [known, isNew] = files.emplace(file, stamp);
    bool const differs = isNew || known->second != stamp;
    known->second = stamp;
    return differs;
}

std::string WatchedTree::realPath(std::string const & relative) const {
    bool const endsWithSlash = root.folder.ends_with('/');
    return root.folder + (endsWithSlash ? "" : "/") + relative;
}

std::string WatchedTree::attachedPath(std::string const & file) const {
    if (!root.onlyFile.empty())
        return attached;
    bool const isSeparated = attached.ends_with(':') || attached.ends_with('/');
    return attached + (isSeparated ? "" : "/") + file;
}
