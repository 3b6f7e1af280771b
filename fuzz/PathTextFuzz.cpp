// Path text and alias resolution. Whatever the text, splitting and joining agree, and nothing outside an
// alias's directory is read, written, seen or named through it.

#include "Cross/engine/filesystem/FilePath.h"
#include "Cross/engine/filesystem/PathText.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>

namespace {

namespace stdfs = std::filesystem;

void require(bool holds, char const * what) {
    if (holds)
        return;
    std::fprintf(stderr, "%s\n", what);
    std::abort();
}

// "F:" leads to "root"; every other name in the folder is out of bounds.
class Grounds {
public:
    Grounds() {
        std::string name = (stdfs::temp_directory_path() / "crossutil-fuzz-XXXXXX").string();
        require(mkdtemp(name.data()) != nullptr, "no temporary folder");
        folder = stdfs::canonical(name);
        write(folder / "secret", c_secret);
        FilePath::SetAlias("F", Root().c_str());
        Rebuild();
    }

    ~Grounds() {
        std::error_code ignored;
        stdfs::remove_all(folder, ignored);
    }

    stdfs::path Root() const { return folder / "root"; }

    void Rebuild() const {
        stdfs::remove_all(Root());
        stdfs::create_directories(Root() / "a/B");
        write(Root() / "a/B/file.txt", "inside");
        stdfs::create_directory_symlink("..", Root() / "up");
        stdfs::create_directory_symlink("/", Root() / "top");
        stdfs::create_directory_symlink(folder, Root() / "a/out");
        stdfs::create_symlink("../secret", Root() / "s");
        stdfs::create_symlink("../fresh", Root() / "n");
        stdfs::create_directory_symlink("a/B", Root() / "in");
        stdfs::create_symlink("loop", Root() / "loop");
    }

    void CheckOutside() const {
        auto const entries = stdfs::directory_iterator(folder);
        require(std::distance(begin(entries), end(entries)) == 2, "something was created outside the alias");
        std::ifstream in(folder / "secret");
        std::string const text{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
        require(text == c_secret, "a file outside the alias was changed");
    }

    bool Holds(stdfs::path const & path) const {
        std::string const root = Root().string();
        return path == root || path.string().starts_with(root + '/');
    }

    static constexpr char const * c_secret = "out of bounds";

private:
    static void write(stdfs::path const & file, char const * text) { std::ofstream(file) << text; }

    stdfs::path folder;
};

void checkText(std::string const & path) {
    char parts[4][c_maxPath];
    if (!fs::SplitPath(path.c_str(), parts[0], parts[1], parts[2], parts[3])) {
        require(path.size() >= c_maxPath && !*parts[0] && !*parts[3], "a path that fits was not split");
        return;
    }
    std::string const joined = std::string(parts[0]) + parts[1] + parts[2] + parts[3];
    require(joined == path, "the parts do not rejoin");

    char remade[c_maxPath];
    require(fs::MakePath(remade, parts[0], parts[1], parts[2], parts[3]), "the parts do not fit");
    require(path == remade, "the parts are joined to another path");

    require(fs::SetExtension(remade, "") && fs::SetExtension(remade, parts[3]),
            "the extension does not fit again");
    require(fs::SetAlias(remade, ""), "the alias does not go");
    char other[c_maxPath];
    require(fs::HasAlias(path.c_str()) == fs::RetrieveAlias(path.c_str(), other), "the alias is in doubt");

    std::strcpy(other, path.c_str());
    fs::BracketConvert(other);
    std::string const once = other;
    fs::BracketConvert(other);
    require(once == other && once.size() <= path.size(), "the conversion is not stable");
}

void checkRead(char const * path) {
    ByteStreamProxy const stream = FilePath::OpenStream(path, c_streamRead);
    if (!stream)
        return;
    require(FilePath::GetFileType(path) == FilePath::FT_FILE, "an open file has another type");
    char text[64];
    std::string_view const content(text, stream->Read(text, sizeof(text)));
    require(content == "inside" || content == "new", "a file outside the alias was read");
}

void checkConversion(Grounds const & grounds, std::string const & path) {
    char real[c_maxPath];
    std::strcpy(real, path.c_str());
    if (!FilePath::ConvertFromAlias(real, c_streamWrite, nullptr)) {
        require(path == real, "a failed conversion changed the path");
        return;
    }
    require(grounds.Holds(stdfs::path(real).lexically_normal()), "the text leads out of the alias");
    std::error_code error;
    stdfs::path const target = stdfs::weakly_canonical(real, error);
    require(error || grounds.Holds(target), "the real path leads out of the alias");
}

void checkWrite(char const * path) {
    ByteStreamProxy const stream = FilePath::OpenStream(path, c_streamWrite);
    if (stream)
        require(stream->Write("new", 3) == 3, "a new file does not take bytes");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const * data, std::size_t size) {
    static Grounds const s_grounds;
    static unsigned int s_runs = 0;
    std::string const input(std::string(reinterpret_cast<char const *>(data), size).c_str());
    checkText(input);

    std::string const path = "F:" + input;
    if (path.size() >= c_maxPath)
        return 0;
    checkConversion(s_grounds, path);
    checkRead(path.c_str());
    checkWrite(path.c_str());
    s_grounds.CheckOutside();
    if (++s_runs % 64 == 0)
        s_grounds.Rebuild();
    return 0;
}
