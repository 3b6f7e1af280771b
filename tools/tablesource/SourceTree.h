#pragma once

// The values that a script left in its state, as a tree. Private to the table source.

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

struct lua_State;

namespace TableSource {

// Collects "path: what is wrong".
using Messages = std::vector<std::string>;

struct Node {
    enum Kind { boolean, number, text, table };

    Kind kind = table;
    std::string name;
    std::optional<std::uint64_t> index; // of a field whose Lua key is a number; `name` is its digits

    bool flagValue = false;
    double numberValue = 0;
    std::string textValue;
    std::vector<Node> children; // number keys ascending, then text keys in byte order

    // What `types` says of the field.
    bool isInteger = false;
    bool isWide = false;
    bool isOrdered = false;
};

// The whole number from 0 that a Lua number is, as a key; nothing when it is none.
std::optional<std::uint64_t> ToIndex(double number);

char const * KindName(Node::Kind kind);

// The path of a field of the table at `path`, which is "" for the root.
std::string JoinPath(std::string const & path, std::string_view name);

// Takes the globals of a state into `root`. Whatever a table cannot hold goes to `errors` with its path and
// is left out. False when there are too many fields to go on; the tree is not whole then.
bool ReadGlobals(lua_State * state, Node & root, Messages & errors);

} // namespace TableSource
