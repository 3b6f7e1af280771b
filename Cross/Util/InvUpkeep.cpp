// Upkeep of the inventory: letting go of what nobody holds, reloading what changed on disk, and dumps.

#include "Cross/Util/Inv.h"
#include "Cross/Util/InvData.h"
#include "Cross/Util/LogFile.h"
#include "Cross/engine/core/Text.h"
#include "Cross/engine/platform/Options.h"

#include <algorithm>

InvBin::Entries::iterator Inv::Warehouse::Data::FindEntry(InvBin & bin, Resource const * resource) {
    return std::find_if(bin.entries.begin(), bin.entries.end(),
                        [resource](auto const & entry) { return entry.second == resource; });
}

InvBin::Entries::iterator Inv::Warehouse::Data::TakeOut(InvBin & bin, InvBin::Entries::iterator entry,
                                                        bool destroyData) {
    Resource * const resource = entry->second;
    auto const next = bin.entries.erase(entry);
    resource->flags &= ~(Resource::stored | Resource::frozen);
    NamedResource * const orphan = resource->data;
    if (orphan && destroyData) {
        resource->SetData(nullptr);
        bin.type->DestroyData(orphan);
    }
    Resource::Release(resource);
    return next;
}

unsigned int Inv::Warehouse::Data::FlushPass(InvBin & bin) {
    unsigned int count = 0;
    for (auto entry = bin.entries.begin(); entry != bin.entries.end();) {
        if (entry->second->isOnlyHeldByInventory()) {
            entry = TakeOut(bin, entry, true);
            ++count;
        } else {
            ++entry;
        }
    }
    return count;
}

void Inv::Warehouse::Data::Clear() {
    for (InvBin & bin : bins) {
        for (auto const & [key, resource] : bin.entries) {
            if (NamedResource * const orphan = resource->data) {
                resource->SetData(nullptr);
                bin.type->DestroyData(orphan);
            }
        }
    }
    for (InvBin & bin : bins) {
        for (auto const & [key, resource] : bin.entries) {
            resource->flags &= ~(Resource::stored | Resource::frozen);
            Resource::Release(resource);
        }
        bin.entries.clear();
    }
    bins.clear();
}

void Inv::Warehouse::Flush(Resource * resource, ResourceTypeInfo const * type) {
    InvBin * const bin = resource && resource->has(Resource::stored) ? data->FindBin(type) : nullptr;
    if (!bin || !resource->isOnlyHeldByInventory())
        return;
    auto const entry = data->FindEntry(*bin, resource);
    if (entry != bin->entries.end())
        data->TakeOut(*bin, entry, true);
}

void Inv::Warehouse::Flush(ResourceTypeInfo const * type) {
    if (InvBin * const bin = data->FindBin(type))
        while (data->FlushPass(*bin) != 0) {}
}

void Inv::Warehouse::Flush() {
    unsigned int count;
    do {
        count = 0;
        for (InvBin & bin : data->bins)
            count += data->FlushPass(bin);
    } while (count != 0);
}

void Inv::Warehouse::Remove(Resource * resource, ResourceTypeInfo const * type) {
    InvBin * const bin = resource && resource->has(Resource::stored) ? data->FindBin(type) : nullptr;
    if (!bin)
        return;
    auto const entry = data->FindEntry(*bin, resource);
    if (entry != bin->entries.end())
        data->TakeOut(*bin, entry, resource->isOnlyHeldByInventory());
}

void Inv::Warehouse::Remove(ResourceTypeInfo const * type) {
    InvBin * const bin = data->FindBin(type);
    if (!bin)
        return;
    for (auto entry = bin->entries.begin(); entry != bin->entries.end();)
        entry = data->TakeOut(*bin, entry, entry->second->isOnlyHeldByInventory());
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
    InvBin * const bin = type && type->CanReload() ? data->FindBin(type) : nullptr;
    if (!bin)
        return;
    for (auto entry = bin->entries.begin(); entry != bin->entries.end();) {
        Resource * const resource = entry->second;
        ++entry; // the reload may take the present one out
        Reload(resource, type);
    }
}

void Inv::Warehouse::Data::OnFileChanged(char const * path) {
    for (InvBin & bin : bins) {
        if (!bin.type || !bin.type->CanReload())
            continue;
        InvCanonicalName const canonical(bin.type, path);
        if (!canonical.IsTranslated())
            continue;
        auto const changed = std::find_if(bin.entries.begin(), bin.entries.end(), [&](auto const & entry) {
            return text::EqualNoCase(entry.second->name, canonical.Get());
        });
        if (changed != bin.entries.end())
            Instance()->Reload(changed->second, bin.type);
    }
}

void Inv::Warehouse::Dump(DumpInfo & info) {
    info.bins.clear();
    for (InvBin const & bin : data->bins) {
        DumpInfo::BinRecord & binRecord = info.bins.emplace_back();
        text::CopyCut(binRecord.name, sizeof(binRecord.name), bin.type->GetBinName());
        binRecord.resources.reserve(bin.entries.size());
        for (auto const & [key, resource] : bin.entries) {
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
