#include "Cross/engine/memory/BlockSource.h"

#include <algorithm>
#include <array>
#include <memory_resource>
#include <new>
#include <utility>

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define CROSS_SANITIZED
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer) || __has_feature(memory_sanitizer)
#define CROSS_SANITIZED
#endif
#endif

namespace {

// Each block comes from the heap by itself and is chained to its neighbours, so that all can go at once.
class ListedSource final : public BlockSource {
public:
    ~ListedSource() override { freeAll(); }

    void * Take(std::size_t bytes) override {
        Link * const link = new (heap()->allocate(bytes + sizeof(Link), c_blockAlignment)) Link;
        link->bytes = bytes;
        link->next = ends.next;
        link->previous = &ends;
        ends.next->previous = link;
        ends.next = link;
        return link + 1;
    }

    void Give(void * block, std::size_t bytes) noexcept override {
        Link * const link = static_cast<Link *>(block) - 1;
        link->previous->next = link->next;
        link->next->previous = link->previous;
        heap()->deallocate(link, bytes + sizeof(Link), c_blockAlignment);
    }

    void GiveAll() noexcept override { freeAll(); }

private:
    struct alignas(c_blockAlignment) Link {
        Link * previous;
        Link * next;
        std::size_t bytes;
    };

    static std::pmr::memory_resource * heap() { return std::pmr::new_delete_resource(); }

    void freeAll() noexcept {
        while (ends.next != &ends)
            Give(ends.next + 1, ends.next->bytes);
    }

    Link ends = {&ends, &ends, 0};
};

#ifndef CROSS_SANITIZED

// Cuts blocks from buffers, one behind the other. The first buffer is its own, so that a short-lived pool
// asks the heap for nothing more; the others grow with the need up to a size that the heap still serves from
// memory at hand. A block too large for that gets a buffer of its own.
class BumpSource final : public BlockSource {
public:
    void * Take(std::size_t bytes) override {
        std::size_t const room = (bytes + c_blockAlignment - 1) / c_blockAlignment * c_blockAlignment;
        if (room > left) {
            if (room > c_largestShared)
                return buffers.Take(room);
            next = static_cast<unsigned char *>(buffers.Take(nextBuffer));
            left = nextBuffer;
            nextBuffer = std::min(2 * nextBuffer, c_largestBuffer);
        }
        left -= room;
        return std::exchange(next, next + room);
    }

    void Give(void *, std::size_t) noexcept override {}

    void GiveAll() noexcept override {
        buffers.GiveAll();
        next = first;
        left = sizeof(first);
        nextBuffer = c_secondBuffer;
    }

private:
    static constexpr std::size_t c_firstBuffer = 2048;
    static constexpr std::size_t c_secondBuffer = 4096;
    static constexpr std::size_t c_largestBuffer = 65536;
    static constexpr std::size_t c_largestShared = c_firstBuffer / 2;

    ListedSource buffers;
    alignas(c_blockAlignment) unsigned char first[c_firstBuffer];
    unsigned char * next = first;
    std::size_t left = sizeof(first);
    std::size_t nextBuffer = c_secondBuffer;
};

// Small blocks are cut from shared buffers and kept for the next one of their size when they come back; large
// ones go to the heap and back.
class RecyclingSource final : public BlockSource {
public:
    void * Take(std::size_t bytes) override {
        if (bytes > c_largestSmall)
            return large.Take(bytes);
        Idle *& first = idle[classOf(bytes)];
        if (!first)
            return small.Take(bytes);
        return std::exchange(first, first->next);
    }

    void Give(void * block, std::size_t bytes) noexcept override {
        if (bytes > c_largestSmall)
            return large.Give(block, bytes);
        Idle *& first = idle[classOf(bytes)];
        first = new (block) Idle{first};
    }

    void GiveAll() noexcept override {
        idle.fill(nullptr);
        small.GiveAll();
        large.GiveAll();
    }

private:
    static constexpr std::size_t c_largestSmall = 512;

    struct Idle {
        Idle * next;
    };

    static std::size_t classOf(std::size_t bytes) {
        return (bytes + c_blockAlignment - 1) / c_blockAlignment;
    }

    std::array<Idle *, c_largestSmall / c_blockAlignment + 1> idle = {};
    BumpSource small;
    ListedSource large;
};

#endif

} // namespace

#ifdef CROSS_SANITIZED

// The sanitizers see the use of a block that went back only if it went back to the heap.
std::unique_ptr<BlockSource> MakeRecyclingSource() { return std::make_unique<ListedSource>(); }

std::unique_ptr<BlockSource> MakeBumpSource() { return std::make_unique<ListedSource>(); }

#else

// The first buffers need no zeroes.

std::unique_ptr<BlockSource> MakeRecyclingSource() {
    return std::make_unique_for_overwrite<RecyclingSource>();
}

std::unique_ptr<BlockSource> MakeBumpSource() { return std::make_unique_for_overwrite<BumpSource>(); }

#endif
