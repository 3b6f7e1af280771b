// The sync log: recording beside the bare checksum, and finding a drift beside reading both files.

#include "Cross/Util/CRCRecord.h"
#include "Cross/engine/filesystem/FilePathHDRaw.h"
#include "bench/Ratio.h"
#include "tools/syncdiff/SyncDiff.h"

#include <zlib.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <random>

namespace {

constexpr int c_values = 1000;

// A frame of values, recorded again and again: nothing is allocated after the first.
void record(benchmark::State & state) {
    CRCBlock block;
    Dictionary::Key const key = keyedCRCEntry::s_dictionary.GetKey("value");
    for (auto _ : state) {
        block.Clear();
        for (int i = 0; i < c_values; ++i)
            Record(block, key, static_cast<float>(i));
        benchmark::DoNotOptimize(block.GetCRC());
    }
}

void checksum(benchmark::State & state) {
    for (auto _ : state) {
        uLong crc = 0;
        for (int i = 0; i < c_values; ++i) {
            auto const value = static_cast<float>(i);
            crc = crc32(crc, reinterpret_cast<Bytef const *>(&value), sizeof(value));
        }
        benchmark::DoNotOptimize(crc);
    }
}

// Two printed blocks of a million lines that differ in one value near the end; the files go with the object.
class Dumps {
public:
    Dumps()
        : folder(std::filesystem::temp_directory_path() /
                 ("sync_bench_" + std::to_string(std::random_device()()))) {
        std::filesystem::create_directory(folder);
        write(Left(), 0);
        write(Right(), 1);
    }

    Dumps(Dumps const &) = delete;
    Dumps & operator=(Dumps const &) = delete;

    ~Dumps() { std::filesystem::remove_all(folder); }

    std::string Left() const { return folder / "left.txt"; }

    std::string Right() const { return folder / "right.txt"; }

private:
    static void write(std::string const & path, int change) {
        std::ofstream file(path);
        file << "Total CRC: [ 1f0c93ab ]\n";
        for (int frame = 0; frame < 125'000; ++frame) {
            int const bits = frame + (frame == 124'900 ? change : 0);
            file << "Sim: \n{\n  frame: [ " << frame
                 << " ]\n  unit: \n  {\n    pos: [ (1.000000000e+00 <3f800000>, "
                 << "2.000000000e+00 <" << bits << ">) ]\n  }\n}\n";
        }
    }

    std::filesystem::path folder;
};

void findDrift(Dumps const & dumps) {
    ByteStreamProxy const left(FilePathHDRaw::UnaliasedFileOpen(dumps.Left().c_str(), c_streamRead, false));
    ByteStreamProxy const right(FilePathHDRaw::UnaliasedFileOpen(dumps.Right().c_str(), c_streamRead, false));
    if (DiffSync(*left, *right).frame != "124900")
        std::abort();
}

void readLines(std::string const & path) {
    std::ifstream file(path);
    std::string line;
    std::size_t bytes = 0;
    while (std::getline(file, line))
        bytes += line.size();
    benchmark::DoNotOptimize(bytes);
}

} // namespace

int main(int argc, char ** argv) {
    Dumps const dumps;
    bench::AddPair("recording 1000 floats with entries", 3.0, record, checksum);
    bench::AddPair(
        "sync diff of two files of a million lines", 2.0,
        [&](benchmark::State & state) {
            for (auto _ : state)
                findDrift(dumps);
        },
        [&](benchmark::State & state) {
            for (auto _ : state) {
                readLines(dumps.Left());
                readLines(dumps.Right());
            }
        });
    return bench::Run(argc, argv);
}
