#pragma once

// Named memory pools. A pool hands out blocks of any size and knows how many are alive, so that a leak has a
// name.
//
// Threads: every function may be called from any thread; each pool has a lock of its own.
// Lifetime: a pool that is destroyed while blocks are alive stays until the last of them comes back. The
// default pool is there before any static object that asks for it, and never goes. Alignment: blocks are
// aligned to 16 bytes.

#include "Cross/engine/core/Export.h"

#include <cstddef>

struct _HMEMPOOL; // a pool; only its address is of use to callers

// Kind of a pool. 0: blocks go back one by one. 1: blocks go back all at once, with MemPoolClear or
// MemPoolDestroy; a single MemPoolFree only counts.
using MEMPOOLTYPE = unsigned int;

// The process-wide pool.
CROSS_ENGINE_API _HMEMPOOL * MemPoolDefault();

// A new pool. The name is copied; null counts as "". `size` and `flag` are kept and have no effect. Never
// null: throws std::bad_alloc.
CROSS_ENGINE_API _HMEMPOOL * MemPoolCreate(char const * name, MEMPOOLTYPE type, unsigned int size, bool flag);

// A block of at least `size` bytes with undefined content; size 0 gives a block too. Never null: throws
// std::bad_alloc, and the pool is as before.
CROSS_ENGINE_API void * MemPoolAlloc(_HMEMPOOL * pool, unsigned int size);

// Gives back a block of this pool. A null block is ignored; one of another pool, or one that went back
// before, is fatal where it can be told: one line on stderr and abort().
CROSS_ENGINE_API void MemPoolFree(_HMEMPOOL * pool, void * block);

// Gives back all blocks of the pool at once; every pointer into it is then invalid. On the default pool this
// is fatal, since its blocks belong to everybody: one line on stderr and abort().
CROSS_ENGINE_API void MemPoolClear(_HMEMPOOL * pool);

// Ends a pool from MemPoolCreate. Null and the default pool are ignored.
CROSS_ENGINE_API void MemPoolDestroy(_HMEMPOOL * pool);

struct MemPoolStats {
    char const * name;      // the pool's own copy: valid while the pool lives
    std::size_t liveBlocks; // blocks not yet given back
    std::size_t liveBytes;  // sum of the sizes asked for, without overhead
};

CROSS_ENGINE_API MemPoolStats MemPoolGetStats(_HMEMPOOL const * pool);

// Sums up all living pools of that exact name. `sum.name` is `name` itself. False, with zero counts, when
// there is none.
CROSS_ENGINE_API bool MemPoolFindStats(char const * name, MemPoolStats & sum);

// A pool with the life of an object, also for use in static constructors and destructors. Not copyable. Same
// arguments as MemPoolCreate. The handle is its first and only field.
class CROSS_ENGINE_API MemoryPoolObj {
public:
    MemoryPoolObj(char const * name, MEMPOOLTYPE type, unsigned int size, bool flag);
    MemoryPoolObj(MemoryPoolObj const &) = delete;
    MemoryPoolObj & operator=(MemoryPoolObj const &) = delete;
    ~MemoryPoolObj();

    _HMEMPOOL * Get() const { return pool; }

private:
    _HMEMPOOL * pool;
};
