#pragma once

// Where the blocks of one memory pool come from. Private to the memory layer.
//
// Threads: none of it is safe by itself; the pool's lock stands around every call. Alignment: blocks are
// aligned to c_blockAlignment.

#include <cstddef>
#include <memory>

inline constexpr std::size_t c_blockAlignment = 16;

class BlockSource {
public:
    BlockSource() = default;
    BlockSource(BlockSource const &) = delete;
    BlockSource & operator=(BlockSource const &) = delete;

    // Gives up all blocks.
    virtual ~BlockSource() = default;

    // A block of at least `bytes` bytes. Throws std::bad_alloc, and then nothing has changed.
    virtual void * Take(std::size_t bytes) = 0;

    // Takes one block back; `bytes` is what it was asked for with. May touch its first bytes.
    virtual void Give(void * block, std::size_t bytes) noexcept = 0;

    // Takes all blocks back at once.
    virtual void GiveAll() noexcept = 0;
};

// For blocks that go back one by one.
std::unique_ptr<BlockSource> MakeRecyclingSource();

// For blocks that go back all at once: faster, but Give frees nothing.
std::unique_ptr<BlockSource> MakeBumpSource();
