#pragma once

// The load scheduler: announces the files of one batch to the operating system, so that it reads ahead while
// the first of them are being parsed. There is one shared batch.
//
//     BeginSharedBatch, AddFile ..., ScheduleSharedBatch, (load the files), EndSharedBatch
//
// Threads: one at a time; everything happens during the calls.

#include "Cross/engine/core/Export.h"
#include "Cross/engine/core/FastDelegate.h"

namespace LoadScheduler {

// The shared batch, as its callback sees it.
class CROSS_ENGINE_API Batch {
public:
    char const * GetName() const;
    unsigned int GetFileCount() const;

    struct Data;

    explicit Batch(Data const & data) : data(data) {}

private:
    Data const & data;
};

// Opens the batch; one that is open is ended first. The name is copied. `onDone`, which may be empty, is
// called with the batch and `context` when the batch ends, also when it was aborted.
CROSS_ENGINE_API void
BeginSharedBatch(char const * name, fastdelegate::FastDelegate<void(Batch *, void *)> onDone, void * context);

// Adds a file by its path, aliased or raw, between Begin and Schedule; ignored otherwise.
CROSS_ENGINE_API void AddFile(char const * path);

// Tells the operating system to read the files ahead. A file that cannot be opened is skipped: its loader
// will report it.
CROSS_ENGINE_API void ScheduleSharedBatch();

// Closes the batch and calls `onDone`. Does nothing when none is open.
CROSS_ENGINE_API void EndSharedBatch();

// Gives the batch up: nothing more is read ahead. EndSharedBatch follows. Does nothing when none is open.
CROSS_ENGINE_API void AbortSharedBatch();

} // namespace LoadScheduler
