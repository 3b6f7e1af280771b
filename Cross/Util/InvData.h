#pragma once

// The body of the warehouse, shared by its sources.

#include "Cross/Util/Inv.h"
#include "Cross/Util/InvIndex.h"
#include "Cross/engine/filesystem/FilePath.h"
#include "Cross/engine/memory/PoolAllocator.h"

#include <functional>
#include <list>
#include <map>
#include <string>
#include <utility>
#include <vector>

class Inv::Warehouse::Data : public FilePath::IFileChangeNotify {
public:
    class Bin;

    explicit Data(bool enableBatching);
    void OnFileChanged(char const * path) override;
    ~Data() override;

    // Null for a kind without a bin.
    Bin * FindBin(ResourceTypeInfo const * type);

    // Stores a resource under its own name and kind, with the warnings for a name that is there already.
    void Add(Resource * resource);

    // Appends all resources whose load is deferred, sorted by the names of their kinds, then by their own.
    void CollectDeferred(std::vector<Resource *> & list);

    // Opens the scheduler's batch for a collected list and has the kinds announce their files.
    static void OpenBatch(std::vector<Resource *> const & list);

    // The two stages of a batch for one resource.
    static void LoadStep(Resource * resource);
    static void PostStep(Resource * resource);

    // Destroys all data and gives back all resources, whoever holds them.
    void Clear();

    std::list<Bin> bins; // in the order in which their kinds were first seen
    bool batchingOff;

private:
    Bin & getBin(ResourceTypeInfo const * type);
    std::vector<Bin *> sortedDeferrableBins();
};

// The resources of one kind by the hash of their names. Each entry holds one reference.
class Inv::Warehouse::Data::Bin {
public:
    using Resources = std::multimap<std::uint32_t, Resource *, std::less<std::uint32_t>,
                                    PoolAllocator<std::pair<std::uint32_t const, Resource *>>>;
    using Entry = Resources::iterator;

    explicit Bin(ResourceTypeInfo const * type);
    Bin(Bin const &) = delete;
    Bin & operator=(Bin const &) = delete;

    // Where a resource that is stored in some bin stands in this one; the end when it does not.
    Entry FindResource(Resource const * resource);

    // The first visible resource of that canonical name, null when there is none.
    Resource * FindName(char const * canonicalName);

    // Warns when a name is about to be stored behind others of its key.
    void WarnOfTwin(std::uint32_t key, char const * name);

    // Stores behind all entries of equal key. Takes over a reference.
    void Insert(std::uint32_t key, Resource * resource);

    // Gives the warehouse's reference back. The data goes too when only the inventory held the resource.
    void TakeOut(Entry entry);

    void TakeOutAll();

    // Data goes whoever holds the resources, which stay.
    void DestroyAllData();

    // One pass that takes out what only the inventory holds. Gives the number of entries taken out.
    unsigned int FlushPass();

    // Visits the entries in key order. A visit may take out any of them; the next one is determined before.
    template <class Visit>
    void ForEach(Visit && visit) {
        Walk walk(*this);
        while (walk.next != resources.end())
            visit(walk.next++);
    }

    ResourceTypeInfo const * const type;
    Resources resources; // equal keys in the order in which they were added

private:
    // A walk under way, chained to the one around it, so that none is left standing at an entry that went.
    struct Walk {
        explicit Walk(Bin & bin)
            : bin(bin), next(bin.resources.begin()), outer(std::exchange(bin.innermost, this)) {}

        ~Walk() { bin.innermost = outer; }

        Bin & bin;
        Entry next;
        Walk * outer;
    };

    void erase(Entry entry);
    void destroyData(Resource * resource);

    InvIndex index; // for look-ups by name
    Walk * innermost = nullptr;
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

    void cutBehindColon();

    char buffer[c_maxPath];
    std::string cut;
    char const * canonical;
};
