#pragma once

// The resource inventory: named assets of many kinds behind stable handles. A game asks for an asset by name
// and holds an Inv::Resource at once; its data, an Inv::NamedResource, comes late, in batches, is replaced
// when its file changes, and goes when nobody holds it. The library reaches the code that knows a kind of
// asset through Inv::ResourceTypeInfo.
//
// Most operations are private and reached by a front end that each user compiles into a module of its own: a
// specialisation of InvFront for a tag type of that module is a friend of the classes here. samples/inventory
// has one to start from.
//
// Threads: the inventory belongs to one thread at a time; only Retain and Release may be called from any
// thread. Ownership: the warehouse holds one reference on each resource stored in it, and data holds one on
// its resource. Pointers that come back from look-ups are borrowed: Retain what is kept, Release it when
// done. A kind outlives all its resources.

#include "Cross/engine/core/Export.h"
#include "Cross/engine/core/Types.h"

#include <cstddef>
#include <cstdint>
#include <vector>

template <class Client>
class InvFront;

class CROSS_UTIL_API Inv {
public:
    class NamedResource;
    class Resource;
    class ResourceTypeInfo;
    class Warehouse;
    struct DumpInfo;

    Inv() = delete;

    // Make and end the one warehouse of the process; see Warehouse.
    static void Setup(bool enableBatching);
    static void Shutdown();
};

// A kind of asset, implemented by the application. Compared by pointer; it must outlive every resource that
// names it. Its operations may ask for more resources, flush, and throw; they neither run the batch pump nor
// shut the inventory down.
class CROSS_UTIL_API Inv::ResourceTypeInfo {
public:
    // The kind's display name, for warnings and dumps, and the first sort key of a load batch.
    virtual char const * GetBinName() const = 0;

    // Writes the canonical form of a name into `out`, a buffer of 260 bytes, and gives true; false means that
    // the name is used unchanged. By default InvUtil::TranslateResourceName without the extension.
    virtual bool TranslateName(char * out, char const * name) const;

    // Whether resources of this kind are reloaded when their files change.
    virtual bool CanReload() const = 0;

    // Whether this kind may be loaded in batches. By default false.
    virtual bool CanDeferLoading() const;

    // Default data for a name whose Load gave nothing, or null.
    virtual NamedResource * CreateDefault(char const * name) const = 0;

    // Frees data that the library no longer needs; it has no resource any more.
    virtual void DestroyData(NamedResource * data) const = 0;

    // Announces, inside an open load batch, that a name will be loaded: the place for LoadScheduler::AddFile.
    virtual void PrepareToLoad(char const * name);

    // Makes the data of a name, or gives null if it cannot. The library attaches it to its resource.
    virtual NamedResource * Load(char const * name) const = 0;

    // Data for an existing resource after its source changed: a new object, whose caller disposes of the old
    // one, the same object, or null to leave the data as it is.
    virtual NamedResource * Reload(NamedResource * data) const = 0;

    // Called once per load, after the data is attached; in a batch after everything is loaded.
    virtual void PostLoad(NamedResource * data);

    virtual ~ResourceTypeInfo();
};

// The handle of an asset: its name, its kind and its reference count. It outlives the data behind it.
class CROSS_UTIL_API Inv::Resource {
public:
    // No name, no kind, no data, and one reference, the creator's.
    Resource();
    Resource(Resource const &) = delete;
    Resource & operator=(Resource const &) = delete;

    static void * operator new(std::size_t size);
    static void operator delete(void * block, std::size_t size);

    // Adds a reference and returns `resource`; null is returned unchanged. Any thread.
    static Resource * Retain(Resource * resource);

    // Gives one reference back; null is ignored. The resource ends with its last one, and with the last one
    // but its data's. Any thread; the thread that gives back the last reference destroys.
    static void Release(Resource * resource);

    // Ends a resource without references, or one that only its data holds, data included. Not for clients.
    static void Destroy(Resource * resource);

    // Links `data`, which may be null, to this resource. Data that was there is cut loose and not freed: that
    // is the caller's.
    void SetData(NamedResource * data);

    // The data; null while there is none. Loads it first when that is still owed.
    NamedResource * GetData();

    // Copies the name, which may be null, and tells the data of it. Does nothing while the resource is
    // stored, nor when the name is the present one to the letter.
    void SetName(char const * newName);

    // Does nothing while the resource is stored.
    void SetTypeInfo(ResourceTypeInfo const * type);

private:
    friend class NamedResource;
    friend class Warehouse;
    template <class Client>
    friend class ::InvFront;

    enum Flags : std::uint32_t {
        stored = 1u << 0,        // in a bin of the warehouse
        frozen = 1u << 1,        // name and kind cannot change
        hidden = 1u << 2,        // found by no look-up by name
        needsLoad = 1u << 3,     // the data has not been asked for yet
        needsPostLoad = 1u << 4, // PostLoad is still owed
        isDefault = 1u << 5      // the data is the kind's default, not the asset
    };

    virtual ~Resource();

    bool has(Flags flag) const { return (flags & flag) != 0; }

    void load(char const * loadName);
    void attachLoaded(char const * loadName);
    void postLoad();
    bool isOnlyHeldByInventory() const;

    char * name = nullptr;
    ResourceTypeInfo const * typeInfo = nullptr;
    int volatile refCount = 1;
    NamedResource * data = nullptr;
    std::uint32_t flags = 0;
};

// Base of all data. Every data object has a resource from the first moment: a blank one of its own, until it
// is attached to one of the inventory.
class CROSS_UTIL_API Inv::NamedResource {
public:
    NamedResource();
    NamedResource(NamedResource const &) = delete;
    NamedResource & operator=(NamedResource const &) = delete;

    // Leaves its resource without data.
    virtual ~NamedResource();

    // The name of the resource; null when there is no resource or no name. Valid until the name changes.
    char const * GetName() const;

    // Resource::SetName on its resource, which must not be null.
    void SetName(char const * name);

protected:
    // Called after the resource's name has changed, with the new one, which may be null.
    virtual void OnSetName(char const * name);

private:
    friend class Resource;
    friend class Warehouse;
    template <class Client>
    friend class ::InvFront;

    Resource * GetResource() const { return resource; }

    void SetResource(Resource * newResource);

    Resource * resource;
};

// A snapshot of the inventory that stays valid when the inventory changes.
struct CROSS_UTIL_API Inv::DumpInfo {
    struct ResourceRecord {
        char name[256];
        std::int32_t references;
        bool loaded;    // nothing is owed any more
        bool isDefault; // loaded, with default data
        bool hidden;
    };

    struct BinRecord {
        char name[256];
        std::vector<ResourceRecord> resources; // in the order of their keys
    };

    std::vector<BinRecord> bins; // in the order in which their kinds were first seen
};

// The store of all resources: one bin per kind, each an index from the hash of a name to the resources of
// that name.
//
// Setup first; one ResourceTypeInfo object per kind; GetResource for what is needed; for deferred kinds
// LoadResources until it gives 0; Resource::GetData to reach the data; Flush to free what nobody holds;
// Shutdown last.
class CROSS_UTIL_API Inv::Warehouse {
public:
    Warehouse(Warehouse const &) = delete;
    Warehouse & operator=(Warehouse const &) = delete;

    // The warehouse, null before Setup and after Shutdown.
    static Warehouse * Instance();

    // Makes the warehouse; a second call does nothing. Without batching, or with the option "invbatchingoff",
    // no load is ever deferred. Files below the aliases "DATA" and "GENERIC" are watched from then on.
    static void Setup(bool enableBatching);

    // Frees all data and gives back all resources. Handles that clients still hold stay valid, without data.
    static void Shutdown();

private:
    template <class Client>
    friend class ::InvFront;

    class Data;

    explicit Warehouse(bool enableBatching);
    ~Warehouse();

    // Finds or makes the resource of a name and kind. `required` means: load now, and accept only the real
    // asset; without it the load may be deferred and default data will do. False, with *out null, when that
    // gave nothing; the resource stays in the inventory in its failed state, and no later call repeats the
    // load. *out is borrowed.
    bool GetResource(Resource ** out, char const * name, ResourceTypeInfo const * type, bool required);

    // Never loads and never creates. *out is borrowed, null with a false result.
    bool FindNamedResource(Resource ** out, char const * name, ResourceTypeInfo const * type);

    // Enumerate a kind in the order of its keys, hidden resources included. `index` is below the count; *out
    // is null for a kind without resources. Each call walks `index` steps.
    void GetResource(Resource ** out, unsigned int index, ResourceTypeInfo const * type) const;
    unsigned int GetResourcesCount(ResourceTypeInfo const * type) const;

    // Store a resource that the caller made; it keeps a kind of its own over `type`. AddResource translates
    // its name and warns of a duplicate; AddHiddenResource makes it invisible to look-ups by name and names
    // it when it has none.
    void AddResource(Resource * resource, ResourceTypeInfo const * type);
    void AddHiddenResource(Resource * resource, ResourceTypeInfo const * type);

    // A fresh unique name; `out` holds at least 40 bytes.
    void GenerateName(char * out);

    // One step of the batch pump, for at most `maxItems` resources. Gives the number of items left of the
    // present stage, 0 only when nothing is left at all. `abort` gives the batch up: what was not reached
    // stays owed, and 0 is returned. Resources of an open batch must stay in the inventory until it is over.
    unsigned int LoadResources(unsigned int maxItems, bool abort);

    // Runs the pump to the end.
    void LoadResources();

    // Load at once, outside of any batch: one stored name, or all of a kind. No flags change and PostLoad is
    // not called; data that was there is cut loose and not freed.
    void Preload(char const * name, ResourceTypeInfo const * type);
    void Preload(ResourceTypeInfo const * type);

    // Drop what only the inventory holds: one resource, a kind, everything. Repeats until nothing more comes
    // free.
    void Flush(Resource * resource, ResourceTypeInfo const * type);
    void Flush(ResourceTypeInfo const * type);
    void Flush();

    // Take out one resource, or all of a kind, whoever holds them. Held ones live on outside with their data.
    void Remove(Resource * resource, ResourceTypeInfo const * type);
    void Remove(ResourceTypeInfo const * type);

    // Have the kind give new data after a change of the source, then drop what nobody but the inventory
    // holds.
    void Reload(Resource * resource, ResourceTypeInfo const * type);
    void Reload(ResourceTypeInfo const * type);

    void Dump(DumpInfo & info);

    // Writes a dump to a log of that name when the option "invtrackloading" is given; does nothing otherwise.
    void DumpToLogfile(char const * name);

    Data * data;
};
