// Upkeep of the inventory: letting go of what nobody holds, reloading what changed on disk, and dumps.

#include "Cross/Util/Inv.h"
#include "Cross/Util/InvData.h"
#include "Cross/Util/LogFile.h"
#include "Cross/engine/core/Text.h"
#include "Cross/engine/platform/Options.h"

#include <algorithm>

void Inv::Warehouse::Data::Bin::TakeOut(Entry entry) {
    Resource * const resource = entry->second;
    erase(entry);
    resource->flags &= ~(Resource::stored | Resource::frozen);
    if (resource->isOnlyHeldByInventory())
        destroyData(resource);
    Resource::Release(resource);
}

void Inv::Warehouse::Data::Bin::destroyData(Resource * resource) {
    if (NamedResource * const orphan = resource->data) {
        resource->SetData(nullptr);
        type->DestroyData(orphan);
    }
}

unsigned int Inv::Warehouse::Data::Bin::FlushPass() {
    unsigned int count = 0;
    ForEach([&](Entry entry) {
        if (entry->second->isOnlyHeldByInventory()) {
            TakeOut(entry);
            ++count;
        }
    });
    return count;
}

void Inv::Warehouse::Data::Bin::DestroyAllData() {
    ForEach([this](Entry entry) { destroyData(entry->second); });
}

void Inv::Warehouse::Data::Bin::TakeOutAll() {
    ForEach([this](Entry entry) { TakeOut(entry); });
}

void Inv::Warehouse::Data::Clear() {
    for (Bin & bin : bins)
        bin.DestroyAllData();
    for (Bin & bin : bins)
        bin.TakeOutAll();
    bins.clear();
}

void Inv::Warehouse::Flush(Resource * resource, ResourceTypeInfo const * type) {
    if (resource && resource->isOnlyHeldByInventory())
        Remove(resource, type);
}

void Inv::Warehouse::Flush(ResourceTypeInfo const * type) {
    if (Data::Bin * const bin = data->FindBin(type))
        while (bin->FlushPass() != 0) {}
}

void Inv::Warehouse::Flush() {
    unsigned int count;
    do {
        count = 0;
        for (Data::Bin & bin : data->bins)
            count += bin.FlushPass();
    } while (count != 0);
}

void Inv::Warehouse::Remove(Resource * resource, ResourceTypeInfo const * type) {
    Data::Bin * const bin = resource && resource->has(Resource::stored) ? data->FindBin(type) : nullptr;
    if (!bin)
        return;
    Data::Bin::Entry const entry = bin->FindResource(resource);
    if (entry != bin->resources.end())
        bin->TakeOut(entry);
}

void Inv::Warehouse::Remove(ResourceTypeInfo const * type) {
    if (Data::Bin * const bin = data->FindBin(type))
        bin->TakeOutAll();
}

void Inv::Warehouse::Reload(Resource * resource, ResourceTypeInfo const * type) {
    if (!resource || !type || !resource->data || !type->CanReload())
        return;
    bool stays = false;
    {
        InvHold const hold(resource);
        if (NamedResource * const reloaded = type->Reload(resource->data))
            resource->SetData(reloaded);
        stays = resource->has(Resource::stored);
    }
    if (stays)
        Flush(resource, type);
}

void Inv::Warehouse::Reload(ResourceTypeInfo const * type) {
    if (Data::Bin * const bin = type && type->CanReload() ? data->FindBin(type) : nullptr)
        bin->ForEach([&](Data::Bin::Entry entry) { Reload(entry->second, type); });
}

void Inv::Warehouse::Data::OnFileChanged(char const * path) {
    for (Bin & bin : bins) {
        if (!bin.type || !bin.type->CanReload())
            continue;
        InvCanonicalName const canonical(bin.type, path);
        if (!canonical.IsTranslated())
            continue;
        auto const changed =
            std::find_if(bin.resources.begin(), bin.resources.end(), [&](auto const & entry) {
                return text::EqualNoCase(entry.second->name, canonical.Get());
            });
        if (changed != bin.resources.end())
            Instance()->Reload(changed->second, bin.type);
    }
}

void Inv::Warehouse::Dump(DumpInfo & info) {
    info.bins.clear();
    for (Data::Bin const & bin : data->bins) {
        DumpInfo::BinRecord & binRecord = info.bins.emplace_back();
        text::CopyCut(binRecord.name, sizeof(binRecord.name), bin.type->GetBinName());
        binRecord.resources.reserve(bin.resources.size());
        for (auto const & [key, resource] : bin.resources) {
            DumpInfo::ResourceRecord & record = binRecord.resources.emplace_back();
            text::CopyCut(record.name, sizeof(record.name), resource->name);
            record.references = resource->refCount;
            record.loaded = !resource->has(Resource::needsLoad);
            record.isDefault = record.loaded && resource->has(Resource::isDefault);
            record.hidden = resource->has(Resource::hidden);
        }
    }
}

void Inv::Warehouse::DumpToLogfile(char const * name) {
    if (!Plat::Options::Exist("invtrackloading"))
        return;
    LogFile log;
    log.Create(name, ".txt", false, false);
    DumpInfo info;
    Dump(info);
    std::size_t total = 0;
    for (DumpInfo::BinRecord const & bin : info.bins) {
        log.printf("%s -- %d items left\n", bin.name, static_cast<int>(bin.resources.size()));
        total += bin.resources.size();
        for (DumpInfo::ResourceRecord const & record : bin.resources)
            log.printf("    %4d references (%c%c%c) to %s\n", record.references, record.loaded ? 'L' : ' ',
                       record.isDefault ? 'D' : ' ', record.hidden ? 'H' : ' ', record.name);
    }
    log.printf("\n\n %d resources in the inventory\n", static_cast<int>(total));
}
