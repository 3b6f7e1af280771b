#pragma once

// Command-line options of the process. Nothing is read implicitly: main hands its arguments over once.
//
// An option is an argument "-name" or "--name"; names are compared with case ignored. Its number stands
// behind '=' or ':', or is the next argument when that is a whole number. Decimal or 0x hexadecimal, with an
// optional sign, within signed 32 bits; anything else leaves the option bare. When a name occurs more than
// once, the first occurrence counts.
//
// Threads: SetCommandLine belongs before other threads start; the reads may come from any thread.

#include "Cross/engine/core/Export.h"

namespace Plat {

class CROSS_ENGINE_API Options {
public:
    // Takes a copy of the options in `argv`; `argv[0]` is the program and is skipped. Replaces what was there
    // before.
    static void SetCommandLine(int argc, char const * const * argv);

    // Whether an option of that name stands on the command line, bare or with a number.
    static bool Exist(char const * name);

    // True with the number when the option carries one; false, with `value` untouched, for a bare or missing
    // option.
    static bool Get(char const * name, int & value);
};

} // namespace Plat
