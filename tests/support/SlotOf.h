#pragma once

// Programs that were built against a table of virtual functions call by position. These tell the position
// where the compiler's member pointers show it.
#if defined(__x86_64__)

#include <cstdint>
#include <cstring>
#include <initializer_list>

// The slot of a virtual function, counted from 0.
template <class Function>
std::uintptr_t SlotOf(Function function) {
    std::uintptr_t word;
    std::memcpy(&word, &function, sizeof(word));
    return (word - 1) / sizeof(void *);
}

// Whether the slots follow one another behind those of a destructor that comes first, which takes two.
inline bool FollowTheDestructor(std::initializer_list<std::uintptr_t> slots) {
    std::uintptr_t expected = 2;
    for (std::uintptr_t const slot : slots)
        if (slot != expected++)
            return false;
    return true;
}

#endif
