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

TEST(LoadScheduler, EachBatchEndsOnceWithTheFilesThatItTook) {
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

    LoadScheduler::BeginSharedBatch("aborted", &noteEnd, &ended);
    LoadScheduler::AbortSharedBatch();
    LoadScheduler::AddFile("late");
    // a begin ends the batch that is open, also from inside another one's end
    LoadScheduler::BeginSharedBatch(nullptr, &noteEndAndBeginNext, &ended);
    LoadScheduler::EndSharedBatch();
    LoadScheduler::EndSharedBatch();
    LoadScheduler::EndSharedBatch();
    LoadScheduler::ScheduleSharedBatch();
    LoadScheduler::BeginSharedBatch("no callback", nullptr, nullptr);
    LoadScheduler::EndSharedBatch();
    EXPECT_EQ(ended, (Ended{"batch2", "aborted0", "0", "next0"}));
}

} // namespace
