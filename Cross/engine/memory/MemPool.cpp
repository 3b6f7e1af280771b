#include "Cross/engine/memory/MemPool.h"

#include "Cross/engine/memory/BlockSource.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <string>

namespace {

// Stands in front of each block that a pool hands out.
struct alignas(c_blockAlignment) BlockHeader {
    _HMEMPOOL * owner; // null once the block went back
    std::uint32_t size;
};

std::size_t footprint(std::uint32_t size) { return sizeof(BlockHeader) + size; }

[[noreturn]] void stop(char const * problem, std::string const & pool) {
    std::fprintf(stderr, "Memory pool '%s': %s\n", pool.c_str(), problem);
    std::abort();
}

} // namespace

struct _HMEMPOOL {
    _HMEMPOOL(char const * name, MEMPOOLTYPE type, unsigned int size, bool flag)
        : name(name ? name : ""),
          type(type),
          size(size),
          flag(flag),
          source(freesAtOnce() ? MakeBumpSource() : MakeRecyclingSource()) {}

    bool freesAtOnce() const { return type == 1; }

    void * Alloc(std::uint32_t bytes) {
        std::lock_guard const guard(lock);
        BlockHeader * const block = new (source->Take(footprint(bytes))) BlockHeader{this, bytes};
        ++liveBlocks;
        liveBytes += bytes;
        return block + 1;
    }

    // The three operations that end blocks tell whether the pool is ended and was waiting for just these.

    bool Free(void * memory) {
        BlockHeader * const block = static_cast<BlockHeader *>(memory) - 1;
        std::lock_guard const guard(lock);
        if (block->owner != this)
            stop("a block that is not alive in this pool was freed", name);
        --liveBlocks;
        liveBytes -= block->size;
        block->owner = nullptr;
        source->Give(block, footprint(block->size));
        return ended && liveBlocks == 0;
    }

    bool Clear() {
        std::lock_guard const guard(lock);
        source->GiveAll();
        liveBlocks = 0;
        liveBytes = 0;
        return ended;
    }

    bool End() {
        std::lock_guard const guard(lock);
        ended = true;
        return liveBlocks == 0 || freesAtOnce();
    }

    MemPoolStats Stats() const {
        std::lock_guard const guard(lock);
        return {name.c_str(), liveBlocks, liveBytes};
    }

    std::string const name;
    MEMPOOLTYPE const type;
    unsigned int const size;
    bool const flag;

    // Neighbours in the list of all pools, under the lock of the list.
    _HMEMPOOL * previous = nullptr;
    _HMEMPOOL * next = nullptr;

private:
    mutable std::mutex lock;
    std::unique_ptr<BlockSource> const source;
    std::size_t liveBlocks = 0;
    std::size_t liveBytes = 0;
    bool ended = false;
};

namespace {

// All pools that live. A pool's lock may be taken under the lock of the list, never the other way round.
class PoolList {
public:
    // Immortal: pools come and go in static constructors and destructors.
    static PoolList & Instance() {
        static PoolList & list = *new PoolList;
        return list;
    }

    void Add(_HMEMPOOL * pool) {
        std::lock_guard const guard(lock);
        pool->next = first;
        if (first)
            first->previous = pool;
        first = pool;
    }

    void Remove(_HMEMPOOL * pool) {
        std::lock_guard const guard(lock);
        (pool->previous ? pool->previous->next : first) = pool->next;
        if (pool->next)
            pool->next->previous = pool->previous;
    }

    bool Sum(char const * name, MemPoolStats & sum) const {
        bool found = false;
        std::lock_guard const guard(lock);
        for (_HMEMPOOL const * pool = first; pool; pool = pool->next) {
            if (pool->name != name)
                continue;
            MemPoolStats const stats = pool->Stats();
            sum.liveBlocks += stats.liveBlocks;
            sum.liveBytes += stats.liveBytes;
            found = true;
        }
        return found;
    }

private:
    mutable std::mutex lock;
    _HMEMPOOL * first = nullptr;
};

void discard(_HMEMPOOL * pool) {
    PoolList::Instance().Remove(pool);
    delete pool;
}

} // namespace

_HMEMPOOL * MemPoolDefault() {
    static _HMEMPOOL * const pool = MemPoolCreate("Default", 0, 0, false);
    return pool;
}

_HMEMPOOL * MemPoolCreate(char const * name, MEMPOOLTYPE type, unsigned int size, bool flag) {
    _HMEMPOOL * const pool = new _HMEMPOOL(name, type, size, flag);
    PoolList::Instance().Add(pool);
    return pool;
}

void * MemPoolAlloc(_HMEMPOOL * pool, unsigned int size) { return pool->Alloc(size); }

void MemPoolFree(_HMEMPOOL * pool, void * block) {
    if (block && pool->Free(block))
        discard(pool);
}

void MemPoolClear(_HMEMPOOL * pool) {
    if (pool == MemPoolDefault())
        stop("the default pool was cleared", pool->name);
    if (pool->Clear())
        discard(pool);
}

void MemPoolDestroy(_HMEMPOOL * pool) {
    if (pool && pool != MemPoolDefault() && pool->End())
        discard(pool);
}

MemPoolStats MemPoolGetStats(_HMEMPOOL const * pool) { return pool->Stats(); }

bool MemPoolFindStats(char const * name, MemPoolStats & sum) {
    sum = {name, 0, 0};
    return name && PoolList::Instance().Sum(name, sum);
}

MemoryPoolObj::MemoryPoolObj(char const * name, MEMPOOLTYPE type, unsigned int size, bool flag)
    : pool(MemPoolCreate(name, type, size, flag)) {}

MemoryPoolObj::~MemoryPoolObj() { MemPoolDestroy(pool); }
