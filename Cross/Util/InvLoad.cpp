// Batched loading: the pump and the loads at once.

#include "Cross/Util/Inv.h"
#include "Cross/Util/InvData.h"
#include "Cross/engine/core/Text.h"
#include "Cross/engine/filesystem/LoadScheduler.h"
#include "Cross/engine/platform/Window.h"

#include <algorithm>
#include <vector>

namespace {

constexpr std::size_t c_loadCapacity = 0x800;
constexpr std::size_t c_postCapacity = 0xE00;
constexpr unsigned int c_itemsAtOnce = 100000;
constexpr std::uint32_t c_pauseMilliseconds = 2;

// A list of resources and how far the pump has come with it. It holds no references.
struct Stage {
    std::vector<Inv::Resource *> list;
    unsigned int remaining = 0; // items not yet taken
    unsigned int done = 0;      // position in the list

    // Runs a step on the next `maxItems` items at most. Gives the number of items left.
    unsigned int Run(unsigned int maxItems, void (*step)(Inv::Resource *)) {
        unsigned int const count = std::min(remaining, maxItems);
        std::size_t const end = std::min<std::size_t>(std::size_t{done} + count, list.size());
        for (std::size_t i = done; i < end; ++i)
            step(list[i]);
        done += count;
        remaining -= count;
        return remaining;
    }

    void Clear() {
        list.clear();
        remaining = 0;
        done = 0;
    }
};

// The pump's state belongs to the process, not to the warehouse, and survives Shutdown.
struct Pump {
    Stage load; // the open batch, sorted
    Stage post; // loaded, with PostLoad owed
};

Pump & pump() {
    static Pump instance;
    return instance;
}

// The bins that load in batches, in the order of a batch: by name, then as they came.
std::vector<InvBin *> sortedDeferrableBins(std::list<InvBin> & bins) {
    std::vector<InvBin *> sorted;
    for (InvBin & bin : bins)
        if (bin.type->CanDeferLoading())
            sorted.push_back(&bin);
    std::stable_sort(sorted.begin(), sorted.end(), [](InvBin const * left, InvBin const * right) {
        return text::CompareNoCase(left->type->GetBinName(), right->type->GetBinName()) < 0;
    });
    return sorted;
}

} // namespace

void Inv::Warehouse::Data::CollectDeferred(std::vector<Resource *> & list) {
    for (InvBin * bin : sortedDeferrableBins(bins)) {
        auto const first = static_cast<std::ptrdiff_t>(list.size());
        for (auto const & [key, resource] : bin->entries)
            if (resource->has(Resource::needsLoad))
                list.push_back(resource);
        std::stable_sort(list.begin() + first, list.end(), [](Resource const * left, Resource const * right) {
            return text::CompareNoCase(left->name, right->name) < 0;
        });
    }
}

void Inv::Warehouse::Data::LoadStep(Resource * resource) {
    if (!resource->has(Resource::needsLoad))
        return; // loaded on demand meanwhile
    InvHold const hold(resource);
    resource->attachLoaded(resource->name);
}

void Inv::Warehouse::Data::PostStep(Resource * resource) {
    if (resource->has(Resource::needsPostLoad))
        resource->postLoad();
}

void Inv::Warehouse::Data::OpenBatch(std::vector<Resource *> const & list) {
    LoadScheduler::BeginSharedBatch("Inv::Resources", nullptr, nullptr);
    for (Resource * resource : list)
        InvMutableKind(resource->typeInfo).PrepareToLoad(resource->name);
    LoadScheduler::ScheduleSharedBatch();
}

unsigned int Inv::Warehouse::LoadResources(unsigned int maxItems, bool abort) {
    Stage & load = pump().load;
    Stage & post = pump().post;
    if (load.list.empty() && post.list.empty()) {
        load.list.reserve(c_loadCapacity);
        post.list.reserve(c_postCapacity);
    }
    if (abort) {
        LoadScheduler::AbortSharedBatch();
        LoadScheduler::EndSharedBatch();
        load.Clear();
        post.Clear();
        return 0;
    }
    if (load.remaining != 0) {
        if (load.Run(maxItems, &Data::LoadStep) != 0)
            return load.remaining;
        LoadScheduler::EndSharedBatch();
        post.list.insert(post.list.end(), load.list.begin(), load.list.end());
        load.Clear();
    } else if (post.remaining != 0) {
        if (post.Run(maxItems, &Data::PostStep) != 0)
            return post.remaining;
        post.Clear();
    }

    data->CollectDeferred(load.list);
    load.remaining = static_cast<unsigned int>(load.list.size());
    if (load.remaining != 0)
        data->OpenBatch(load.list);
    else
        post.remaining = static_cast<unsigned int>(post.list.size()); // no resource is deferred any more
    return post.remaining + load.remaining;
}

void Inv::Warehouse::LoadResources() {
    while (LoadResources(c_itemsAtOnce, false) != 0)
        Plat::Window::Sleep(c_pauseMilliseconds);
}

void Inv::Warehouse::Preload(char const * name, ResourceTypeInfo const * type) {
    Resource * resource = nullptr;
    if (!FindNamedResource(&resource, name, type))
        return;
    NamedResource * loaded = type->Load(name);
    if (!loaded)
        loaded = type->CreateDefault(name);
    if (loaded)
        resource->SetData(loaded);
}

void Inv::Warehouse::Preload(ResourceTypeInfo const * type) {
    if (InvBin const * const bin = data->FindBin(type))
        for (auto const & [key, resource] : bin->entries)
            Preload(resource->name, type);
}
