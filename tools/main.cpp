#include "tools/Verbs.h"

#include <iostream>

int main(int argc, char ** argv) { return RunCrosstool(argc, argv, std::cout, std::cerr); }
