#pragma once

// Where a path leads on this system. Aliased paths are walked folder by folder with no link followed by the
// kernel, so that whatever happens to the tree meanwhile, a place never lies outside its alias. Threads: any.

#include "Cross/engine/core/Types.h"
#include "Cross/engine/filesystem/Descriptor.h"

#include <string>

#include <sys/stat.h>

struct FilePlace {
    Descriptor folder; // holds the file, or will; not set when a folder on the way is missing
    std::string name;  // in `folder`, as spelt there and never a link; "" when the path is the folder itself
    std::string realPath; // for people and other programs; links in it stay as they are
    mode_t kind = 0;      // S_IFREG, S_IFDIR, ...; 0 when nothing is there
};

enum class MissingFolders { Leave, Create };

// False for what is no path at all (null, "", above 259 characters), an unknown alias, a way out of the alias
// and a folder that cannot be searched. Folders are created on aliased paths only.
bool FindPlace(char const * path, MissingFolders missingFolders, FilePlace & place);

// The same for a real path of any length.
bool FindRawPlace(std::string const & path, FilePlace & place);

// Opens a regular file below 4 GiB; not set when there is none. No listener hears of it.
Descriptor OpenForReading(char const * path);
Descriptor OpenRawForReading(std::string const & path);

// A file that streams can work on: their positions are 32 bits.
bool IsSmallRegular(struct stat const & status);

// Opens `name` in `folder` when it is a regular file below 4 GiB; errno tells why it did not. For names that
// a look has shown to be files: whatever takes their place in between neither opens nor blocks, but it may
// notice.
Descriptor OpenRegular(int folder, char const * name, int flags);

// True for null, "" and whatever does not fit a path buffer.
bool IsNoPath(char const * path);

// Whether whoever runs this may write to `name` in `folder`, or into the folder itself for ".". What has no
// write permission for anybody counts as read-only for the superuser too.
bool MayWrite(int folder, char const * name);
