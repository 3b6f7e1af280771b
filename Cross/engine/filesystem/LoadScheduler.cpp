#include "Cross/engine/filesystem/LoadScheduler.h"

#include "Cross/engine/filesystem/FilePlace.h"

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <fcntl.h>

struct LoadScheduler::Batch::Data {
    std::string name;
    std::vector<std::string> files;
    fastdelegate::FastDelegate<void(Batch *, void *)> onDone;
    void * context;
    bool takesFiles;
};

namespace {

std::unique_ptr<LoadScheduler::Batch::Data> & sharedBatch() {
    static auto * const instance = new std::unique_ptr<LoadScheduler::Batch::Data>;
    return *instance;
}

void readAhead(std::string const & path) {
    Descriptor const file = OpenForReading(path.c_str());
    if (file)
        ::posix_fadvise(file.Get(), 0, 0, POSIX_FADV_WILLNEED);
}

} // namespace

namespace LoadScheduler {

char const * Batch::GetName() const { return data.name.c_str(); }

unsigned int Batch::GetFileCount() const { return static_cast<unsigned int>(data.files.size()); }

void BeginSharedBatch(char const * name, fastdelegate::FastDelegate<void(Batch *, void *)> onDone,
                      void * context) {
    EndSharedBatch();
    sharedBatch() = std::make_unique<Batch::Data>(Batch::Data{name ? name : "", {}, onDone, context, true});
}

void AddFile(char const * path) {
    if (sharedBatch() && sharedBatch()->takesFiles && path)
        sharedBatch()->files.emplace_back(path);
}

void ScheduleSharedBatch() {
    if (!sharedBatch() || !std::exchange(sharedBatch()->takesFiles, false))
        return;
    for (std::string const & file : sharedBatch()->files)
        readAhead(file);
}

void EndSharedBatch() {
    // Taken out first: the callback may begin the next batch.
    std::unique_ptr<Batch::Data> const done = std::move(sharedBatch());
    if (!done || !done->onDone)
        return;
    Batch batch(*done);
    done->onDone(&batch, done->context);
}

void AbortSharedBatch() {
    if (sharedBatch())
        sharedBatch()->takesFiles = false;
}

} // namespace LoadScheduler
