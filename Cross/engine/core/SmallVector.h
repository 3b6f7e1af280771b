#pragma once

// ast::smallvector: a vector of plain data with room for N elements in place; it goes to the heap only beyond
// that. Elements move as bytes, so they must be trivially copyable. Not copyable itself. References stay
// valid until the next call that grows it.

#include <cstddef>
#include <memory>
#include <new>
#include <type_traits>

namespace ast {

template <class T, std::size_t N, class Allocator = std::allocator<T>>
class smallvector {
    static_assert(N > 0);
    static_assert(std::is_trivially_copyable_v<T> && std::is_trivially_destructible_v<T>);

public:
    constexpr smallvector() : unused() {}

    smallvector(smallvector const &) = delete;
    smallvector & operator=(smallvector const &) = delete;

    ~smallvector() { release(); }

    // Makes room for `wanted` elements in one step. Throws std::bad_alloc, and then nothing has changed.
    void reserve(std::size_t wanted) {
        if (wanted <= room)
            return;
        T * const moved = allocator.allocate(wanted);
        std::uninitialized_copy_n(first, count, moved);
        release();
        first = moved;
        room = wanted;
    }

    void push_back(T const & value) {
        T const copy = value; // `value` may be an element
        if (count == room)
            reserve(2 * room);
        new (first + count) T(copy);
        ++count;
    }

    void clear() { count = 0; }

    std::size_t size() const { return count; }

    std::size_t capacity() const { return room; }

    bool empty() const { return count == 0; }

    T & operator[](std::size_t index) { return first[index]; }

    T const & operator[](std::size_t index) const { return first[index]; }

    T * begin() { return first; }

    T * end() { return first + count; }

    T const * begin() const { return first; }

    T const * end() const { return first + count; }

private:
    void release() {
        if (first != inPlace)
            allocator.deallocate(first, room);
    }

    union {
        unsigned char unused; // until elements come up, so that an empty vector needs no start-up code
        T inPlace[N];
    };

    T * first = inPlace;
    std::size_t count = 0;
    std::size_t room = N;
    [[no_unique_address]] Allocator allocator;
};

} // namespace ast
