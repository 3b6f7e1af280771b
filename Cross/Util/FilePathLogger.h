#pragma once

// FilePathLogger: which files a run opens, and when, as time-stamped lines in one or more text logs. The
// application attaches it to the filesystem layer (FilePath::AttachListener) and detaches it before it dies.
//
// Threads: any, but for the destructor. The operations exclude each other, so a log's lines never mix; an
// open that comes from inside one of them, on the same thread, is logged too.
// Lifetime: nothing passed in is kept. The logs are closed with the logger.

#include "Cross/engine/filesystem/FilePath.h"

#include <memory>

class CROSS_UTIL_API FilePathLogger : public FilePath::Listener {
public:
    FilePathLogger();
    FilePathLogger(FilePathLogger const &) = delete;
    FilePathLogger & operator=(FilePathLogger const &) = delete;
    ~FilePathLogger() override;

    // Adds a log, named as LogFile::CreateWithName does. It takes the opens whose alias is `first` and whose
    // kind, "read" or "write", is `second`, with case ignored; null or "" takes any. `showFirst` puts the
    // alias before the path in its lines. The lines of a log that cannot be created go nowhere.
    void LogFiles(char const * first, char const * second, char const * fileName, bool showFirst);

    // Writes the line "// TEXT" into every log, whatever it takes.
    void AddComment(char const * text);

    // Writes "hh:mm:ss.cc   PATH", in local time, into each log that takes the open, or with its alias
    // "hh:mm:ss.cc   FIRST:PATH". A null text counts as "".
    void OnFileOpen(char16_t const * path, char const * first, char const * second) override;

private:
    struct Body;

    std::unique_ptr<Body> body;
};
