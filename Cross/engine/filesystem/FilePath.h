#pragma once

// Files by aliased path. An alias is a short name for a real directory: "log:frame.txt". Nothing reached
// through an alias lies outside its directory: a path that climbs out, by "..", an absolute part or a link,
// does not open.
//
// Aliased paths: aliases and components are found with case ignored (the exact spelling first), both kinds of
// slash separate components, and writing creates missing folders. A path without alias is raw: it opens as it
// stands, exactly as spelt, in folders that exist. Paths have at most 259 characters.
//
// Safe saves: writing over an existing file goes to a temporary file beside it, which takes the name at the
// first flush or at the close, if every write succeeded; otherwise the old file stays as it was. See
// ByteStream::Discard.
//
// Threads: everything may be called from any thread but PumpFileChanges, which belongs to one thread at a
// time.

#include "Cross/engine/core/Export.h"
#include "Cross/engine/core/Types.h"
#include "Cross/engine/filesystem/ByteStream.h"

class CROSS_ENGINE_API FilePath {
public:
    enum FILE_Type : unsigned int { FT_NONE = 0, FT_FILE = 1, FT_DIRECTORY = 2, FT_OTHER = 3 };

    // Hears of changed files. `path` is "ALIAS:relative/path" as the alias and the path were attached, and
    // valid during the call.
    class CROSS_ENGINE_API IFileChangeNotify {
    public:
        virtual void OnFileChanged(char const * path) = 0;
        virtual ~IFileChangeNotify();
    };

    // Hears of every file that was opened: the path behind the alias, the alias or "", and "read" or "write".
    // Comes on the thread that opens, with no lock of this layer held.
    class CROSS_ENGINE_API Listener {
    public:
        virtual ~Listener();
        virtual void OnFileOpen(char16_t const * path, char const * first, char const * second) = 0;
    };

    // Maps an alias to a real directory, which need not exist yet; replaces an earlier mapping. A relative
    // directory is taken from the current one, now. False for an empty alias or one with a slash or ':' in
    // it, and for an empty directory.
    static bool SetAlias(char const * alias, char const * realDirectory);

    // False when there is no such alias.
    static bool RemoveAlias(char const * alias);

    // Opens a regular file. Writing creates it or replaces its content. Empty when it cannot be opened.
    static ByteStreamProxy OpenStream(char const * path, StreamMode mode);

    // What stands at a path. FT_NONE when nothing does, or nothing that the path may reach; FT_OTHER for a
    // device, pipe or socket, which does not open.
    static FILE_Type GetFileType(char const * path);

    // Rewrites an aliased path in place into the real one, in a buffer of 260 characters; a path without
    // alias stays as it is. What does not exist keeps its spelling. False, with the path unchanged, when it
    // cannot be converted or does not fit. `mode` and `unused` are not read.
    static bool ConvertFromAlias(char * path, StreamMode mode, char const * unused);

    // The listener hears of finished writes and renames below `path`, a directory or file, also when its
    // alias or directory appears only later. It must be detached before it goes. Attaching the same pair
    // again does nothing.
    static void AttachFileChangeNotification(char const * path, IFileChangeNotify * listener);

    // A null path detaches the listener from all paths; one with an alias may differ in the alias's case and
    // in its slashes from the path that was attached. The listener is not called any more for what it was
    // detached from once this returns, unless it is called from inside the listener itself.
    static void DetachFileChangeNotification(IFileChangeNotify * listener, char const * path);

    // Delivers what has changed since the last call, on the calling thread, once per path and listener. Gives
    // the number of calls of OnFileChanged.
    static unsigned int PumpFileChanges();

    static void AttachListener(Listener * listener);

    // The listener is not called any more once this returns, unless it is called from inside the listener
    // itself.
    static void DetachListener(Listener * listener);
};
