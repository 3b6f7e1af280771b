#include "Cross/engine/filesystem/FilePath.h"
#include "tests/support/SlowCall.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/TraceCapture.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <vector>

#include <unistd.h>

namespace {

namespace stdfs = std::filesystem;
using Paths = std::vector<std::string>;

class Recorder : public FilePath::IFileChangeNotify {
public:
    ~Recorder() override { FilePath::DetachFileChangeNotification(this, nullptr); }

    void OnFileChanged(char const * path) override {
        paths.push_back(path);
        if (leaves)
            FilePath::DetachFileChangeNotification(this, nullptr);
    }

    // What one pump brings.
    Paths Pump() {
        paths.clear();
        calls = FilePath::PumpFileChanges();
        return paths;
    }

    Paths paths;
    unsigned int calls = 0; // of all listeners
    bool leaves = false;
};

class FileWatchTest : public testing::Test {
protected:
    FileWatchTest() {
        folder.WriteFile("root/art/tank.tga", "old");
        FilePath::SetAlias("DATA", (folder / "root").c_str());
        FilePath::AttachFileChangeNotification("DATA:", &recorder);
    }

    ~FileWatchTest() override { FilePath::RemoveAlias("DATA"); }

    TemporaryFolder folder;
    std::string const tank = folder / "root/art/tank.tga";
    Recorder recorder;
};

void append(std::string const & path, char const * text, std::ios::openmode mode = std::ios::app) {
    std::ofstream(path, mode) << text;
}

TEST_F(FileWatchTest, EveryWayOfEditorsToSaveGivesOneCall) {
    std::pair<char const *, std::function<void()>> const ways[] = {
        {"in place", [&] { append(tank, "new", std::ios::trunc); }},
        {"rename over",
         [&] {
             append(tank + ".tmp", "new");
             stdfs::rename(tank + ".tmp", tank);
         }},
        {"delete and create",
         [&] {
             stdfs::remove(tank);
             append(tank, "new");
         }},
        {"swap with backup",
         [&] {
             stdfs::rename(tank, tank + "~");
             append(tank, "new");
             stdfs::remove(tank + "~");
         }},
        {"link over",
         [&] {
             append(tank + ".tmp", "new");
             stdfs::remove(tank);
             stdfs::create_hard_link(tank + ".tmp", tank);
             stdfs::remove(tank + ".tmp");
         }},
    };
    Recorder one; // of a single file
    FilePath::AttachFileChangeNotification("DATA:art/tank.tga", &one);
    for (auto const & [way, save] : ways) {
        SCOPED_TRACE(way);
        save();
        save();
        one.paths.clear();
        EXPECT_EQ(recorder.Pump(), Paths{"DATA:art/tank.tga"});
        EXPECT_EQ(one.paths, Paths{"DATA:art/tank.tga"});
        EXPECT_EQ(recorder.Pump(), Paths{});
    }
}

TEST_F(FileWatchTest, UnfinishedFilesAreNotTold) {
    std::ofstream open(folder / "root/new.txt");
    open << "half" << std::flush;
    EXPECT_EQ(recorder.Pump(), Paths{});
    open.close();
    EXPECT_EQ(recorder.Pump(), Paths{"DATA:new.txt"});
    stdfs::remove(folder / "root/new.txt");
    EXPECT_EQ(recorder.Pump(), Paths{});
}

TEST_F(FileWatchTest, SavesOfThisLayerShowUnderTheirNameOnly) {
    for (char const * const path : {"DATA:art/tank.tga", "DATA:art/fresh.tga"}) {
        ByteStreamProxy stream = FilePath::OpenStream(path, c_streamWrite);
        stream->Write("new", 3);
        EXPECT_EQ(recorder.Pump(), Paths{});
        stream = ByteStreamProxy();
        EXPECT_EQ(recorder.Pump(), Paths{path});
    }
    // nor when the folder is looked through while the temporary file stands in it
    folder.WriteFile("root/new/file.txt", "x");
    ByteStreamProxy const stream = FilePath::OpenStream("DATA:new/file.txt", c_streamWrite);
    EXPECT_EQ(recorder.Pump(), Paths{"DATA:new/file.txt"});
}

TEST_F(FileWatchTest, NewAndRenamedFoldersAreWatched) {
    folder.WriteFile("root/a/b/c/deep.txt", "x");
    EXPECT_EQ(recorder.Pump(), Paths{"DATA:a/b/c/deep.txt"});
    stdfs::rename(folder / "root/a", folder / "root/z");
    EXPECT_EQ(recorder.Pump(), Paths{"DATA:z/b/c/deep.txt"});
    stdfs::rename(folder / "root/z", folder / "away");
    folder.WriteFile("root/z/b/c/deep.txt", "x");
    EXPECT_EQ(recorder.Pump(), Paths{"DATA:z/b/c/deep.txt"});
    append(folder / "away/b/c/deep.txt", "y");
    EXPECT_EQ(recorder.Pump(), Paths{});
}

TEST_F(FileWatchTest, PathsMayAppearAfterTheAttach) {
    Recorder early;
    FilePath::AttachFileChangeNotification("LATE:sub/", &early);
    append(tank, "x");
    EXPECT_EQ(early.Pump(), Paths{});

    // what an alias uncovers is no change, what happens from then on is
    for (std::string const root : {"first", "second"}) {
        folder.WriteFile(root + "/sub/there.txt", "x");
        FilePath::SetAlias("LATE", (folder / root).c_str());
        folder.WriteFile("first/sub/new.txt", root); // only the first time in the alias
        append(folder / (root + "/sub/there.txt"), "y");
        EXPECT_EQ(early.Pump(), root == "first" ? (Paths{"LATE:sub/new.txt", "LATE:sub/there.txt"})
                                                : Paths{"LATE:sub/there.txt"});
    }
    // a folder that comes back brings changes
    stdfs::remove_all(folder / "second");
    EXPECT_EQ(early.Pump(), Paths{});
    folder.WriteFile("second/sub/there.txt", "again");
    EXPECT_EQ(early.Pump(), Paths{"LATE:sub/there.txt"});
    FilePath::RemoveAlias("LATE");
}

TEST_F(FileWatchTest, OneCallPerPathAndListener) {
    Recorder raw;
    FilePath::AttachFileChangeNotification((folder / "root/art/").c_str(), &raw);
    FilePath::AttachFileChangeNotification("DATA:art/later.tga", &raw);
    FilePath::AttachFileChangeNotification("DATA:", &recorder);
    FilePath::AttachFileChangeNotification("DATA:art", &recorder);
    append(tank, "x");
    append(folder / "root/art/later.tga", "x");
    EXPECT_EQ(recorder.Pump(), (Paths{"DATA:art/later.tga", "DATA:art/tank.tga"}));
    EXPECT_EQ(recorder.calls, 5u);
    EXPECT_EQ(raw.paths, (Paths{folder / "root/art/later.tga", tank, "DATA:art/later.tga"}));

    FilePath::DetachFileChangeNotification(&recorder, "DATA:other");
    FilePath::DetachFileChangeNotification(&recorder, "data:\\");
    append(tank, "x");
    append(folder / "root/top.txt", "x");
    EXPECT_EQ(recorder.Pump(), Paths{"DATA:art/tank.tga"});
    recorder.leaves = true; // inside the first of two calls
    append(tank, "x");
    append(folder / "root/art/later.tga", "x");
    EXPECT_EQ(recorder.Pump(), Paths{"DATA:art/later.tga"});
    append(tank, "x");
    EXPECT_EQ(recorder.Pump(), Paths{});
}

TEST_F(FileWatchTest, AnOverflowIsTracedAndLosesNothing) {
    unsigned int room = 0;
    std::ifstream("/proc/sys/fs/inotify/max_queued_events") >> room;
    ASSERT_LE(room, 100'000u);
    for (unsigned int i = 0; i < room / 2; ++i)
        append(folder / ("root/" + std::to_string(i % 2)), "x");
    append(tank, "x");
    folder.WriteFile("root/new/file.txt", "x");
    TraceCapture trace;
    EXPECT_EQ(recorder.Pump(), (Paths{"DATA:0", "DATA:1", "DATA:art/tank.tga", "DATA:new/file.txt"}));
    EXPECT_EQ(trace.lines.size(), 1u);
}

TEST_F(FileWatchTest, DetachWaitsForAnotherThreadInsideTheListener) {
    struct SlowListener : FilePath::IFileChangeNotify, SlowCall {
        void OnFileChanged(char const *) override { Run(); }
    } listener;

    FilePath::AttachFileChangeNotification("DATA:art", &listener);
    append(tank, "x");
    listener.ExpectDetachWaits([] { FilePath::PumpFileChanges(); },
                               [&] { FilePath::DetachFileChangeNotification(&listener, "DATA:art"); });
}

} // namespace
