// Runs a fuzz target over every file of the folders named on the command line, so that the seeds and past
// findings are replayed by compilers without libFuzzer. Fails when there is nothing to replay.

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const * data, std::size_t size);

int main(int argc, char ** argv) {
    unsigned int replayed = 0;
    for (int i = 1; i < argc; ++i) {
        for (auto const & entry : std::filesystem::directory_iterator(argv[i])) {
            std::ifstream in(entry.path(), std::ios::binary);
            std::string const input{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
            LLVMFuzzerTestOneInput(reinterpret_cast<std::uint8_t const *>(input.data()), input.size());
            ++replayed;
        }
    }
    std::printf("%u inputs replayed\n", replayed);
    return replayed > 0 ? 0 : 1;
}
