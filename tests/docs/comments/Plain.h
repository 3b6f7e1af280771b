#pragma once

// Store: a store of "a<b" & `c<d>`. The file's lead, and the class's, too.
//
//     Store store; // <code>

#include <vector>

// About nothing: a blank line follows.

// Marks a function.
#define MARK(x) x

template <class T, class Next = std::vector<T>>
class Store {
public:
    // Gets one.
    T Get(int key) const;
    T Get(char const * key) const; // by name
    void Other();

    // Adds one.
    void Add(T value) {
        // Not about a declaration.
        for (int i = 0; i < 2; ++i) {
            values.push_back(value); // twice
        }
    }

private:
    enum Kind {
        c_one = 1, // the first
        c_two = 2  // the second
    };

    std::vector<T> values; // of all
};
