#include "Cross/engine/filesystem/FilePlace.h"

#include "Cross/engine/core/Text.h"
#include "Cross/engine/filesystem/AliasTable.h"
#include "Cross/engine/filesystem/PathText.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdint>
#include <cstring>
#include <deque>
#include <filesystem>
#include <limits>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>

namespace {

using Components = std::deque<std::string>;

constexpr int c_maxLinks = 40; // as many as the kernel follows

Components split(std::string_view text, std::string_view slashes) {
    Components parts;
    while (!text.empty()) {
        std::size_t const end = std::min(text.find_first_of(slashes), text.size());
        if (end > 0 && text.substr(0, end) != ".")
            parts.emplace_back(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return parts;
}

// Takes ".." out by text alone. False when it climbs above the start.
bool foldParents(Components & parts) {
    Components folded;
    for (std::string & part : parts) {
        if (part != "..") {
            folded.push_back(std::move(part));
        } else {
            if (folded.empty())
                return false;
            folded.pop_back();
        }
    }
    parts = std::move(folded);
    return true;
}

void appendComponent(std::string & path, std::string const & part) {
    if (path.empty() || path.back() != '/')
        path += '/';
    path += part;
}

Descriptor openFolder(int parent, char const * name, int extraFlags) {
    return Descriptor(::openat(parent, name, O_PATH | O_DIRECTORY | O_CLOEXEC | extraFlags));
}

std::optional<std::string> readLink(int folder, char const * name) {
    char target[PATH_MAX];
    ssize_t const length = ::readlinkat(folder, name, target, sizeof(target));
    if (length <= 0 || static_cast<std::size_t>(length) == sizeof(target))
        return std::nullopt;
    return std::string(target, static_cast<std::size_t>(length));
}

// The name in a folder that differs from `wanted` in case only; the first in byte order when there are
// several,
// "" when there is none.
std::string findNoCase(int folder, std::string const & wanted) {
    int const listing = ::openat(folder, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    DIR * const opened = listing >= 0 ? ::fdopendir(listing) : nullptr;
    if (!opened) {
        Descriptor(listing).Close();
        return {};
    }
    std::unique_ptr<DIR, int (*)(DIR *)> const directory(opened, &::closedir);
    std::string best;
    while (dirent const * const entry = ::readdir(directory.get())) {
        bool const better = best.empty() || std::strcmp(entry->d_name, best.c_str()) < 0;
        if (better && text::EqualNoCase(entry->d_name, wanted.c_str()))
            best = entry->d_name;
    }
    return best;
}

// Walks the components of an aliased path from the alias's directory down.
class AliasWalk {
public:
    AliasWalk(std::string root, Components parts, MissingFolders missingFolders)
        : root(std::move(root)), pending(std::move(parts)), missingFolders(missingFolders) {}

    bool Run(FilePlace & place) {
        realPath = root;
        Progress progress = openRoot();
        while (progress == Progress::On && !pending.empty())
            progress = step();
        if (progress == Progress::On)
            place = {std::move(folders.back()), std::move(name), std::move(realPath), kind};
        if (progress == Progress::Unreached)
            place = {Descriptor(), std::string(), unreachedPath(), 0};
        return progress != Progress::Refused;
    }

private:
    enum class Progress {
        On,
        Unreached, // a folder on the way does not exist
        Refused
    };

    Progress openRoot() {
        folders.push_back(openFolder(AT_FDCWD, root.c_str(), 0));
        if (folders.back())
            return Progress::On;
        if (errno != ENOENT)
            return Progress::Refused;
        if (missingFolders == MissingFolders::Leave)
            return Progress::Unreached;
        std::error_code error;
        std::filesystem::create_directories(root, error);
        folders.back() = openFolder(AT_FDCWD, root.c_str(), 0);
        return folders.back() ? Progress::On : Progress::Refused;
    }

    // The rest of the path is taken as it is spelt.
    std::string unreachedPath() const {
        std::string path = realPath;
        for (std::size_t i = fromLinks; i < pending.size(); ++i)
            appendComponent(path, pending[i]);
        return path;
    }

    Progress step() {
        std::string const part = std::move(pending.front());
        pending.pop_front();
        bool const isAsked = fromLinks == 0; // not out of a link
        fromLinks -= isAsked ? 0 : 1;

        if (part == "..")
            return climb();
        if (!pending.empty() && enterFolder(part)) { // as most of them are: spelt right and no link
            spell(part, isAsked);
            return Progress::On;
        }
        if (!look(part))
            return Progress::Refused;
        spell(name, isAsked);
        if (kind == S_IFLNK)
            return followLink();
        return pending.empty() ? Progress::On : enter();
    }

    void spell(std::string const & part, bool isAsked) {
        if (isAsked)
            appendComponent(realPath, part);
    }

    Progress climb() {
        if (folders.size() == 1)
            return Progress::Refused;
        folders.pop_back();
        standInFolder();
        return Progress::On;
    }

    void standInFolder() {
        name.clear();
        kind = S_IFDIR;
    }

    bool look(std::string const & part) {
        name = part;
        if (stat())
            return true;
        if (errno != ENOENT)
            return false;
        std::string const found = findNoCase(folders.back().Get(), part);
        if (found.empty())
            return true;
        name = found;
        return stat() || errno == ENOENT;
    }

    bool stat() {
        struct stat status;
        bool const exists = ::fstatat(folders.back().Get(), name.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0;
        kind = exists ? status.st_mode & S_IFMT : 0;
        return exists;
    }

    Progress enter() {
        if (kind == 0) {
            if (missingFolders == MissingFolders::Leave)
                return Progress::Unreached;
            if (::mkdirat(folders.back().Get(), name.c_str(), 0777) != 0 && errno != EEXIST)
                return Progress::Refused;
        }
        return enterFolder(std::string(name)) ? Progress::On : Progress::Refused;
    }

    bool enterFolder(std::string const & part) {
        Descriptor next = openFolder(folders.back().Get(), part.c_str(), O_NOFOLLOW);
        if (!next)
            return false;
        folders.push_back(std::move(next));
        standInFolder();
        return true;
    }

    Progress followLink() {
        std::optional<std::string> target = readLink(folders.back().Get(), name.c_str());
        if (!target || ++links > c_maxLinks)
            return Progress::Refused;
        if (target->front() == '/') {
            target = belowRoot(*target);
            if (!target)
                return Progress::Refused;
            folders.erase(folders.begin() + 1, folders.end());
        }
        standInFolder();
        Components const parts = split(*target, "/");
        pending.insert(pending.begin(), parts.begin(), parts.end());
        fromLinks += parts.size();
        return Progress::On;
    }

    // What follows the root in an absolute path, whether it names the root as the alias does or without
    // links.
    std::optional<std::string> belowRoot(std::string const & target) const {
        std::error_code error;
        std::filesystem::path const normal = std::filesystem::path(target).lexically_normal();
        for (auto const & base : {std::filesystem::path(root), std::filesystem::canonical(root, error)}) {
            std::filesystem::path const relative = normal.lexically_relative(base);
            if (!base.empty() && !relative.empty() && *relative.begin() != "..")
                return relative.string();
        }
        return std::nullopt;
    }

    std::string root;
    Components pending;
    MissingFolders missingFolders;
    std::size_t fromLinks = 0; // how many of the components in front came out of links
    int links = 0;
    std::vector<Descriptor> folders; // from the root to where the walk stands
    std::string name;
    std::string realPath;
    mode_t kind = S_IFDIR;
};

bool findAliased(char const * path, MissingFolders missingFolders, FilePlace & place) {
    char alias[c_maxPath];
    fs::RetrieveAlias(path, alias);
    std::optional<std::string> root = AliasTable::Instance().Find(alias);
    std::string_view const rest = path + std::strlen(alias) + 1;
    bool const isAbsolute = rest.starts_with('/') || rest.starts_with('\\');
    Components parts = split(rest, "/\\");
    if (!root || isAbsolute || !foldParents(parts))
        return false;
    if (!AliasWalk(std::move(*root), std::move(parts), missingFolders).Run(place))
        return false;
    std::string_view const last = rest.substr(rest.find_last_of("/\\") + 1);
    bool const namesFolder = last.empty() || last == "." || last == "..";
    bool const mayBecomeFolder = place.kind == 0 && missingFolders == MissingFolders::Leave;
    return !namesFolder || place.kind == S_IFDIR || mayBecomeFolder;
}

// The path behind all links that its last component may be, so that what stands there is replaced and not a
// link to it. Nothing when there are too many.
std::optional<std::filesystem::path> followLinks(std::filesystem::path path) {
    for (int links = 0; links <= c_maxLinks; ++links) {
        std::optional<std::string> const target = readLink(AT_FDCWD, path.c_str());
        if (!target)
            return path;
        path = path.parent_path() / *target;
    }
    return std::nullopt;
}

} // namespace

bool IsNoPath(char const * path) { return !path || !*path || ::strnlen(path, c_maxPath) == c_maxPath; }

bool FindPlace(char const * path, MissingFolders missingFolders, FilePlace & place) {
    if (IsNoPath(path))
        return false;
    return fs::HasAlias(path) ? findAliased(path, missingFolders, place) : FindRawPlace(path, place);
}

bool FindRawPlace(std::string const & path, FilePlace & place) {
    std::optional<std::filesystem::path> const target = followLinks(path);
    if (!target)
        return false;
    std::filesystem::path const parent = target->parent_path();
    place.realPath = path;
    place.name = target->filename().string();
    place.folder = openFolder(AT_FDCWD, parent.empty() ? "." : parent.c_str(), 0);
    if (!place.folder)
        return errno == ENOENT;
    struct stat status;
    char const * const name = place.name.empty() ? "." : place.name.c_str();
    bool const exists = ::fstatat(place.folder.Get(), name, &status, AT_SYMLINK_NOFOLLOW) == 0;
    place.kind = exists ? status.st_mode & S_IFMT : 0;
    return true;
}

Descriptor OpenForReading(char const * path) {
    if (IsNoPath(path))
        return {};
    if (!fs::HasAlias(path))
        return OpenRawForReading(path);
    FilePlace place;
    bool const found = findAliased(path, MissingFolders::Leave, place) && place.kind == S_IFREG;
    return found ? OpenRegular(place.folder.Get(), place.name.c_str(), O_RDONLY | O_NOFOLLOW) : Descriptor();
}

Descriptor OpenRawForReading(std::string const & path) {
    struct stat status;
    bool const isFile = ::stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode);
    return isFile ? OpenRegular(AT_FDCWD, path.c_str(), O_RDONLY) : Descriptor();
}

bool IsSmallRegular(struct stat const & status) {
    return S_ISREG(status.st_mode) &&
           status.st_size <= std::int64_t{std::numeric_limits<std::uint32_t>::max()};
}

Descriptor OpenRegular(int folder, char const * name, int flags) {
    Descriptor file(::openat(folder, name, flags | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    struct stat status;
    if (file && (::fstat(file.Get(), &status) != 0 || !IsSmallRegular(status))) {
        file.Close();
        errno = EINVAL;
    }
    return file;
}

bool MayWrite(int folder, char const * name) {
    struct stat status;
    constexpr mode_t anyWrite = S_IWUSR | S_IWGRP | S_IWOTH;
    return ::fstatat(folder, name, &status, AT_SYMLINK_NOFOLLOW) == 0 && (status.st_mode & anyWrite) != 0 &&
           ::faccessat(folder, name, W_OK, AT_EACCESS) == 0;
}
