#pragma once

// ast::scoped_array: the one owner of an array from new[]. It does not copy; two owners can swap what they
// hold.

#include <cstddef>
#include <utility>

namespace ast {

template <class T>
class scoped_array {
public:
    explicit scoped_array(T * array = nullptr) : array(array) {}

    scoped_array(scoped_array const &) = delete;
    scoped_array & operator=(scoped_array const &) = delete;

    ~scoped_array() { delete[] array; }

    // Frees what is held and takes over `newArray`, which may be null.
    void reset(T * newArray = nullptr) { scoped_array(newArray).swap(*this); }

    void swap(scoped_array & other) noexcept { std::swap(array, other.array); }

    T * get() const { return array; }

    T & operator[](std::size_t index) const { return array[index]; }

    explicit operator bool() const { return array != nullptr; }

private:
    T * array;
};

} // namespace ast
