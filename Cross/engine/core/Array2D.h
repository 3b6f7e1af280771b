#pragma once

// Array2D: a plain array of rows, each of `width` elements, one behind the other. The members are open to
// read and to change elements through; sizes change by Resize and Clear only.

#include <cstddef>
#include <new>

// Takes blocks from the heap. Elements come without a value where their type allows it.
template <class T>
struct Array2DNewAllocator {
    // Null when there is no room.
    static T * Allocate(std::size_t count) { return new (std::nothrow) T[count]; }

    static void Free(T * block) { delete[] block; }
};

template <class T, class Allocator>
class Array2D {
public:
    Array2D() = default;
    Array2D(Array2D const &) = delete;
    Array2D & operator=(Array2D const &) = delete;

    ~Array2D() { Allocator::Free(data); }

    // Makes an array of another size, whose elements have no value yet; the same size changes nothing. The
    // array is empty afterwards when there is no room.
    void Resize(unsigned int newWidth, unsigned int newHeight) {
        if (newWidth == width && newHeight == height)
            return;
        Clear();
        if (newWidth > 0 && newHeight > 0) {
            data = Allocator::Allocate(std::size_t{newWidth} * newHeight);
            if (!data)
                return;
        }
        width = newWidth;
        height = newHeight;
    }

    // Gives the block back; the array is 0 by 0 then.
    void Clear() {
        Allocator::Free(data);
        data = nullptr;
        width = height = 0;
    }

    T * data = nullptr; // null when a side is 0
    unsigned int width = 0, height = 0;
};
