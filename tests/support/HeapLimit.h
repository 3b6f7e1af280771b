#pragma once

#include <cstddef>

// While it lives, every operator new of the calling thread that asks for more than `largest` bytes fails.
// Whoever uses it replaces the operators of the whole test program. One at a time per thread.
class HeapLimit {
public:
    explicit HeapLimit(std::size_t largest);
    HeapLimit(HeapLimit const &) = delete;
    HeapLimit & operator=(HeapLimit const &) = delete;
    ~HeapLimit();
};
