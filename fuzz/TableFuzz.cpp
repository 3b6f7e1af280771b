// Attribute tables from outside: the input is taken once as a table file and once as a bare image. Loading
// never fails but by its result, and every field of an image that passes Verify reads back.

#include "Cross/engine/diagnostics/Trace.h"
#include "tests/support/TableWalk.h"
#include "tests/util/TableImages.h"

#include <cstdlib>

namespace {

void check(BinaryConfig & config) {
    if (BinaryConfigIO::Verify(config.GetBinaryConfigData(), config.GetBinaryConfigDataSize()) &&
        !WalkTable(config))
        std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const * data, std::size_t size) {
    dbTraceSetSink([](char const *, void *) {}, nullptr);
    std::string const input(reinterpret_cast<char const *>(data), size);
    BinaryConfig config;
    if (LoadBytes(input, config))
        check(config);
    if (LoadImage(input, config))
        check(config);
    return 0;
}
