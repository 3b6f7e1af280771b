#include "Cross/engine/filesystem/FilePath.h"
#include "Cross/engine/filesystem/FilePathHDRaw.h"
#include "tests/support/SlotOf.h"
#include "tests/support/SlowCall.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <string>
#include <thread>
#include <vector>

#include <sys/stat.h>

#include <atomic>

namespace {

namespace stdfs = std::filesystem;

std::string readAll(ByteStream & stream) {
    std::string content(stream.GetLen(), '\0');
    content.resize(stream.Read(content.data(), static_cast<unsigned int>(content.size())));
    return content;
}

// What a path opens to for reading; "-" when it does not open.
std::string contentOf(std::string const & path) {
    ByteStreamProxy const stream = FilePath::OpenStream(path.c_str(), c_streamRead);
    return stream ? readAll(*stream) : "-";
}

bool canWrite(std::string const & path) {
    ByteStreamProxy const stream = FilePath::OpenStream(path.c_str(), c_streamWrite);
    return stream && stream->Write("new", 3) == 3;
}

// "DATA:" leads to "base"; beside it lies what no aliased path may reach.
class FilePathTest : public testing::Test {
protected:
    FilePathTest() {
        folder.WriteFile("base/Art/Tank.tga", "tank");
        folder.WriteFile("base/plain.txt", "plain");
        folder.WriteFile("base/a", "small a");
        folder.WriteFile("base/A", "big A");
        folder.WriteFile("outside.txt", "outside");
        FilePath::SetAlias("DATA", (folder / "base").c_str());
    }

    ~FilePathTest() override { FilePath::RemoveAlias("DATA"); }

    void link(char const * target, char const * name) const {
        stdfs::create_symlink(target, folder / "base" / name);
    }

    struct Folder : TemporaryFolder {
        stdfs::path operator/(char const * relative) const { return Path() / relative; }
    } folder;
};

constexpr std::tuple<char const *, char const *, FilePath::FILE_Type> c_readCases[] = {
    // case of alias and components is ignored
    {"Data:art\\tank.TGA", "tank", FilePath::FT_FILE},
    // the exact spelling first
    {"DATA:a", "small a", FilePath::FT_FILE},
    {"DATA:A", "big A", FilePath::FT_FILE},
    // dots and doubled slashes inside the alias
    {"DATA:.//art/../plain.txt", "plain", FilePath::FT_FILE},
    // one character away
    {"DATA:plain.tx", "-", FilePath::FT_NONE},
    // a folder is no file, and a file no folder
    {"DATA:", "-", FilePath::FT_DIRECTORY},
    {"DATA:art/", "-", FilePath::FT_DIRECTORY},
    {"DATA:plain.txt/x", "-", FilePath::FT_NONE},
    // out of the alias: by "..", and by links as the fuzz target has them
    {"DATA:../plain.txt", "-", FilePath::FT_NONE},
    {"DATA:upFile", "-", FilePath::FT_NONE},
    {"DATA:dangling", "-", FilePath::FT_NONE},
    // links inside it
    {"DATA:alsoArt/back", "plain", FilePath::FT_FILE},
    {"DATA:absolute/tank.tga", "tank", FilePath::FT_FILE},
    // what is neither file nor folder; the open must not wait for somebody at the other end
    {"DATA:pipe", "-", FilePath::FT_OTHER},
    {"", "-", FilePath::FT_NONE},
};

TEST_F(FilePathTest, ReadsThroughAliases) {
    link("../outside.txt", "upFile");
    link("nowhere", "dangling");
    link("Art", "alsoArt");
    link("../plain.txt", "Art/back");
    link((folder / "base/Art").c_str(), "absolute");
    ASSERT_EQ(::mkfifo((folder / "base/pipe").c_str(), 0666), 0);
    for (auto const & [path, content, type] : c_readCases) {
        SCOPED_TRACE(path);
        EXPECT_EQ(contentOf(path), content);
        EXPECT_EQ(FilePath::GetFileType(path), type);
    }
    // the path as it is given counts, not what it leads to
    std::string const longest =
        "DATA:" + std::string(c_maxPath - 1 - 14, '/').replace(0, 1, ".") + "plain.txt";
    ASSERT_EQ(longest.size(), c_maxPath - 1);
    EXPECT_EQ(contentOf(longest), "plain");
    EXPECT_EQ(contentOf("DATA:./" + longest.substr(6)), "-");
    EXPECT_EQ(FilePath::GetFileType(("DATA:./" + longest.substr(6)).c_str()), FilePath::FT_NONE);

    EXPECT_FALSE(FilePath::OpenStream("DATA:plain.txt", 0));
    EXPECT_FALSE(FilePath::OpenStream("DATA:plain.txt", 3));
    EXPECT_FALSE(FilePath::OpenStream(nullptr, c_streamRead));
}

TEST_F(FilePathTest, WritesInsideTheAliasOnly) {
    link("../new.txt", "upFile");
    link("target.txt", "dangling");
    for (char const * const path : {"DATA:../new.txt", "DATA:upFile", "DATA:art", "DATA:", "DATA:new/",
                                    "DATA:new/.", "NONE:new.txt", "DATA:plain.txt/new.txt"})
        EXPECT_FALSE(canWrite(path)) << path;
    EXPECT_EQ(folder.CountEntries(), 2u);
    EXPECT_FALSE(stdfs::exists(folder / "base/new"));

    // missing folders are created, existing ones are found in their own spelling; a new file keeps its own
    EXPECT_TRUE(canWrite("DATA:ART\\New\\File.txt"));
    EXPECT_EQ(folder.ReadFile("base/Art/New/File.txt"), "new");
    EXPECT_TRUE(canWrite("DATA:PLAIN.txt"));
    EXPECT_EQ(folder.ReadFile("base/plain.txt"), "new");
    EXPECT_TRUE(canWrite("DATA:dangling"));
    EXPECT_EQ(folder.ReadFile("base/target.txt"), "new");

    // the alias's own directory too
    ASSERT_TRUE(FilePath::SetAlias("data", (folder / "later/logs").c_str()));
    EXPECT_EQ(FilePath::GetFileType("DATA:"), FilePath::FT_NONE);
    EXPECT_TRUE(canWrite("DATA:x.log"));
    EXPECT_EQ(folder.ReadFile("later/logs/x.log"), "new");
}

TEST_F(FilePathTest, RefusesBadAliases) {
    for (char const * const name : {"", "a/b", "a:", static_cast<char const *>(nullptr)})
        EXPECT_FALSE(FilePath::SetAlias(name, "/tmp"));
    EXPECT_FALSE(FilePath::SetAlias("a", ""));
    EXPECT_TRUE(FilePath::RemoveAlias("dAtA"));
    EXPECT_FALSE(FilePath::RemoveAlias("data"));
}

TEST_F(FilePathTest, ConvertsToRealPaths) {
    link("Art", "alsoArt");
    std::string const root = (folder / "base").string();

    std::pair<std::string, std::string> const rows[] = {
        // "" when it cannot be
        {"DATA:", root},
        {"DATA:alsoart/TANK.tga", root + "/alsoArt/Tank.tga"},
        // what is not there keeps its spelling
        {"DATA:art/New.txt", root + "/Art/New.txt"},
        {"DATA:New/../Other/x.txt", root + "/Other/x.txt"},
        {"NONE:x", ""},
        {"no/alias.txt", "no/alias.txt"},
        // the result, too, has at most 259 characters
        {"DATA:" + std::string(c_maxPath - 2 - root.size(), 'x'),
         root + '/' + std::string(c_maxPath - 2 - root.size(), 'x')},
        {"DATA:" + std::string(c_maxPath - 1 - root.size(), 'x'), ""},
    };

    for (auto const & [aliased, converted] : rows) {
        char path[c_maxPath];
        std::strcpy(path, aliased.c_str());
        EXPECT_EQ(FilePath::ConvertFromAlias(path, c_streamWrite, nullptr), !converted.empty()) << aliased;
        EXPECT_EQ(path, converted.empty() ? aliased : converted);
    }
    EXPECT_FALSE(stdfs::exists(folder / "base/Other")) << "nothing is created";
}

TEST_F(FilePathTest, RawPathsOpenAsTheyStand) {
    auto const opensWide = [](char16_t const * path) {
        return std::unique_ptr<ByteStream>(FilePathHDRaw::UnaliasedFileOpen(path, c_streamWrite, false)) !=
               nullptr;
    };
    EXPECT_EQ(contentOf((folder / "base/plain.txt").string()), "plain");
    EXPECT_EQ(contentOf((folder / "base/Plain.txt").string()), "-");
    EXPECT_FALSE(canWrite((folder / "missing/new.txt").string()));
    std::string const plain = (folder / "base/plain.txt").string();
    for (std::size_t const length : {c_maxPath - 1, c_maxPath + 0}) {
        std::string path = plain;
        path.insert(0, length - path.size(), '/'); // more slashes in front change nothing
        EXPECT_EQ(contentOf(path), length < c_maxPath ? "plain" : "-");
        EXPECT_EQ(canWrite(path), length < c_maxPath);
        folder.WriteFile("base/plain.txt", "plain");
    }

    // a ':' is an ordinary character to the unaliased form
    stdfs::current_path(folder.Path());
    EXPECT_TRUE(opensWide(u"DATA:x"));
    EXPECT_TRUE(stdfs::exists("DATA:x"));
    EXPECT_TRUE(opensWide(u"\u00E4\U0001F600"));
    EXPECT_TRUE(stdfs::exists("\xC3\xA4\xF0\x9F\x98\x80"));
    EXPECT_FALSE(opensWide(u"\xD83D")) << "half a surrogate pair names nothing";
    EXPECT_FALSE(opensWide(nullptr));
    stdfs::current_path("/");
}

#if defined(__x86_64__)
TEST(FilePath, ListenersKeepTheirSlots) {
    EXPECT_EQ(SlotOf(&FilePath::IFileChangeNotify::OnFileChanged), 0u);
    EXPECT_TRUE(FollowTheDestructor({SlotOf(&FilePath::Listener::OnFileOpen)}));
}
#endif

class OpenLog : public FilePath::Listener {
public:
    void OnFileOpen(char16_t const * path, char const * first, char const * second) override {
        lines.push_back(std::string(first) + '|' + stdfs::path(path).string() + '|' + second);
        if (leaves)
            FilePath::DetachListener(this);
    }

    std::vector<std::string> lines;
    bool leaves = false;
};

TEST_F(FilePathTest, ListenersHearOfEveryOpenThatSucceeds) {
    OpenLog log;
    FilePath::AttachListener(&log);
    FilePath::AttachListener(&log);
    std::string const raw = (folder / "base/plain.txt").string();
    FilePath::OpenStream("data:Plain.txt", c_streamRead);
    FilePath::OpenStream("DATA:missing", c_streamRead);
    FilePath::OpenStream("DATA:plain.txt", c_streamWrite);
    log.leaves = true; // from inside itself
    delete FilePathHDRaw::UnaliasedFileOpen(raw.c_str(), c_streamRead, false);
    FilePath::OpenStream("DATA:plain.txt", c_streamRead);
    EXPECT_EQ(log.lines,
              (std::vector<std::string>{"data|Plain.txt|read", "DATA|plain.txt|write", "|" + raw + "|read"}));
}

TEST_F(FilePathTest, DetachWaitsForAnotherThreadInsideTheListener) {
    struct SlowListener : FilePath::Listener, SlowCall {
        void OnFileOpen(char16_t const *, char const *, char const *) override { Run(); }
    } listener;

    FilePath::AttachListener(&listener);
    listener.ExpectDetachWaits([] { FilePath::OpenStream("DATA:plain.txt", c_streamRead); },
                               [&] { FilePath::DetachListener(&listener); });
}

// Meant for the thread sanitizer: a listener that is gone after its detach must not be touched any more.
TEST_F(FilePathTest, OpensAndAttachesOnTwoThreads) {
    std::atomic<bool> done{false};
    std::thread opener([&] {
        for (int i = 0; i < 300; ++i)
            EXPECT_EQ(contentOf("DATA:Art/Tank.tga"), "tank");
        done = true;
    });
    while (!done) {
        OpenLog log;
        FilePath::AttachListener(&log);
        FilePath::SetAlias("OTHER", folder.Path().c_str());
        FilePath::DetachListener(&log);
    }
    opener.join();
    FilePath::RemoveAlias("OTHER");
}

} // namespace
