#pragma once

// A copier moves chosen members from one buffer to another, also between different layouts. The first copy
// between two layouts makes a plan of byte copies, neighbours in one; from then on a copy looks up no key.
//
// What cannot be added is left out without a word. Threads: one at a time, Copy included. Lifetime: keeps no
// buffer and no layout, but a plan for each pair of layouts that it met, until the next add or Clear.

#include "Cross/Util/RunTimeStructBuffer.h"
#include "Cross/engine/core/Export.h"

#include <cstdint>
#include <map>
#include <vector>

namespace RunTimeStruct {

class CROSS_UTIL_API Copier {
public:
    // Room for so many members in all.
    void Reserve(unsigned int count);

    // Adds a member of a source that goes to a member of a destination, if both refs have the same type and
    // size.
    void AddRef(Ref const & source, Ref const & dest);

    // Adds each member that both layouts have under one key with one type. Of different lengths the smaller
    // one is copied.
    void AddLayout(Layout const & source, Layout const & dest);

    // Adds each member of `dest` whose key has a source key in `aliases` under which `source` has a member of
    // the same type. `aliases` maps destination keys to source keys.
    void AddAliasedLayout(Layout const & source, Layout const & dest,
                          std::map<Dictionary::Key, Dictionary::Key> const & aliases);

    // Whether nothing was added.
    bool Empty() const { return items.empty(); }

    void Clear();

    // Copies what was added, as far as both buffers have it, in the order of the source's members: of two
    // that go to one place the later one stays. `dest` must be set up. Buffers whose layouts differ in
    // nothing but lengths share a plan, and the types that refs named are not compared with those of the
    // layouts; a member that would then leave a block is left out.
    void Copy(Buffer const & source, Buffer & dest);

private:
    struct Item {
        Dictionary::Key sourceKey;
        Dictionary::Key destKey;
    };

    struct Step {
        unsigned int size; // all in bytes
        unsigned int sourceOffset;
        unsigned int destOffset;
    };

    struct Plan {
        unsigned int sourceLayoutID;
        unsigned int destLayoutID;
        std::vector<Step> steps;     // neighbours merged
        std::vector<Step> members;   // the same, one by one
        std::uint64_t sourceEnd = 0; // where the blocks must reach
        std::uint64_t destEnd = 0;
    };

    void addItem(Dictionary::Key const & sourceKey, Dictionary::Key const & destKey);
    Plan const & planFor(Buffer const & source, Buffer const & dest);
    Plan makePlan(Buffer const & source, Buffer const & dest) const;

    std::vector<Item> items;
    std::vector<Plan> plans; // ascending by the two identity numbers
};

} // namespace RunTimeStruct
