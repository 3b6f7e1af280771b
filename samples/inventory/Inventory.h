#pragma once

// A typed front end of the inventory, to start from in a module of your own: give the tag another name, keep
// what you use.
//
//     class TextureKind : public inventory::Kind<Texture> { ... };
//     TextureKind textures;
//     inventory::Handle<Texture> grass = textures.Get("art/grass"); // may load later
//     if (Texture * texture = grass.Get()) ...
//
// Threads and lifetime: see Cross/Util/Inv.h. A Handle holds a reference; a Kind outlives all handles of its
// data.

#include "Cross/Util/Inv.h"

#include <utility>

namespace inventory {

struct SampleClient; // the tag: each module that reaches the inventory has one of its own

} // namespace inventory

// Access to the operations of the warehouse and the state of a resource.
template <>
class InvFront<inventory::SampleClient> {
public:
    using Type = Inv::ResourceTypeInfo;

    static bool GetResource(Inv::Resource ** out, char const * name, Type const * type, bool required) {
        return warehouse().GetResource(out, name, type, required);
    }

    static bool FindNamedResource(Inv::Resource ** out, char const * name, Type const * type) {
        return warehouse().FindNamedResource(out, name, type);
    }

    static unsigned int GetResourcesCount(Type const * type) { return warehouse().GetResourcesCount(type); }

    static Inv::Resource * GetResourceAt(unsigned int index, Type const * type) {
        Inv::Resource * resource = nullptr;
        std::as_const(warehouse()).GetResource(&resource, index, type);
        return resource;
    }

    static void AddResource(Inv::Resource * resource, Type const * type) {
        warehouse().AddResource(resource, type);
    }

    static void AddHiddenResource(Inv::Resource * resource, Type const * type) {
        warehouse().AddHiddenResource(resource, type);
    }

    static void GenerateName(char * out) { warehouse().GenerateName(out); }

    static unsigned int LoadResources(unsigned int maxItems, bool abort = false) {
        return warehouse().LoadResources(maxItems, abort);
    }

    static void LoadAllResources() { warehouse().LoadResources(); }

    static void Preload(char const * name, Type const * type) { warehouse().Preload(name, type); }

    static void Preload(Type const * type) { warehouse().Preload(type); }

    static void Flush(Inv::Resource * resource, Type const * type) { warehouse().Flush(resource, type); }

    static void Flush(Type const * type) { warehouse().Flush(type); }

    static void Flush() { warehouse().Flush(); }

    static void Remove(Inv::Resource * resource, Type const * type) { warehouse().Remove(resource, type); }

    static void Remove(Type const * type) { warehouse().Remove(type); }

    static void Reload(Inv::Resource * resource, Type const * type) { warehouse().Reload(resource, type); }

    static void Reload(Type const * type) { warehouse().Reload(type); }

    static Inv::DumpInfo Dump() {
        Inv::DumpInfo info;
        warehouse().Dump(info);
        return info;
    }

    static void DumpToLogfile(char const * name) { warehouse().DumpToLogfile(name); }

    static char const * GetName(Inv::Resource const * resource) { return resource->name; }

    static int GetReferences(Inv::Resource const * resource) { return resource->refCount; }

    // Whether the load has not been tried yet, and whether the data is the kind's default.
    static bool IsDeferred(Inv::Resource const * resource) { return resource->has(Inv::Resource::needsLoad); }

    static bool IsDefault(Inv::Resource const * resource) { return resource->has(Inv::Resource::isDefault); }

    static Inv::Resource * GetResource(Inv::NamedResource const & data) { return data.GetResource(); }

private:
    static Inv::Warehouse & warehouse() { return *Inv::Warehouse::Instance(); }
};

namespace inventory {

using Front = InvFront<SampleClient>;

// Holds a reference on a resource whose data is a `Data`. Empty by default.
template <class Data>
class Handle {
public:
    Handle() = default;

    explicit Handle(Inv::Resource * resource) : resource(Inv::Resource::Retain(resource)) {}

    Handle(Handle const & source) : Handle(source.resource) {}

    Handle(Handle && source) noexcept : resource(std::exchange(source.resource, nullptr)) {}

    Handle & operator=(Handle source) noexcept {
        std::swap(resource, source.resource);
        return *this;
    }

    ~Handle() { Inv::Resource::Release(resource); }

    // The data as it is now; null while there is none. Loads it when that is still owed. Ask anew in each
    // frame: a reload replaces the data.
    Data * Get() const { return resource ? static_cast<Data *>(resource->GetData()) : nullptr; }

    Data * operator->() const { return Get(); }

    explicit operator bool() const { return resource != nullptr; }

    Inv::Resource * GetResource() const { return resource; }

private:
    Inv::Resource * resource = nullptr;
};

// A kind whose data is a `Data`, derived from Inv::NamedResource and made with new.
template <class Data>
class Kind : public Inv::ResourceTypeInfo {
public:
    // The handle of a name; its data may come later, or be default data.
    Handle<Data> Get(char const * name) const {
        Inv::Resource * resource = nullptr;
        Front::GetResource(&resource, name, this, false);
        return Handle<Data>(resource);
    }

    // Loads now and accepts only the real asset; empty when there is none.
    Handle<Data> Require(char const * name) const {
        Inv::Resource * resource = nullptr;
        Front::GetResource(&resource, name, this, true);
        return Handle<Data>(resource);
    }

    // What is in the inventory already; empty otherwise.
    Handle<Data> Find(char const * name) const {
        Inv::Resource * resource = nullptr;
        Front::FindNamedResource(&resource, name, this);
        return Handle<Data>(resource);
    }

    void DestroyData(Inv::NamedResource * data) const override { delete data; }

    Inv::NamedResource * CreateDefault(char const *) const override { return nullptr; }
};

} // namespace inventory
