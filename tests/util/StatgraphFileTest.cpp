#include "Cross/Util/StatgraphFile.h"

#include "tests/support/AliasedFolder.h"
#include "tests/support/CrashFiles.h"
#include "tests/support/GraphSink.h"
#include "tests/support/HandClock.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <limits>
#include <memory>

namespace {

// A sink that is updated with the channels of the process, and the file that it writes.
class StatgraphFileTest : public testing::Test {
protected:
    ~StatgraphFileTest() override {
        sink.reset();
        ResetStatGraph();
    }

    static void Enable(char const * name, float sample) {
        StatGraph::ChannelCreate(name);
        StatGraph::ChannelEnable(name, true);
        StatGraph::ChannelSubmit(name, sample);
    }

    void Update() {
        StatGraph::Register(sink.get());
        StatGraph::Update();
        StatGraph::Unregister(sink.get());
    }

    // The file; the head only when the sink is gone.
    std::string Text() const {
        std::string const name = folder.OnlyEntry();
        EXPECT_EQ(name.substr(0, 10), "statgraph.");
        EXPECT_EQ(name.substr(name.size() - 4), ".txt");
        return folder.ReadFile(name);
    }

    std::string WholeText() {
        sink.reset();
        return Text();
    }

    AliasedFolder folder{"log"};
    HandClock clock;
    std::unique_ptr<StatGraph::Sink> sink{StatgraphFile::Create()};
};

using StatgraphFileDeathTest = StatgraphFileTest;

} // namespace

// The graph deletes the sink when the channels are gone, behind the end of main.
TEST_F(StatgraphFileDeathTest, TheNamesAreWrittenAtUnload) {
    auto const leaveRegistered = [this] {
        Enable("a", 1.0f);
        StatGraph::Register(sink.release());
        StatGraph::Update();
        std::exit(0);
    };
    EXPECT_EXIT(leaveRegistered(), testing::ExitedWithCode(0), "");
    EXPECT_EQ(Text(), "0.000,1.000,\ntime,a,\n");
}

TEST_F(StatgraphFileTest, NothingIsWrittenBeforeAChannelIsEnabled) {
    EXPECT_EQ(folder.CountEntries(), 0u);
    Update();
    StatGraph::ChannelCreate("disabled");
    Update();
    EXPECT_EQ(WholeText(), "");
    EXPECT_TRUE(VisitedCrashFiles().empty()) << "a file that is complete tells nothing of a crash";
}

TEST_F(StatgraphFileTest, ColumnsAreAddedAtTheRightAndStay) {
    StatGraph::ChannelCreate("c");
    Enable("B", 2.5f);
    clock.milliseconds = 12;
    Update();
    EXPECT_EQ(Text(), "0.012,2.500,\n") << "flushed line by line";
    Enable("d", -0.0f);
    Enable("a", 1e6f);
    clock.milliseconds = 4294967295;
    Update();
    StatGraph::ChannelEnable("b", false);
    StatGraph::SetPause(true);
    Update();
    StatGraph::SetPause(false);
    StatGraph::ChannelDestroy("a");
    StatGraph::ChannelEnable("b", true);
    StatGraph::ChannelSubmit("b", 1.0625f);
    Update();
    Enable("a", 7.0f);
    Update();
    EXPECT_EQ(WholeText(), "0.012,2.500,\n"
                           "4294967.295,2.500,1000000.000,-0.000,\n"
                           "4294967.295,,1000000.000,-0.000,\n"
                           "4294967.295,1.062,,-0.000,\n"
                           "4294967.295,1.062,7.000,-0.000,\n"
                           "time,b,a,d,\n");
}

TEST_F(StatgraphFileTest, The129thChannelHasNoColumn) {
    for (int i = 0; i < 129; ++i)
        Enable(("c" + std::to_string(100 + i)).c_str(), static_cast<float>(i));
    Update();
    StatGraph::ChannelDestroy("c100");
    Update();
    std::string const text = WholeText();
    EXPECT_EQ(std::count(text.begin(), text.end(), ','), 3 * 129);
    EXPECT_EQ(text.find("128.000"), std::string::npos);
    EXPECT_EQ(text.find("c228"), std::string::npos);
    EXPECT_NE(text.find(",c227,\n"), std::string::npos);
}

// 128 columns of the widest values and names take more than a row holds. With 89 values of 45 bytes it still
// has the commas of the others; a 90th value would leave no byte for the end of the text.
TEST_F(StatgraphFileTest, WhatDoesNotFitLeavesTheOthersInTheirColumns) {
    for (int i = 0; i < 127; ++i)
        Enable((std::to_string(100 + i) + std::string(300, 'x')).c_str(),
               std::numeric_limits<float>::lowest());
    Enable("z", 1.0f);
    clock.milliseconds = 100'000;
    Update();
    std::string const text = WholeText();
    std::string const row = text.substr(0, text.find('\n') + 1), head = text.substr(row.size());
    for (std::string const & line : {row, head}) {
        EXPECT_EQ(std::count(line.begin(), line.end(), ','), 129);
        EXPECT_LE(line.size(), 4096u);
    }
    EXPECT_EQ(row.substr(0, 49), "100.000,-340282346638528859811704183484516925440.");
    EXPECT_EQ(std::count(row.begin(), row.end(), '-'), 89);
    EXPECT_EQ(head.substr(0, 12), "time,100xxxx");
}

TEST_F(StatgraphFileTest, AFileThatCannotBeMadeIsTriedAgain) {
    folder.WriteFile("block", "");
    FilePath::SetAlias("log", (folder / "block").c_str());
    Enable("b", 1.0f);
    Update();
    FilePath::SetAlias("log", folder.Path().c_str());
    std::filesystem::remove(folder / "block");
    clock.milliseconds = 1000;
    Enable("a", 2.0f);
    Update();
    EXPECT_EQ(WholeText(), "1.000,1.000,2.000,\ntime,b,a,\n") << "columns open without a file too";

    // without any file the head is dropped too
    FilePath::RemoveAlias("log");
    sink.reset(StatgraphFile::Create());
    Update();
    sink.reset();
    EXPECT_EQ(folder.CountEntries(), 1u);
}
