#include "Cross/Util/Inv.h"
#include "Cross/Util/InvData.h"
#include "Cross/Util/InvUtil.h"
#include "Cross/engine/memory/MemPool.h"
#include "Cross/engine/platform/Atomic.h"

#include <cstring>

namespace {

_HMEMPOOL * namePool() {
    static MemoryPoolObj pool("InvNames", 0, 0, false);
    return pool.Get();
}

_HMEMPOOL * resourcePool() {
    static MemoryPoolObj pool("InvResources", 0, 0, false);
    return pool.Get();
}

char * copyName(char const * name) {
    if (!name)
        return nullptr;
    std::size_t const length = std::strlen(name);
    char * const copy = static_cast<char *>(MemPoolAlloc(namePool(), static_cast<unsigned int>(length + 2)));
    std::memcpy(copy, name, length + 1);
    return copy;
}

} // namespace

bool Inv::ResourceTypeInfo::TranslateName(char * out, char const * name) const {
    InvUtil::TranslateResourceName(out, name, true);
    return true;
}

bool Inv::ResourceTypeInfo::CanDeferLoading() const { return false; }

void Inv::ResourceTypeInfo::PrepareToLoad(char const *) {}

void Inv::ResourceTypeInfo::PostLoad(NamedResource *) {}

Inv::ResourceTypeInfo::~ResourceTypeInfo() = default;

Inv::Resource::Resource() = default;

Inv::Resource::~Resource() {
    if (has(frozen))
        return;
    MemPoolFree(namePool(), name);
    name = nullptr;
    if (data)
        data->OnSetName(nullptr);
    typeInfo = nullptr;
}

void * Inv::Resource::operator new(std::size_t size) {
    return MemPoolAlloc(resourcePool(), static_cast<unsigned int>(size));
}

void Inv::Resource::operator delete(void * block, std::size_t) { MemPoolFree(resourcePool(), block); }

Inv::Resource * Inv::Resource::Retain(Resource * resource) {
    if (resource)
        Plat::AtomicIncrement(&resource->refCount);
    return resource;
}

void Inv::Resource::Release(Resource * resource) {
    if (!resource)
        return;
    // Read before the count goes down: afterwards another thread may have ended the resource.
    bool const heldByData = resource->data != nullptr;
    int const left = Plat::AtomicDecrement(&resource->refCount);
    if (left == 0 || (left == 1 && heldByData))
        Destroy(resource);
}

void Inv::Resource::Destroy(Resource * resource) {
    if (resource->refCount == 0) {
        delete resource;
        return;
    }
    NamedResource * const orphan = resource->data;
    if (!orphan)
        return;
    ResourceTypeInfo const * const type = resource->typeInfo;
    orphan->SetResource(nullptr); // gives back the data's reference, with which the resource may end
    if (type)
        type->DestroyData(orphan);
    else
        delete orphan;
}

void Inv::Resource::SetData(NamedResource * newData) {
    if (newData == data)
        return;
    // A resource that only its data holds would end half-way through. A bare count keeps it, without the rule
    // that a resource held by nothing but its data ends.
    Plat::AtomicIncrement(&refCount);
    if (NamedResource * const old = data) {
        data = nullptr;
        old->SetResource(nullptr);
    }
    data = newData;
    if (newData)
        newData->SetResource(this);
    if (Plat::AtomicDecrement(&refCount) == 0)
        Destroy(this);
}

void Inv::Resource::SetName(char const * newName) {
    if (has(frozen) || (name && newName && std::strcmp(name, newName) == 0))
        return;
    char * const copy = copyName(newName); // `newName` may lie in the present one
    MemPoolFree(namePool(), name);
    name = copy;
    if (data)
        data->OnSetName(name);
}

void Inv::Resource::SetTypeInfo(ResourceTypeInfo const * type) {
    if (!has(frozen))
        typeInfo = type;
}

Inv::NamedResource * Inv::Resource::GetData() {
    if (!has(needsLoad))
        return data;
    InvHold const hold(this);
    load(name);
    return data;
}

// The whole load sequence, for one resource at once.
void Inv::Resource::load(char const * loadName) {
    attachLoaded(loadName);
    postLoad();
}

// Asks the kind for the data of `loadName`, for default data failing that, and attaches what it gave. Never
// repeated.
void Inv::Resource::attachLoaded(char const * loadName) {
    flags &= ~needsLoad;
    NamedResource * loaded = typeInfo->Load(loadName);
    if (!loaded) {
        loaded = typeInfo->CreateDefault(name);
        if (loaded)
            flags |= isDefault;
    }
    if (loaded)
        SetData(loaded);
}

void Inv::Resource::postLoad() {
    flags &= ~needsPostLoad;
    if (data)
        InvMutableKind(typeInfo).PostLoad(data);
}

bool Inv::Resource::isOnlyHeldByInventory() const { return refCount == 1 || (refCount == 2 && data); }

Inv::NamedResource::NamedResource() : resource(new Resource) {
    // The blank resource's first reference is this object's.
    resource->data = this;
}

Inv::NamedResource::~NamedResource() {
    if (Resource * const last = resource) {
        last->data = nullptr;
        resource = nullptr;
        Resource::Release(last);
    }
}

char const * Inv::NamedResource::GetName() const { return resource ? resource->name : nullptr; }

void Inv::NamedResource::SetName(char const * name) { resource->SetName(name); }

void Inv::NamedResource::OnSetName(char const *) {}

void Inv::NamedResource::SetResource(Resource * newResource) {
    if (newResource == resource)
        return;
    Resource * const old = resource;
    if (old) {
        resource = nullptr; // so that clearing the other side does not come back here
        old->SetData(nullptr);
    }
    Resource::Retain(newResource);
    Resource::Release(old);
    resource = newResource;
    if (newResource)
        newResource->SetData(this);
}
