#pragma once

// The owner of one file descriptor. Moves, does not copy; -1 owns nothing.

#include <unistd.h>

#include <utility>

class Descriptor {
public:
    Descriptor() = default;

    explicit Descriptor(int value) : value(value) {}

    Descriptor(Descriptor && source) noexcept : value(std::exchange(source.value, -1)) {}

    Descriptor & operator=(Descriptor && source) noexcept {
        Descriptor taken(std::move(source));
        std::swap(value, taken.value);
        return *this;
    }

    ~Descriptor() { Close(); }

    explicit operator bool() const { return value >= 0; }

    int Get() const { return value; }

    void Close() {
        if (value >= 0)
            ::close(std::exchange(value, -1));
    }

private:
    int value = -1;
};
