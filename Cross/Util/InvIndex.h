#pragma once

// From the key of a name to the resources of that key, private to the inventory.

#include "Cross/Util/Inv.h"

#include <cstdint>
#include <vector>

// A hash table with linear probing, at most half full. Resources of one key are found in the order in which
// they were added. Slots stand in the order of their keys but for a few, so that a walk over a bin in the
// order of its keys stays near in memory here too.
class InvIndex {
public:
    InvIndex() : slots(c_firstSize) {}

    // Twice the size, and empty.
    void Grow() { slots.assign(2 * slots.size(), {}); }

    // How many resources it may hold.
    std::size_t Capacity() const { return slots.size() / 2; }

    void Insert(std::uint32_t key, Inv::Resource * resource) {
        std::size_t i = homeOf(key);
        while (slots[i].resource)
            i = behind(i);
        slots[i] = {key, resource};
    }

    // The first resource of a key for which `matches` gives true, null when there is none.
    template <class Matches>
    Inv::Resource * Find(std::uint32_t key, Matches && matches) const {
        for (std::size_t i = homeOf(key); slots[i].resource; i = behind(i))
            if (slots[i].key == key && matches(slots[i].resource))
                return slots[i].resource;
        return nullptr;
    }

    // The resource stands in the table.
    void Erase(std::uint32_t key, Inv::Resource const * resource) {
        std::size_t hole = homeOf(key);
        while (slots[hole].resource != resource)
            hole = behind(hole);
        for (std::size_t i = behind(hole); slots[i].resource; i = behind(i)) {
            if (distance(homeOf(slots[i].key), i) < distance(hole, i))
                continue; // in the hole, it would stand in front of where searches for it begin
            slots[hole] = slots[i];
            hole = i;
        }
        slots[hole] = {};
    }

private:
    struct Slot {
        std::uint32_t key = 0;
        Inv::Resource * resource = nullptr; // null in an empty slot
    };

    static constexpr std::size_t c_firstSize = 16;

    std::size_t homeOf(std::uint32_t key) const {
        return static_cast<std::size_t>(std::uint64_t{key} * slots.size() >> 32);
    }

    std::size_t distance(std::size_t from, std::size_t to) const { return (to - from) & (slots.size() - 1); }

    std::size_t behind(std::size_t i) const { return (i + 1) & (slots.size() - 1); }

    std::vector<Slot> slots; // a power of two of them
};
