#include "Cross/Util/Inv.h"
#include "Cross/Util/InvData.h"
#include "Cross/Util/NameHash.h"
#include "Cross/engine/core/Text.h"
#include "Cross/engine/diagnostics/Warning.h"
#include "Cross/engine/filesystem/PathText.h"
#include "Cross/engine/memory/MemPool.h"
#include "Cross/engine/platform/Guid.h"
#include "Cross/engine/platform/Options.h"

#include <cstring>
#include <iterator>
#include <string>

namespace {

constexpr std::uint32_t c_warningCategory = 0x494E56; // the letters INV
constexpr char const * c_watchedAliases[] = {"DATA", "GENERIC"};

Inv::Warehouse * s_instance = nullptr;

_HMEMPOOL * nodePool() {
    static MemoryPoolObj pool("InvNodes", 0, 0, false);
    return pool.Get();
}

} // namespace

InvBin::InvBin(Inv::ResourceTypeInfo const * type)
    : type(type), entries(std::less<std::uint32_t>(), Entries::allocator_type(nodePool())) {}

InvCanonicalName::InvCanonicalName(Inv::ResourceTypeInfo const * type, char const * name)
    : canonical(name ? name : "") {
    char const * const colon = std::strrchr(canonical, ':');
    char const * const bare = colon ? colon + 1 : canonical;
    if (std::strlen(bare) > c_maxName) {
        cut.assign(canonical, bare + c_maxName);
        canonical = cut.c_str();
    }
    if (type->TranslateName(buffer, canonical))
        canonical = buffer;
}

void Inv::Setup(bool enableBatching) { Warehouse::Setup(enableBatching); }

void Inv::Shutdown() { Warehouse::Shutdown(); }

Inv::Warehouse * Inv::Warehouse::Instance() { return s_instance; }

void Inv::Warehouse::Setup(bool enableBatching) {
    if (!s_instance)
        s_instance = new Warehouse(enableBatching);
}

void Inv::Warehouse::Shutdown() {
    if (!s_instance)
        return;
    s_instance->Flush();
    s_instance->data->Clear();
    delete s_instance;
    s_instance = nullptr;
}

Inv::Warehouse::Warehouse(bool enableBatching) : data(new Data(enableBatching)) {}

Inv::Warehouse::~Warehouse() { delete data; }

Inv::Warehouse::Data::Data(bool enableBatching) {
    for (char const * alias : c_watchedAliases) {
        char path[c_maxPath];
        fs::MakePath(path, alias, "", "", "");
        FilePath::AttachFileChangeNotification(path, this);
    }
    batchingOff = !enableBatching || Plat::Options::Exist("invbatchingoff");
}

Inv::Warehouse::Data::~Data() { FilePath::DetachFileChangeNotification(this, nullptr); }

InvBin * Inv::Warehouse::Data::FindBin(ResourceTypeInfo const * type) {
    for (InvBin & bin : bins)
        if (bin.type == type)
            return &bin;
    return nullptr;
}

InvBin & Inv::Warehouse::Data::getBin(ResourceTypeInfo const * type) {
    InvBin * const bin = FindBin(type);
    return bin ? *bin : bins.emplace_back(type);
}

Inv::Resource * Inv::Warehouse::Data::Find(InvBin & bin, char const * canonicalName) {
    auto const [first, last] = bin.entries.equal_range(NameHashLower(canonicalName));
    for (auto entry = first; entry != last; ++entry) {
        Resource * const resource = entry->second;
        if (!resource->has(Resource::hidden) && text::EqualNoCase(resource->name, canonicalName))
            return resource;
    }
    return nullptr;
}

void Inv::Warehouse::Data::warnOfTwin(InvBin & bin, std::uint32_t key, char const * name) {
    if (bin.entries.find(key) == bin.entries.end())
        return;
    char const * const binName = bin.type->GetBinName();
    if (Find(bin, name))
        dbWarningfAux(c_warningCategory,
                      "Duplicate %s resource '%s' added to inventory - please check the resource!", binName,
                      name);
    else
        dbWarningfAux(c_warningCategory, "'%s' Key collision with '%s' added to inventory.", binName, name);
}

void Inv::Warehouse::Data::Add(Resource * resource) {
    if (!resource->name)
        resource->SetName("");
    std::uint32_t const key = NameHashLower(resource->name);
    InvBin & bin = getBin(resource->typeInfo);
    if (!resource->has(Resource::hidden))
        warnOfTwin(bin, key, resource->name);
    resource->flags |= Resource::stored | Resource::frozen;
    bin.entries.emplace_hint(bin.entries.upper_bound(key), key, Resource::Retain(resource));
}

bool Inv::Warehouse::FindNamedResource(Resource ** out, char const * name, ResourceTypeInfo const * type) {
    *out = nullptr;
    InvCanonicalName const canonical(type, name);
    if (InvBin * const bin = data->FindBin(type))
        *out = data->Find(*bin, canonical.Get());
    return *out != nullptr;
}

bool Inv::Warehouse::GetResource(Resource ** out, char const * name, ResourceTypeInfo const * type,
                                 bool required) {
    if (FindNamedResource(out, name, type)) {
        if (!required)
            return true;
        if ((*out)->GetData() && !(*out)->has(Resource::isDefault))
            return true;
        *out = nullptr;
        return false;
    }

    Resource * const resource = new Resource;
    resource->SetName(InvCanonicalName(type, name).Get());
    resource->SetTypeInfo(type);
    resource->flags |= Resource::needsLoad | Resource::needsPostLoad;
    data->Add(resource);
    Resource::Release(resource); // the warehouse's reference is the only one from here on

    if (!required && type->CanDeferLoading() && !data->batchingOff) {
        *out = resource;
        return true;
    }
    InvHold const hold(resource);
    resource->load(name ? name : resource->name);
    bool const good = resource->data && !(required && resource->has(Resource::isDefault));
    *out = good ? resource : nullptr;
    return good;
}

unsigned int Inv::Warehouse::GetResourcesCount(ResourceTypeInfo const * type) const {
    InvBin const * const bin = data->FindBin(type);
    return bin ? static_cast<unsigned int>(bin->entries.size()) : 0;
}

void Inv::Warehouse::GetResource(Resource ** out, unsigned int index, ResourceTypeInfo const * type) const {
    *out = nullptr;
    if (InvBin * const bin = data->FindBin(type))
        if (index < bin->entries.size())
            *out = std::next(bin->entries.begin(), static_cast<std::ptrdiff_t>(index))->second;
}

void Inv::Warehouse::AddResource(Resource * resource, ResourceTypeInfo const * type) {
    resource->flags &= ~Resource::hidden;
    if (!resource->typeInfo)
        resource->SetTypeInfo(type);
    InvCanonicalName const canonical(type, resource->name);
    if (canonical.IsTranslated())
        resource->SetName(canonical.Get());
    data->Add(resource);
}

void Inv::Warehouse::AddHiddenResource(Resource * resource, ResourceTypeInfo const * type) {
    resource->flags |= Resource::hidden;
    if (!resource->typeInfo)
        resource->SetTypeInfo(type);
    if (!resource->name) {
        char name[40];
        GenerateName(name);
        resource->SetName(name);
    }
    data->Add(resource);
}

void Inv::Warehouse::GenerateName(char * out) { GUIDToString(out, 0, GUIDGenerate(), true); }
