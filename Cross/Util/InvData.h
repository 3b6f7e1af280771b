#pragma once

// The body of the warehouse, shared by its sources.

#include "Cross/Util/Inv.h"
#include "Cross/engine/filesystem/FilePath.h"
#include "Cross/engine/memory/PoolAllocator.h"

#include <functional>
#include <list>
#include <map>
#include <string>
#include <utility>
#include <vector>

// The resources of one kind by the hash of their names; equal hashes stay in the order in which they were
// added. Each entry holds one reference.
class InvBin {
public:
    using Entries = std::multimap<std::uint32_t, Inv::Resource *, std::less<std::uint32_t>,
                                  PoolAllocator<std::pair<std::uint32_t const, Inv::Resource *>>>;

    explicit InvBin(Inv::ResourceTypeInfo const * type);

    Inv::ResourceTypeInfo const * type;
    Entries entries;
};

class Inv::Warehouse::Data : public FilePath::IFileChangeNotify {
public:
    explicit Data(bool enableBatching);
    void OnFileChanged(char const * path) override;
    ~Data() override;

    // Null for a kind without a bin.
    InvBin * FindBin(ResourceTypeInfo const * type);

    // Stores a resource under its own name and kind, with the warnings for a name that is there already.
    void Add(Resource * resource);

    // The first visible resource of that canonical name, null when there is none.
    Resource * Find(InvBin & bin, char const * canonicalName);

    // Where a resource stands in a bin; the end when it does not.
    InvBin::Entries::iterator FindEntry(InvBin & bin, Resource const * resource);

    // Takes an entry out of its bin, destroys its data when asked to, and gives back the warehouse's
    // reference. Gives the entry behind it.
    InvBin::Entries::iterator TakeOut(InvBin & bin, InvBin::Entries::iterator entry, bool destroyData);

    // One pass over a bin that takes out what only the inventory holds. Gives the number of entries taken
    // out.
    unsigned int FlushPass(InvBin & bin);

    // Appends all resources whose load is deferred, sorted by the names of their kinds, then by their own.
    void CollectDeferred(std::vector<Resource *> & list);

    // Opens the scheduler's batch for a collected list and has the kinds announce their files.
    void OpenBatch(std::vector<Resource *> const & list);

    // The two stages of a batch for one resource.
    static void LoadStep(Resource * resource);
    static void PostStep(Resource * resource);

    // Destroys all data and gives back all resources, whoever holds them.
    void Clear();

    std::list<InvBin> bins; // in the order in which their kinds were first seen
    bool batchingOff;

private:
    InvBin & getBin(ResourceTypeInfo const * type);
    void warnOfTwin(InvBin & bin, std::uint32_t key, char const * name);
};

// Holds a reference while a kind is at work on a resource: what it does may flush, or throw.
class InvHold {
public:
    explicit InvHold(Inv::Resource * resource) : resource(Inv::Resource::Retain(resource)) {}

    InvHold(InvHold const &) = delete;
    InvHold & operator=(InvHold const &) = delete;

    ~InvHold() { Inv::Resource::Release(resource); }

private:
    Inv::Resource * resource;
};

// The two operations of a kind that are not const, on the const pointers by which kinds are held. No kind is
// a const object.
inline Inv::ResourceTypeInfo & InvMutableKind(Inv::ResourceTypeInfo const * type) {
    return const_cast<Inv::ResourceTypeInfo &>(*type);
}

// Has the kind translate a name, cut to 255 characters behind its last ':' first. Gives the canonical name,
// which lies in `buffer` or, when the kind uses names unchanged, in `cut`, or is `name` itself.
class InvCanonicalName {
public:
    InvCanonicalName(Inv::ResourceTypeInfo const * type, char const * name);

    char const * Get() const { return canonical; }

    // Whether the kind translated the name.
    bool IsTranslated() const { return canonical == buffer; }

private:
    static constexpr std::size_t c_maxName = 255;

    char buffer[c_maxPath];
    std::string cut;
    char const * canonical;
};
