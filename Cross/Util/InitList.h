#pragma once

// Staged loading: a start-up or level load as an ordered list of steps. Each call of Manager::Load gives one
// step a slice of time, so a loading screen can be drawn in between, and LoadProgress turns weights, clock
// and the steps' own figures into one number for its bar. A load that fails, or must be undone, unwinds its
// steps in reverse order.
//
// Threads: a manager and its entries belong to one thread at a time.
// Lifetime: the manager owns its entries; the text of its own name must outlive it.

#include "Cross/engine/core/Export.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace InitList {

// Answer of a step, and of the whole list.
enum LoadResult : std::int32_t {
    InProgress = 0, // call again
    Finished = 1,   // the step, or the list, is done
    Failed = 2      // the step, and so the list, has failed
};

// One step, implemented by the application.
class CROSS_UTIL_API Entry {
public:
    virtual ~Entry();

    // Does one slice of the step.
    virtual LoadResult Load() = 0;

    // Undoes a step that finished.
    virtual void Unload() = 0;

    // Share of this step that is done, in [0, 1].
    virtual float GetProgress() = 0;

    // Undoes the step that is running or has failed; also called on the next step in line, though it never
    // ran.
    virtual void Abort() = 0;
};

class CROSS_UTIL_API Manager {
public:
    enum State : std::int32_t {
        Unloaded = 0,  // nothing is loaded; Load starts from the first step
        Loading = 1,   // steps are running
        Loaded = 2,    // all steps are finished
        LoadFailed = 3 // a step has failed; the steps before it are still loaded
    };

    // The name stands in messages; null or empty becomes "*Unnamed*".
    explicit Manager(char const * name = nullptr);
    Manager(Manager const &) = delete;
    Manager & operator=(Manager const &) = delete;

    // Deletes the entries without undoing them.
    ~Manager();

    // Appends a step and takes over `entry`; a null one is ignored. `weight` is its expected duration in
    // seconds; a negative one or NaN counts as 0. The list restarts from its first step at the next Load,
    // with nothing undone, also when a step registers another while it runs.
    void Register(Entry * entry, char const * name, float weight);

    // Runs one slice of the current step. Finished comes one call after the last step finished. After Failed,
    // which is traced, the caller may Load again, which repeats the step, or Unload.
    LoadResult Load();

    // Loads to the end without a pause. True when all steps finished; on a failure everything is undone.
    bool LoadAll();

    // Aborts the current step, then undoes those before it from the last to the first. The steps stay
    // registered. Does nothing in state Unloaded.
    void Unload();

    // Deletes every entry in order, undoing nothing, and leaves an empty list in state Unloaded.
    void ClearRegister();

    // Share of the whole list that is done, in [0, 1] as long as the steps' own figures are; 1 when nothing
    // is left.
    float LoadProgress() const;

    State GetState() const;

private:
    struct Step {
        std::string name;
        std::unique_ptr<Entry> entry;
        float endWeight; // sum of the weights up to and including this step
    };

    State state = Unloaded;
    std::vector<Step> steps;
    float totalWeight = 0.0f;
    std::size_t current = 0; // next step to run; the number of steps when all have finished
    float doneWeight = 0.0f;
    char const * name;
};

} // namespace InitList
