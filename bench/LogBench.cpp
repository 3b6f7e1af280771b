// A log line against fprintf and fflush: the same text to a file in the same folder, in the file when the
// call returns.

#include "Cross/Util/LogFile.h"
#include "Cross/engine/filesystem/FilePath.h"
#include "bench/Ratio.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>

namespace {

// The two formats differ only in the line end, which the log appends itself.
#define BENCH_LINE "frame %d: %s took %.3f ms of %u"
constexpr char const * c_plainLine = "physics: 214 bodies, 37 contacts, 2 islands";

class Folder {
public:
    Folder() {
        name = (std::filesystem::temp_directory_path() / "crossutil-bench-XXXXXX").string();
        if (!mkdtemp(name.data()))
            std::abort();
    }

    Folder(Folder const &) = delete;
    Folder & operator=(Folder const &) = delete;

    ~Folder() {
        std::error_code ignored;
        std::filesystem::remove_all(name, ignored);
    }

    std::string const & Name() const { return name; }

private:
    std::string name;
};

template <class Write>
bench::Body ourBody(Write write) {
    return [write](benchmark::State & state) {
        LogFile log;
        if (!log.CreateWithName("ours", true, false))
            return state.SkipWithError("no log");
        int frame = 0;
        for (auto _ : state)
            write(log, frame++);
    };
}

template <class Write>
bench::Body peerBody(std::string const & folder, Write write) {
    return [path = folder + "/peer.txt", write](benchmark::State & state) {
        std::FILE * const file = std::fopen(path.c_str(), "w");
        if (!file)
            return state.SkipWithError("no file");
        int frame = 0;
        for (auto _ : state) {
            write(file, frame++);
            std::fflush(file);
        }
        std::fclose(file);
    };
}

} // namespace

int main(int argc, char ** argv) {
    Folder const folder;
    FilePath::SetAlias("log", folder.Name().c_str());
    bench::AddPair("formatted log line", 1.2, ourBody([](LogFile & log, int frame) {
                       log.printf(BENCH_LINE, frame, "physics", 1.25, 16u);
                   }),
                   peerBody(folder.Name(), [](std::FILE * file, int frame) {
                       std::fprintf(file, BENCH_LINE "\n", frame, "physics", 1.25, 16u);
                   }));
    bench::AddPair(
        "plain log line", 1.2, ourBody([](LogFile & log, int) { log.puts(c_plainLine); }),
        peerBody(folder.Name(), [](std::FILE * file, int) { std::fprintf(file, "%s\n", c_plainLine); }));
    return bench::Run(argc, argv);
}
