#include "Cross/engine/diagnostics/Fatal.h"

#include "Cross/engine/diagnostics/CrashFiles.h"
#include "Cross/engine/diagnostics/Message.h"

#include <cstdio>
#include <cstdlib>

namespace {

struct Place {
    char const * file;
    int line;
};

thread_local Place t_place = {nullptr, 0};

void printCrashFile(int, char const * path, void *) { std::fprintf(stderr, "Crash file: %s\n", path); }

} // namespace

void dbLineAux(char const * file, int line) { t_place = {file, line}; }

void dbFatalfAux(char const * format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    Message message(format, arguments);
    va_end(arguments);
    if (t_place.file)
        std::fprintf(stderr, "%s(%d): Fatal error: %s\n", t_place.file, t_place.line, message.Text());
    else
        std::fprintf(stderr, "Fatal error: %s\n", message.Text());
    dbCrashVisitFiles(&printCrashFile, nullptr);
    std::abort();
}
