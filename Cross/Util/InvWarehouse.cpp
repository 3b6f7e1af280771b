#include "Cross/Util/Inv.h"
#include "Cross/Util/InvData.h"
#include "Cross/Util/NameHash.h"
#include "Cross/engine/core/Text.h"
#include "Cross/engine/diagnostics/Warning.h"
#include "Cross/engine/filesystem/PathText.h"
#include "Cross/engine/memory/MemPool.h"
#include "Cross/engine/platform/Guid.h"
#include "Cross/engine/platform/Options.h"

#include <algorithm>
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

// Nearly all names that match do so to the letter, which takes no folding of case to tell.
bool sameName(char const * left, char const * right) {
    return std::strcmp(left, right) == 0 || text::EqualNoCase(left, right);
}

} // namespace

InvCanonicalName::InvCanonicalName(Inv::ResourceTypeInfo const * type, char const * name)
    : canonical(name ? name : "") {
    if (std::strlen(canonical) > c_maxName)
        cutBehindColon();
    if (type->TranslateName(buffer, canonical))
        canonical = buffer;
}

void InvCanonicalName::cutBehindColon() {
    char const * const colon = std::strrchr(canonical, ':');
    char const * const bare = colon ? colon + 1 : canonical;
    cut.assign(canonical, bare + std::min(std::strlen(bare), c_maxName));
    if (cut.size() >= sizeof(buffer)) // a kind may copy all of it
        cut.erase(0, static_cast<std::size_t>(bare - canonical));
    canonical = cut.c_str();
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

auto Inv::Warehouse::Data::FindBin(ResourceTypeInfo const * type) -> Bin * {
    for (Bin & bin : bins)
        if (bin.type == type)
            return &bin;
    return nullptr;
}

auto Inv::Warehouse::Data::getBin(ResourceTypeInfo const * type) -> Bin & {
    Bin * const bin = FindBin(type);
    return bin ? *bin : bins.emplace_back(type);
}

void Inv::Warehouse::Data::Add(Resource * resource) {
    std::uint32_t const key = NameHashLower(resource->name);
    Bin & bin = getBin(resource->typeInfo);
    if (!resource->has(Resource::hidden))
        bin.WarnOfTwin(key, resource->name);
    resource->flags |= Resource::stored | Resource::frozen;
    bin.Insert(key, Resource::Retain(resource));
}

Inv::Warehouse::Data::Bin::Bin(ResourceTypeInfo const * type)
    : type(type), resources(std::less<std::uint32_t>(), Resources::allocator_type(nodePool())) {}

auto Inv::Warehouse::Data::Bin::FindResource(Resource const * resource) -> Entry {
    auto const [first, last] = resources.equal_range(NameHashLower(resource->name));
    Entry const entry =
        std::find_if(first, last, [resource](auto const & each) { return each.second == resource; });
    return entry != last ? entry : resources.end();
}

Inv::Resource * Inv::Warehouse::Data::Bin::FindName(char const * canonicalName) {
    return index.Find(NameHashLower(canonicalName), [canonicalName](Resource const * resource) {
        return !resource->has(Resource::hidden) && sameName(resource->name, canonicalName);
    });
}

void Inv::Warehouse::Data::Bin::WarnOfTwin(std::uint32_t key, char const * name) {
    if (!index.Find(key, [](Resource const *) { return true; }))
        return;
    char const * const binName = type->GetBinName();
    if (FindName(name))
        dbWarningfAux(c_warningCategory,
                      "Duplicate %s resource '%s' added to inventory - please check the resource!", binName,
                      name);
    else
        dbWarningfAux(c_warningCategory, "'%s' Key collision with '%s' added to inventory.", binName, name);
}

void Inv::Warehouse::Data::Bin::Insert(std::uint32_t key, Resource * resource) {
    resources.emplace(key, resource);
    if (resources.size() <= index.Capacity())
        return index.Insert(key, resource);
    index.Grow();
    for (auto const & [eachKey, each] : resources)
        index.Insert(eachKey, each);
}

void Inv::Warehouse::Data::Bin::erase(Entry entry) {
    for (Walk * walk = innermost; walk; walk = walk->outer)
        if (walk->next == entry)
            ++walk->next;
    index.Erase(entry->first, entry->second);
    resources.erase(entry);
}

bool Inv::Warehouse::FindNamedResource(Resource ** out, char const * name, ResourceTypeInfo const * type) {
    *out = nullptr;
    InvCanonicalName const canonical(type, name);
    if (Data::Bin * const bin = data->FindBin(type))
        *out = bin->FindName(canonical.Get());
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

    InvCanonicalName const canonical(type, name);
    Resource * const resource = new Resource;
    resource->SetName(canonical.Get());
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
    Data::Bin const * const bin = data->FindBin(type);
    return bin ? static_cast<unsigned int>(bin->resources.size()) : 0;
}

void Inv::Warehouse::GetResource(Resource ** out, unsigned int index, ResourceTypeInfo const * type) const {
    *out = nullptr;
    if (Data::Bin * const bin = data->FindBin(type))
        if (index < bin->resources.size())
            *out = std::next(bin->resources.begin(), static_cast<std::ptrdiff_t>(index))->second;
}

void Inv::Warehouse::AddResource(Resource * resource, ResourceTypeInfo const * type) {
    resource->flags &= ~Resource::hidden;
    if (!resource->typeInfo)
        resource->SetTypeInfo(type);
    resource->SetName(InvCanonicalName(type, resource->name).Get());
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
