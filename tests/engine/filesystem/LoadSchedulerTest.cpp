#include "Cross/engine/filesystem/LoadScheduler.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using Ended = std::vector<std::string>;

void noteEnd(LoadScheduler::Batch * batch, void * context) {
    static_cast<Ended *>(context)->push_back(batch->GetName() + std::to_string(batch->GetFileCount()));
}

void noteEndAndBeginNext(LoadScheduler::Batch * batch, void * context) {
    noteEnd(batch, context);
    LoadScheduler::BeginSharedBatch("next", &noteEnd, context);
}

TEST(LoadScheduler, TakesFilesBetweenBeginAndSchedule) {
    TemporaryFolder folder;
    folder.WriteFile("file", "content");
    Ended ended;
    LoadScheduler::AddFile("early");
    LoadScheduler::BeginSharedBatch("batch", &noteEnd, &ended);
    LoadScheduler::AddFile((folder / "file").c_str());
    LoadScheduler::AddFile((folder / "missing").c_str());
    LoadScheduler::AddFile(nullptr);
    LoadScheduler::ScheduleSharedBatch();
    LoadScheduler::AddFile("late");
    EXPECT_EQ(ended, Ended{});
    LoadScheduler::EndSharedBatch();
    EXPECT_EQ(ended, Ended{"batch2"});
}

TEST(LoadScheduler, EachBatchEndsOnce) {
    Ended ended;
    LoadScheduler::BeginSharedBatch("aborted", &noteEnd, &ended);
    LoadScheduler::AbortSharedBatch();
    LoadScheduler::AddFile("late");
    LoadScheduler::EndSharedBatch();
    LoadScheduler::ScheduleSharedBatch();
    EXPECT_EQ(ended, Ended{"aborted0"});

    // a begin ends the batch that is open, also from inside another one's end
    LoadScheduler::BeginSharedBatch("first", &noteEnd, &ended);
    LoadScheduler::BeginSharedBatch(nullptr, &noteEndAndBeginNext, &ended);
    LoadScheduler::EndSharedBatch();
    LoadScheduler::EndSharedBatch();
    LoadScheduler::BeginSharedBatch("no callback", nullptr, nullptr);
    LoadScheduler::EndSharedBatch();
    EXPECT_EQ(ended, (Ended{"aborted0", "first0", "0", "next0"}));
}

} // namespace
