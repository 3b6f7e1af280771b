#include "bench/Ratio.h"

int main(int argc, char ** argv) { return bench::Run(argc, argv); }
