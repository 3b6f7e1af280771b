#include "tools/Verbs.h"

#include <iostream>
#include <unistd.h>

int main(int argc, char ** argv) {
    return RunCrosstool(argc, argv, std::cout, std::cerr, isatty(STDERR_FILENO) != 0 ? &std::cerr : nullptr);
}
