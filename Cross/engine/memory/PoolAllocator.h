#pragma once

// PoolAllocator: lets a standard container take its memory from a named pool. The pool must outlive the
// container. Copies of a container share its pool.

#include "Cross/engine/memory/MemPool.h"

#include <limits>
#include <new>
#include <type_traits>

template <class T>
class PoolAllocator {
public:
    using value_type = T;

    // Containers of two pools may swap; each pool goes with its blocks. Assignment leaves a container its
    // pool.
    using propagate_on_container_swap = std::true_type;

    // A null pool means the default pool.
    explicit PoolAllocator(_HMEMPOOL * pool) : pool(pool ? pool : MemPoolDefault()) {}

    template <class Other>
    PoolAllocator(PoolAllocator<Other> const & other) : pool(other.GetPool()) {}

    T * allocate(std::size_t count) {
        static_assert(alignof(T) <= 16);
        if (count > std::numeric_limits<unsigned int>::max() / sizeof(T))
            throw std::bad_alloc();
        return static_cast<T *>(MemPoolAlloc(pool, static_cast<unsigned int>(count * sizeof(T))));
    }

    void deallocate(T * block, std::size_t) { MemPoolFree(pool, block); }

    _HMEMPOOL * GetPool() const { return pool; }

    template <class Other>
    bool operator==(PoolAllocator<Other> const & other) const {
        return pool == other.GetPool();
    }

private:
    _HMEMPOOL * pool;
};
