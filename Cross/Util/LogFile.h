#pragma once

// LogFile: a small text log. Create makes a new file under the alias "log", with the time of the program's
// start in its name, and never touches an earlier one. Each write is flushed, so that a line is in the file
// when the call returns, and an open log belongs to the crash report.
//
// Threads: a log belongs to one thread.
// Lifetime: nothing passed in is kept. The log owns its file; destroying the log closes it.

#include "Cross/engine/filesystem/ByteStream.h"

class CROSS_UTIL_API LogFile {
public:
    LogFile();

    // Copying moves the open file: the target closes what it had open and writes on, the source is left
    // without a file.
    LogFile(LogFile const & source);
    LogFile & operator=(LogFile const & source);

    ~LogFile();

    // Opens a new file, named as MakeFilename does. Where that name is taken, ".1" to ".9" in front of the
    // extension are tried in turn, so that one name has at most ten logs in a run of the program. False, with
    // the log closed, when none of them can be created. A null or empty name or a null extension gives false
    // and leaves the log as it was.
    //
    // `appendLineEnd` true: each write is a whole line. `keepCrashFile` true: the file stays in the crash
    // report after Close.
    bool Create(char const * name, char const * extension, bool appendLineEnd, bool keepCrashFile);

    // Opens a file of exactly this name and replaces what it held. A name without alias stands under "log", a
    // name without extension gets "txt". False, with the log closed, when it cannot be opened or is too long
    // for a path. A null or empty name gives false and leaves the log as it was.
    bool CreateWithName(char const * filename, bool appendLineEnd, bool keepCrashFile);

    // Ends writing, and the file's place in the crash report unless it is to stay there. A closed log stays
    // closed.
    void Close();

    bool IsOpened() const;

    // Writes a text of any length; nothing while the log is closed. A null text counts as "". Formatting
    // allocates only for a line that is longer than all before.
    void printf(char const * format, ...) CROSS_PRINTF_FORMAT(2, 3);
    void puts(char const * text);

    // "log:NAME.YYYY-MM-DD.HH-MM-SS.EXTENSION" with the local time at which the program started and the name
    // in lower case, made legal as a file name: name and time together are cut to 200 bytes. The extension
    // may have its leading point or not. `filename` holds at least 260 characters and may be `name`; "" when
    // the whole does not fit.
    static void MakeFilename(char * filename, char const * name, char const * extension);

    // The same in place: `filename` is the name, the extension is ".txt".
    static void MakeFilename(char * filename);

private:
    void WriteString(char const * text);

    ByteStreamProxy stream; // empty when closed
    std::string scratch;    // for printf, as long as the longest line so far
    int crashFile = -1;     // handle in the crash report, -1 for none
    bool keepCrashFile = false;
    bool appendLineEnd = true;
};
