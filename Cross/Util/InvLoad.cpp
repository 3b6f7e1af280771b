// Batched loading: the pump and the loads at once.

#include "Cross/Util/Inv.h"
#include "Cross/Util/InvData.h"
#include "Cross/engine/core/Text.h"
#include "Cross/engine/filesystem/LoadScheduler.h"
#include "Cross/engine/platform/Window.h"

#include <algorithm>
#include <string>
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

    // Runs a step on the next `maxItems` items at most. Gives the number of items left. Each item counts as
    // taken before its step, which may throw or abort the batch.
    unsigned int Run(unsigned int maxItems, void (*step)(Inv::Resource *)) {
        for (unsigned int taken = 0; taken < maxItems && remaining != 0; ++taken) {
            --remaining;
            step(list[done++]);
        }
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

} // namespace

auto Inv::Warehouse::Data::sortedDeferrableBins() -> std::vector<Bin *> {
    std::vector<Bin *> sorted;
    for (Bin & bin : bins)
        if (bin.type->CanDeferLoading())
            sorted.push_back(&bin);
    std::stable_sort(sorted.begin(), sorted.end(), [](Bin const * left, Bin const * right) {
        return text::CompareNoCase(left->type->GetBinName(), right->type->GetBinName()) < 0;
    });
    return sorted;
}

void Inv::Warehouse::Data::CollectDeferred(std::vector<Resource *> & list) {
    std::vector<std::pair<char const *, Resource *>> named; // names at hand make sorting twice as fast
    for (Bin * bin : sortedDeferrableBins()) {
        named.clear();
        for (auto const & [key, resource] : bin->resources)
            if (resource->has(Resource::needsLoad))
                named.emplace_back(resource->name, resource);
        std::stable_sort(named.begin(), named.end(), [](auto const & left, auto const & right) {
            return text::CompareNoCase(left.first, right.first) < 0;
        });
        for (auto const & [name, resource] : named)
            list.push_back(resource);
    }
}

void Inv::Warehouse::Data::LoadStep(Resource * resource) {
    if (!resource->has(Resource::needsLoad))
        return; // loaded on demand meanwhile
    InvHold const hold(resource);
    resource->attachLoaded(resource->name);
}

void Inv::Warehouse::Data::PostStep(Resource * resource) {
    if (!resource->has(Resource::needsPostLoad))
        return; // done on demand meanwhile
    InvHold const hold(resource);
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
    InvHold const hold(resource);
    NamedResource * loaded = type->Load(name);
    if (!loaded)
        loaded = type->CreateDefault(name);
    if (loaded)
        resource->SetData(loaded);
}

void Inv::Warehouse::Preload(ResourceTypeInfo const * type) {
    if (Data::Bin * const bin = data->FindBin(type))
        bin->ForEach([&](Data::Bin::Entry entry) {
            // a copy, since the entry may go while another one of its name is loaded
            Preload(std::string(entry->second->name).c_str(), type);
        });
}
