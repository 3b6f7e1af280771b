#include "Cross/Util/InitList.h"

#include "Cross/engine/diagnostics/Trace.h"
#include "Cross/engine/platform/Time.h"

#include <algorithm>
#include <utility>

namespace InitList {

namespace {

// Seconds between two readings of the millisecond clock, which may wrap in between.
float elapsedSeconds(std::uint32_t before, std::uint32_t after) {
    double milliseconds = static_cast<std::int32_t>(after - before);
    if (milliseconds < 0.0)
        milliseconds += 4294967296.0;
    return static_cast<float>(milliseconds * 0.001);
}

} // namespace

Entry::~Entry() = default;

Manager::Manager(char const * name) : name(name && *name ? name : "*Unnamed*") {}

Manager::~Manager() { ClearRegister(); }

void Manager::Register(Entry * entry, char const * stepName, float weight) {
    std::unique_ptr<Entry> owned(entry);
    if (!owned)
        return;
    float const endWeight = totalWeight + (weight > 0.0f ? weight : 0.0f);
    steps.push_back({stepName ? stepName : "", std::move(owned), endWeight});
    totalWeight = endWeight;
    current = 0;
    doneWeight = 0.0f;
}

LoadResult Manager::Load() {
    if (state == Unloaded) {
        state = Loading;
        doneWeight = 0.0f;
    }
    if (current == steps.size()) {
        state = Loaded;
        doneWeight = totalWeight;
        return Finished;
    }

    // A step may register others while it runs, which moves the steps and restarts the list.
    std::size_t const running = current;
    std::size_t const countBefore = steps.size();
    std::uint32_t const before = Plat::Time::GetTimeMilliseconds();
    LoadResult const answer = steps[running].entry->Load();
    float const elapsed = elapsedSeconds(before, Plat::Time::GetTimeMilliseconds());
    bool const restarted = steps.size() != countBefore;

    Step const & step = steps[running];
    switch (answer) {
    case InProgress:
        if (!restarted)
            doneWeight = std::min(doneWeight + elapsed, step.endWeight);
        return InProgress;
    case Finished:
        if (!restarted) {
            doneWeight = step.endWeight;
            ++current;
        }
        return InProgress;
    case Failed:
        dbTimeStampedTracefAux("%s -- Failed load for step: '%s'", name, step.name.c_str());
        state = LoadFailed;
        return Failed;
    default:
        return InProgress;
    }
}

bool Manager::LoadAll() {
    LoadResult result = Load();
    while (result != Finished && result != Failed)
        result = Load();
    if (result == Finished)
        return true;
    Unload();
    return false;
}

void Manager::Unload() {
    if (state == Unloaded)
        return;
    if (current != steps.size())
        steps[current].entry->Abort();
    for (std::size_t i = current; i-- > 0;)
        steps[i].entry->Unload();
    current = 0;
    doneWeight = 0.0f;
    state = Unloaded;
}

void Manager::ClearRegister() {
    state = Unloaded;
    for (Step & step : steps)
        step.entry.reset();
    steps.clear();
    totalWeight = 0.0f;
    doneWeight = 0.0f;
    current = 0;
}

float Manager::LoadProgress() const {
    if (!(totalWeight > doneWeight) || current == steps.size())
        return 1.0f;
    Step const & step = steps[current];
    return ((step.endWeight - doneWeight) * step.entry->GetProgress() + doneWeight) / totalWeight;
}

Manager::State Manager::GetState() const { return state; }

} // namespace InitList
