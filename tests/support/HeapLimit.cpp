#include "tests/support/HeapLimit.h"

#include <cstdlib>
#include <limits>
#include <new>

namespace {

constexpr std::size_t c_unlimited = std::numeric_limits<std::size_t>::max();

thread_local std::size_t t_largest = c_unlimited;

void * takeOrNull(std::size_t size, std::size_t alignment = __STDCPP_DEFAULT_NEW_ALIGNMENT__) noexcept {
    if (size > t_largest || size > c_unlimited - alignment)
        return nullptr;
    std::size_t const whole = size == 0 ? alignment : (size + alignment - 1) / alignment * alignment;
    return std::aligned_alloc(alignment, whole);
}

void * take(std::size_t size, std::size_t alignment = __STDCPP_DEFAULT_NEW_ALIGNMENT__) {
    if (void * const block = takeOrNull(size, alignment))
        return block;
    throw std::bad_alloc();
}

std::size_t number(std::align_val_t alignment) { return static_cast<std::size_t>(alignment); }

} // namespace

HeapLimit::HeapLimit(std::size_t largest) { t_largest = largest; }

HeapLimit::~HeapLimit() { t_largest = c_unlimited; }

// All of them: a sanitizer has each in a version of its own.
void * operator new(std::size_t size) { return take(size); }

void * operator new[](std::size_t size) { return take(size); }

void * operator new(std::size_t size, std::nothrow_t const &) noexcept { return takeOrNull(size); }

void * operator new[](std::size_t size, std::nothrow_t const &) noexcept { return takeOrNull(size); }

void * operator new(std::size_t size, std::align_val_t alignment) { return take(size, number(alignment)); }

void * operator new[](std::size_t size, std::align_val_t alignment) { return take(size, number(alignment)); }

void operator delete(void * block) noexcept { std::free(block); }

void operator delete[](void * block) noexcept { std::free(block); }

void operator delete(void * block, std::size_t) noexcept { std::free(block); }

void operator delete[](void * block, std::size_t) noexcept { std::free(block); }

void operator delete(void * block, std::nothrow_t const &) noexcept { std::free(block); }

void operator delete[](void * block, std::nothrow_t const &) noexcept { std::free(block); }

void operator delete(void * block, std::align_val_t) noexcept { std::free(block); }

void operator delete[](void * block, std::align_val_t) noexcept { std::free(block); }

void operator delete(void * block, std::size_t, std::align_val_t) noexcept { std::free(block); }

void operator delete[](void * block, std::size_t, std::align_val_t) noexcept { std::free(block); }
