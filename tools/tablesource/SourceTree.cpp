#include "tools/tablesource/SourceTree.h"

#include "tools/tablesource/TableSource.h"

#include "Cross/engine/core/Text.h"

#include <lua.hpp>

#include <algorithm>
#include <tuple>

namespace TableSource {

namespace {

// Far beyond what people write; they end a structure that is deep or wide without bound.
constexpr std::size_t c_maxDepth = 100;
constexpr std::size_t c_maxFields = 1'000'000;

// Above it not every whole number is a double, and two keys could share their digits.
constexpr double c_maxIndex = 9007199254740992.0;

bool walkOrder(Node const & left, Node const & right) {
    return std::forward_as_tuple(!left.index, left.index, left.name) <
           std::forward_as_tuple(!right.index, right.index, right.name);
}

// Reads the table on top of the Lua stack, and those inside it.
class Reader {
public:
    Reader(lua_State * state, Messages & errors) : state(state), errors(errors) {}

    void ReadTable(Node & table, std::string const & path) {
        int const height = lua_gettop(state);
        openTables.push_back(lua_topointer(state, -1));
        lua_pushnil(state);
        while (!isFull && lua_next(state, -2) != 0) {
            readField(table, path);
            lua_settop(state, height + 1);
        }
        openTables.pop_back();
        lua_settop(state, height);
        std::sort(table.children.begin(), table.children.end(), walkOrder);
    }

    bool IsFull() const { return isFull; }

private:
    // The key lies below the value on top.
    void readField(Node & table, std::string const & path) {
        if (++fieldCount > c_maxFields) {
            isFull = true;
            return fail(path, "has more than 1000000 fields up to here");
        }
        Node field;
        if (!readName(field, path))
            return;
        if (readValue(field, path))
            table.children.push_back(std::move(field));
    }

    bool readName(Node & field, std::string const & path) {
        switch (lua_type(state, -2)) {
        case LUA_TSTRING:
            field.name = stringAt(-2);
            return true;
        case LUA_TNUMBER:
            return readIndex(field, path);
        default:
            fail(path, "has a key that is a " + typeNameAt(-2) + "; keys are names or whole numbers from 0");
            return false;
        }
    }

    bool readIndex(Node & field, std::string const & path) {
        field.index = ToIndex(lua_tonumber(state, -2));
        if (!field.index) {
            std::string digits;
            text::Printf(digits, "%.14g", lua_tonumber(state, -2));
            fail(path, "has the key " + digits + "; number keys are whole and from 0");
            return false;
        }
        field.name = std::to_string(*field.index);
        return true;
    }

    // `path` is that of the table, here too: most fields never need one of their own.
    bool readValue(Node & field, std::string const & path) {
        switch (lua_type(state, -1)) {
        case LUA_TBOOLEAN:
            field.kind = Node::boolean;
            field.flagValue = lua_toboolean(state, -1) != 0;
            return true;
        case LUA_TNUMBER:
            field.kind = Node::number;
            field.numberValue = lua_tonumber(state, -1);
            return true;
        case LUA_TSTRING:
            field.kind = Node::text;
            field.textValue = stringAt(-1);
            return true;
        case LUA_TTABLE:
            field.kind = Node::table;
            return readSubtable(field, JoinPath(path, field.name));
        default:
            fail(JoinPath(path, field.name),
                 "is a " + typeNameAt(-1) + "; values are booleans, numbers, texts and tables");
            return false;
        }
    }

    bool readSubtable(Node & table, std::string const & path) {
        if (std::find(openTables.begin(), openTables.end(), lua_topointer(state, -1)) != openTables.end()) {
            fail(path, "is a table that contains itself");
            return false;
        }
        if (openTables.size() > c_maxDepth || lua_checkstack(state, 4) == 0) {
            fail(path, "is nested more than 100 tables deep");
            return false;
        }
        ReadTable(table, path);
        return true;
    }

    std::string stringAt(int position) {
        std::size_t length = 0;
        char const * const text = lua_tolstring(state, position, &length);
        return std::string(text, length);
    }

    std::string typeNameAt(int position) { return lua_typename(state, lua_type(state, position)); }

    void fail(std::string const & path, std::string const & reason) {
        errors.push_back((path.empty() ? "the root table" : path) + ": " + reason);
    }

    lua_State * state;
    Messages & errors;
    std::vector<void const *> openTables; // from the root to the one being read
    std::size_t fieldCount = 0;
    bool isFull = false;
};

} // namespace

std::optional<std::uint64_t> ToIndex(double number) {
    if (!(number >= 0 && number <= c_maxIndex))
        return {};
    auto const index = static_cast<std::uint64_t>(number);
    return static_cast<double>(index) == number ? std::optional(index) : std::nullopt;
}

char const * KindName(Node::Kind kind) {
    switch (kind) {
    case Node::boolean:
        return "boolean";
    case Node::number:
        return "number";
    case Node::text:
        return "text";
    case Node::table:
        break;
    }
    return "table";
}

std::string JoinPath(std::string const & path, std::string_view name) {
    return path.empty() ? EscapeName(name) : path + "." + EscapeName(name);
}

bool ReadGlobals(lua_State * state, Node & root, Messages & errors) {
    lua_pushvalue(state, LUA_GLOBALSINDEX);
    Reader reader(state, errors);
    reader.ReadTable(root, "");
    lua_pop(state, 1);
    // Lua's own order says nothing to people.
    std::sort(errors.begin(), errors.end());
    return !reader.IsFull();
}

} // namespace TableSource
