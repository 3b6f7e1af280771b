#include "Cross/engine/scriptconfig/LuaSourceWriter.h"

#include "Cross/engine/filesystem/ByteStream.h"
#include "Cross/engine/scriptconfig/StateLibraries.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace script {
namespace {

constexpr int c_maxDepth = 150;

// A constructor inside another one takes two of the 250 registers of its function.
constexpr int c_maxConstructorDepth = 100;

// Each field can need two of the 2^18 constants of its function.
constexpr std::uint64_t c_maxBlockFields = 50000;

// No field of a table takes less than eight bytes, and no stream holds 4 GiB. Tables met twice count twice,
// so a few of them can reach any number.
constexpr std::uint64_t c_maxFields = std::uint64_t{1} << 29;

constexpr std::size_t c_writeSize = 65536;

constexpr int c_slotsPerLevel = 8;

constexpr std::string_view c_keywords[] = {"and", "break",    "do",     "else", "elseif", "end",   "false",
                                           "for", "function", "if",     "in",   "local",  "nil",   "not",
                                           "or",  "repeat",   "return", "then", "true",   "until", "while"};

bool isLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_'; }

bool isDigit(char c) { return c >= '0' && c <= '9'; }

bool isIdentifier(std::string_view text) {
    if (text.empty() || isDigit(text[0]))
        return false;
    if (!std::all_of(text.begin(), text.end(), [](char c) { return isLetter(c) || isDigit(c); }))
        return false;
    return std::find(std::begin(c_keywords), std::end(c_keywords), text) == std::end(c_keywords);
}

std::string numberText(double number) {
    if (std::isnan(number))
        return "0/0";
    if (std::isinf(number))
        return number > 0 ? "1/0" : "-1/0";
    if (number == 0 && std::signbit(number))
        return "-1/(1/0)";                          // as a constant it would be one with 0
    constexpr double wholeEnd = 9007199254740992.0; // 2^53
    bool const isWhole = std::abs(number) < wholeEnd && number == std::floor(number);
    char text[32];
    auto const [end, error] =
        isWhole ? std::to_chars(text, text + sizeof(text), static_cast<std::int64_t>(number))
                : std::to_chars(text, text + sizeof(text), number);
    return {text, end};
}

std::string quoted(std::string_view text) {
    std::string out = "\"";
    for (char const c : text) {
        auto const byte = static_cast<unsigned char>(c);
        if (c == '"' || c == '\\') {
            out += '\\';
            out += c;
        } else if (byte < 0x20 || byte == 0x7F) {
            out += '\\';
            out += static_cast<char>('0' + byte / 100);
            out += static_cast<char>('0' + byte / 10 % 10);
            out += static_cast<char>('0' + byte % 10);
        } else {
            out += c;
        }
    }
    return out + '"';
}

// A key that can be written; the text is the key's own.
struct Key {
    int type = LUA_TNIL;
    double number = 0;
    std::string_view text;
    bool flag = false;
    bool holdsTable = false;
};

int rankOf(Key const & key) { return key.type == LUA_TNUMBER ? 0 : key.type == LUA_TSTRING ? 1 : 2; }

bool comesBefore(Key const & left, Key const & right) {
    if (left.type != right.type)
        return rankOf(left) < rankOf(right);
    if (left.type == LUA_TNUMBER)
        return left.number < right.number;
    if (left.type == LUA_TSTRING)
        return left.text < right.text;
    return left.flag < right.flag;
}

bool isPlain(int type) { return type == LUA_TNUMBER || type == LUA_TSTRING || type == LUA_TBOOLEAN; }

// Whether the pair that lua_next has pushed can be written.
bool isWritablePair(lua_State * L) {
    int const valueType = lua_type(L, -1);
    return isPlain(lua_type(L, -2)) && (isPlain(valueType) || valueType == LUA_TTABLE);
}

// The key of the pair that lua_next has pushed.
Key keyOfPair(lua_State * L) {
    Key key;
    key.type = lua_type(L, -2);
    key.holdsTable = lua_istable(L, -1);
    if (key.type == LUA_TNUMBER) {
        key.number = lua_tonumber(L, -2);
    } else if (key.type == LUA_TSTRING) {
        std::size_t length = 0;
        char const * const text = lua_tolstring(L, -2, &length);
        key.text = {text, length};
    } else {
        key.flag = lua_toboolean(L, -2) != 0;
    }
    return key;
}

std::vector<Key> listKeys(lua_State * L, int table) {
    std::vector<Key> keys;
    lua_pushnil(L);
    while (lua_next(L, table) != 0) {
        if (isWritablePair(L))
            keys.push_back(keyOfPair(L));
        lua_pop(L, 1);
    }
    std::sort(keys.begin(), keys.end(), comesBefore);
    return keys;
}

void pushField(lua_State * L, int table, Key const & key) {
    if (key.type == LUA_TNUMBER)
        lua_pushnumber(L, key.number);
    else if (key.type == LUA_TSTRING)
        lua_pushlstring(L, key.text.data(), key.text.size());
    else
        lua_pushboolean(L, key.flag);
    lua_rawget(L, table);
}

std::string bracketed(Key const & key) {
    std::string out = "[";
    if (key.type == LUA_TNUMBER)
        out += numberText(key.number);
    else if (key.type == LUA_TSTRING)
        out += quoted(key.text);
    else
        out += key.flag ? "true" : "false";
    return out + ']';
}

bool isName(Key const & key) { return key.type == LUA_TSTRING && isIdentifier(key.text); }

std::string constructorKey(Key const & key) { return isName(key) ? std::string(key.text) : bracketed(key); }

// A field as a variable: of the table that `prefix` names, or a global when that is empty.
std::string variable(std::string const & prefix, Key const & key) {
    if (prefix.empty())
        return isName(key) ? std::string(key.text) : "_G" + bracketed(key);
    return isName(key) ? prefix + "." + std::string(key.text) : prefix + bracketed(key);
}

class Writer {
public:
    Writer(lua_State * L, ByteStream & stream) : L(L), stream(stream) {}

    void WriteGlobals(int builtins, bool tables, bool plain);

private:
    // What a value takes to write; nothing for a plain one.
    struct Extent {
        std::uint64_t fields = 0; // with those of the tables in it
        int depth = 0;            // 0 for a table: it is being measured
    };

    std::vector<Key> selectGlobals(int globals, int builtins, bool tables, bool plain);
    Extent measure(int value, int depth);
    Extent measureFields(int table, int depth);
    std::uint64_t measureGlobals(int globals, std::vector<Key> const & keys);

    void writeStatements(int table, std::vector<Key> const & keys, std::string const & path, bool inBlocks);
    void writeValue(int value, std::size_t indent);
    void writeTable(int table, std::size_t indent);
    void put(std::string_view text);
    void flush();

    lua_State * L;
    ByteStream & stream;
    std::string buffer;
    std::unordered_map<void const *, Extent> extents;
};

void Writer::WriteGlobals(int builtins, bool tables, bool plain) {
    lua_pushvalue(L, LUA_GLOBALSINDEX);
    int const globals = lua_gettop(L);
    std::vector<Key> const keys = selectGlobals(globals, builtins, tables, plain);
    bool const inBlocks = measureGlobals(globals, keys) > c_maxBlockFields;
    writeStatements(globals, keys, "", inBlocks);
    flush();
    if (!stream.Flush())
        throw std::runtime_error("the stream cannot be written");
}

std::vector<Key> Writer::selectGlobals(int globals, int builtins, bool tables, bool plain) {
    std::vector<Key> keys = listKeys(L, globals);
    std::erase_if(keys, [&](Key const & key) {
        StackHeight const height(L);
        pushField(L, globals, key);
        pushField(L, builtins, key);
        return lua_rawequal(L, -1, -2) != 0 || !(key.holdsTable ? tables : plain);
    });
    // A script that gives this name a value of its own must have used its old one before.
    std::stable_partition(keys.begin(), keys.end(), [](Key const & key) { return key.text != "_G"; });
    return keys;
}

std::uint64_t Writer::measureGlobals(int globals, std::vector<Key> const & keys) {
    std::uint64_t fields = 0;
    for (Key const & key : keys) {
        StackHeight const height(L);
        pushField(L, globals, key);
        fields += measure(lua_gettop(L), 1).fields + 1;
    }
    if (fields > c_maxFields)
        throw std::runtime_error("there are more fields than a stream can hold");
    return fields;
}

Writer::Extent Writer::measure(int value, int depth) {
    if (!lua_istable(L, value))
        return {};
    auto const [found, isNew] = extents.try_emplace(lua_topointer(L, value));
    if (!isNew && found->second.depth == 0)
        throw std::runtime_error("a table contains itself");
    Extent & extent = found->second;
    if (isNew)
        extent = measureFields(value, depth);
    if (depth + extent.depth - 1 > c_maxDepth)
        throw std::runtime_error("tables are nested deeper than 150");
    return extent;
}

Writer::Extent Writer::measureFields(int table, int depth) {
    if (depth > c_maxDepth)
        return {0, 1}; // deep enough to be refused; this ends the descent
    luaL_checkstack(L, c_slotsPerLevel, "no room");
    Extent extent{0, 1};
    lua_pushnil(L);
    while (lua_next(L, table) != 0) {
        if (isWritablePair(L)) {
            Extent const below = measure(lua_gettop(L), depth + 1);
            extent.fields = std::min(extent.fields + below.fields + 1, c_maxFields + 1);
            extent.depth = std::max(extent.depth, below.depth + 1);
        }
        lua_pop(L, 1);
    }
    return extent;
}

// Sets the fields of the table that `path` names, or the globals. What goes into blocks is set on a
// parameter, so that a block has the constants of its own fields only.
void Writer::writeStatements(int table, std::vector<Key> const & keys, std::string const & path,
                             bool inBlocks) {
    luaL_checkstack(L, c_slotsPerLevel, "no room");
    std::string const prefix = path.empty() ? "" : "t";
    std::uint64_t blockFields = 0; // 0 while no block is open
    auto const closeBlock = [&] {
        if (inBlocks && blockFields > 0)
            put("end)(" + path + ") end\n");
        blockFields = 0;
    };
    for (Key const & key : keys) {
        pushField(L, table, key);
        int const value = lua_gettop(L);
        Extent const extent = measure(value, 1);
        if (extent.fields > c_maxBlockFields || extent.depth > c_maxConstructorDepth) {
            closeBlock();
            std::string const valuePath = variable(path, key);
            put(valuePath + " = {}\n");
            writeStatements(value, listKeys(L, value), valuePath, true);
        } else {
            if (blockFields + extent.fields + 1 > c_maxBlockFields)
                closeBlock();
            if (inBlocks && blockFields == 0)
                put("do (function(" + prefix + ")\n");
            blockFields += extent.fields + 1;
            put(variable(prefix, key) + " = ");
            writeValue(value, 0);
            put("\n");
        }
        lua_pop(L, 1);
    }
    closeBlock();
}

void Writer::writeValue(int value, std::size_t indent) {
    int const type = lua_type(L, value);
    if (type == LUA_TTABLE)
        return writeTable(value, indent);
    if (type == LUA_TNUMBER)
        return put(numberText(lua_tonumber(L, value)));
    if (type == LUA_TBOOLEAN)
        return put(lua_toboolean(L, value) ? "true" : "false");
    std::size_t length = 0;
    char const * const text = lua_tolstring(L, value, &length);
    put(quoted({text, length}));
}

void Writer::writeTable(int table, std::size_t indent) {
    luaL_checkstack(L, c_slotsPerLevel, "no room");
    std::vector<Key> const keys = listKeys(L, table);
    if (keys.empty())
        return put("{}");
    put("{\n");
    for (Key const & key : keys) {
        put(std::string(indent + 1, '\t') + constructorKey(key) + " = ");
        pushField(L, table, key);
        writeValue(lua_gettop(L), indent + 1);
        lua_pop(L, 1);
        put(",\n");
    }
    put(std::string(indent, '\t') + "}");
}

void Writer::put(std::string_view text) {
    buffer += text;
    if (buffer.size() >= c_writeSize)
        flush();
}

void Writer::flush() {
    auto const size = static_cast<unsigned int>(buffer.size());
    if (stream.Write(buffer.data(), size) != size)
        throw std::runtime_error("the stream cannot be written");
    buffer.clear();
}

} // namespace

void writeGlobals(lua_State * L, int builtins, bool tables, bool plain, ByteStream & stream) {
    Writer(L, stream).WriteGlobals(builtins, tables, plain);
}

} // namespace script
