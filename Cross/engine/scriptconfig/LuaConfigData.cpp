#include "Cross/engine/scriptconfig/LuaConfigData.h"

#include "Cross/engine/diagnostics/Trace.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <functional>
#include <iterator>
#include <new>
#include <utility>

using script::errorText;
using script::FieldName;
using script::StackHeight;

namespace {

// Above this, neighbouring whole numbers are one number.
constexpr std::uint64_t c_maxIndex = std::uint64_t{1} << 53;
constexpr std::size_t c_maxIndexDigits = 16;

// Half of them are used at most, so that a probe is short.
constexpr std::size_t c_nameSlots = 1024;

// What a protected call runs: a work of any type, through the function that knows it.
struct Task {
    int (*run)(void * work, lua_State * L);
    void * work;
};

int runTask(lua_State * L) {
    Task const task = *static_cast<Task *>(lua_touserdata(L, 2));
    lua_settop(L, 1);
    return task.run(task.work, L);
}

// The number that a name of canonical digits stands for.
std::optional<double> indexOf(std::string_view name) {
    if (name.empty() || name[0] < '0' || name[0] > '9')
        return std::nullopt;
    if (name.size() > c_maxIndexDigits || (name[0] == '0' && name.size() > 1))
        return std::nullopt;
    std::uint64_t index = 0;
    auto const [end, error] = std::from_chars(name.data(), name.data() + name.size(), index);
    if (error != std::errc() || end != name.data() + name.size() || index > c_maxIndex)
        return std::nullopt;
    return static_cast<double>(index);
}

std::string indexText(double index) {
    char digits[c_maxIndexDigits];
    auto const [end, error] =
        std::to_chars(digits, digits + sizeof(digits), static_cast<std::uint64_t>(index));
    return {digits, end};
}

bool isIndex(double number) {
    return number >= 0 && number <= static_cast<double>(c_maxIndex) && number == std::floor(number);
}

// A key of a table as a walk sorts it: number keys ascending, then texts in byte order.
struct WalkKey {
    double index;         // -1 for a text
    std::uint64_t prefix; // the first bytes of a text, so that most comparisons end here
    std::string_view text;

    bool IsText() const { return index < 0; }
};

std::uint64_t prefixOf(std::string_view text) {
    unsigned char bytes[sizeof(std::uint64_t)] = {};
    std::memcpy(bytes, text.data(), std::min(text.size(), sizeof(bytes)));
    std::uint64_t prefix = 0;
    for (unsigned char const byte : bytes)
        prefix = (prefix << 8) | byte;
    return prefix;
}

// The key at a stack index; none for keys that no name reaches. Its text lives as long as the key does.
std::optional<WalkKey> walkKeyAt(lua_State * L, int key) {
    if (lua_type(L, key) == LUA_TNUMBER) {
        double const number = lua_tonumber(L, key);
        return isIndex(number) ? std::optional(WalkKey{number, 0, {}}) : std::nullopt;
    }
    if (lua_type(L, key) != LUA_TSTRING)
        return std::nullopt;
    std::size_t length = 0;
    char const * const text = lua_tolstring(L, key, &length);
    std::string_view const name(text, length);
    if (name.find('\0') != name.npos)
        return std::nullopt;
    return WalkKey{-1, prefixOf(name), name};
}

bool comesBefore(WalkKey const & left, WalkKey const & right) {
    if (left.IsText() != right.IsText())
        return right.IsText();
    if (!left.IsText())
        return left.index < right.index;
    return left.prefix != right.prefix ? left.prefix < right.prefix : left.text < right.text;
}

FieldName nameOf(WalkKey const & key) {
    return key.IsText() ? FieldName{std::string(key.text), std::nullopt}
                        : FieldName{indexText(key.index), key.index};
}

bool hasField(lua_State * L, int table, int key) {
    lua_pushvalue(L, key);
    lua_rawget(L, table);
    bool const found = !lua_isnil(L, -1);
    lua_pop(L, 1);
    return found;
}

// Pushes the key that a set of this name goes to: the one that exists, else the number that it stands for.
void pushKeyToSet(lua_State * L, int table, std::string_view name) {
    lua_pushlstring(L, name.data(), name.size());
    std::optional<double> const index = indexOf(name);
    if (!index)
        return;
    int const textKey = lua_gettop(L);
    int const numberKey = textKey + 1;
    lua_pushnumber(L, *index);
    if (hasField(L, table, numberKey) || !hasField(L, table, textKey))
        lua_remove(L, textKey);
    else
        lua_pop(L, 1);
}

} // namespace

LuaConfig::Data::Data(char const * name, bool isScriptState)
    : name(name ? name : ""), isScriptState(isScriptState), names(c_nameSlots) {
    L = luaL_newstate();
    if (!L)
        throw std::bad_alloc();
    if (lua_cpcall(L, open, this) != 0) {
        lua_close(L);
        throw std::bad_alloc(); // nothing else can go wrong in a fresh state
    }
    lua_pushvalue(L, LUA_GLOBALSINDEX);
}

LuaConfig::Data::~Data() { lua_close(L); }

int LuaConfig::Data::open(lua_State * L) {
    Data & data = *static_cast<Data *>(lua_touserdata(L, 1));
    if (data.isScriptState)
        script::openScriptLibraries(L);
    else
        script::openDataLibraries(L);

    lua_pushcfunction(L, runTask);
    data.protectedCall = luaL_ref(L, LUA_REGISTRYINDEX);

    // Weak: a stand-in that is left without a set goes with its entry.
    lua_newtable(L);
    lua_newtable(L);
    lua_pushliteral(L, "k");
    lua_setfield(L, -2, "__mode");
    lua_setmetatable(L, -2);
    data.standIns = luaL_ref(L, LUA_REGISTRYINDEX);

    lua_newtable(L);
    data.builtins = luaL_ref(L, LUA_REGISTRYINDEX);

    // The first reference given back makes the registry's list of free ones; later ones then need no memory.
    lua_pushboolean(L, 1);
    luaL_unref(L, LUA_REGISTRYINDEX, luaL_ref(L, LUA_REGISTRYINDEX));
    return 0;
}

void LuaConfig::Data::TakeGlobalsForBuiltins() {
    callProtected(0, [this](lua_State * inner) {
        lua_rawgeti(inner, LUA_REGISTRYINDEX, builtins);
        lua_pushnil(inner);
        while (lua_next(inner, LUA_GLOBALSINDEX) != 0) {
            lua_pushvalue(inner, -2);
            lua_insert(inner, -2);
            lua_rawset(inner, 2);
        }
        return 0;
    });
}

template <class Work>
bool LuaConfig::Data::callProtected(int results, Work work) {
    Task task{[](void * context, lua_State * inner) { return (*static_cast<Work *>(context))(inner); },
              &work};
    int status = runProtected(&task, results);
    if (status == LUA_ERRRUN) // the error of a finalizer that happened to be due
        status = runProtected(&task, results);
    return status == 0;
}

int LuaConfig::Data::runProtected(void * task, int results) {
    int const table = CurrentTable();
    lua_rawgeti(L, LUA_REGISTRYINDEX, protectedCall);
    lua_pushvalue(L, table);
    lua_pushlightuserdata(L, task);
    int const status = lua_pcall(L, 2, results, 0);
    if (status != 0) {
        dbTimeStampedTracefAux("SCRIPT -- State '%s': %s", name.c_str(), errorText(L).c_str());
        lua_pop(L, 1);
    }
    return status;
}

int LuaConfig::Data::CurrentTable() const {
    int const top = lua_gettop(L);
    return top > 0 && lua_istable(L, top) ? top : LUA_GLOBALSINDEX;
}

void LuaConfig::Data::PushField(int table, std::string_view fieldName) {
    if (std::optional<double> const index = indexOf(fieldName)) {
        lua_pushnumber(L, *index);
        lua_rawget(L, table);
        if (!lua_isnil(L, -1))
            return;
        lua_pop(L, 1);
    }
    pushName(fieldName);
    lua_rawget(L, table);
}

// Pushes the Lua string of a name; nil, which is the key of no field, when there is no memory for it.
void LuaConfig::Data::pushName(std::string_view fieldName) {
    std::size_t at = std::hash<std::string_view>()(fieldName) % c_nameSlots;
    while (names[at].text.data()) {
        if (names[at].text == fieldName)
            return lua_rawgeti(L, LUA_REGISTRYINDEX, names[at].reference);
        at = (at + 1) % c_nameSlots;
    }
    if (cacheName(names[at], fieldName))
        ++nameCount;
    else
        lua_pushnil(L);
    if (nameCount == c_nameSlots / 2)
        forgetNames();
}

bool LuaConfig::Data::cacheName(CachedName & slot, std::string_view fieldName) {
    return callProtected(1, [&](lua_State * inner) {
        lua_pushlstring(inner, fieldName.data(), fieldName.size());
        lua_pushvalue(inner, -1);
        if (slot.reference == 0)
            slot.reference = luaL_ref(inner, LUA_REGISTRYINDEX);
        else
            lua_rawseti(inner, LUA_REGISTRYINDEX, slot.reference);
        slot.text = {lua_tostring(inner, -1), fieldName.size()};
        return 1;
    });
}

// The references stay with their slots, for the names to come.
void LuaConfig::Data::forgetNames() {
    for (CachedName & slot : names)
        slot.text = {};
    nameCount = 0;
}

void LuaConfig::Data::SetNumber(std::string_view fieldName, double value) {
    ForgetListing();
    callProtected(0, [&](lua_State * inner) {
        pushKeyToSet(inner, 1, fieldName);
        lua_pushnumber(inner, value);
        lua_rawset(inner, 1);
        attachStandIns(inner);
        return 0;
    });
}

void LuaConfig::Data::SetString(std::string_view fieldName, std::string_view text) {
    ForgetListing();
    callProtected(0, [&](lua_State * inner) {
        pushKeyToSet(inner, 1, fieldName);
        lua_pushlstring(inner, text.data(), text.size());
        lua_rawset(inner, 1);
        attachStandIns(inner);
        return 0;
    });
}

void LuaConfig::Data::ClearField(std::string_view fieldName) {
    ForgetListing();
    callProtected(0, [&](lua_State * inner) {
        pushKeyToSet(inner, 1, fieldName);
        if (hasField(inner, 1, 2)) {
            lua_pushnil(inner);
            lua_rawset(inner, 1);
        }
        return 0;
    });
}

// Puts the current table, now that it holds something, into the place of the value that it stands in for, and
// so on upwards.
void LuaConfig::Data::attachStandIns(lua_State * inner) const {
    int const map = 2;
    int const table = 3;
    int const entry = 4;
    lua_settop(inner, 1);
    lua_rawgeti(inner, LUA_REGISTRYINDEX, standIns);
    lua_pushvalue(inner, 1);
    for (;;) {
        lua_pushvalue(inner, table);
        lua_rawget(inner, map);
        if (lua_isnil(inner, entry))
            return;
        lua_rawgeti(inner, entry, 1);
        lua_rawgeti(inner, entry, 2);
        lua_pushvalue(inner, table);
        lua_rawset(inner, -3);
        lua_pushvalue(inner, table);
        lua_pushnil(inner);
        lua_rawset(inner, map);
        lua_replace(inner, table); // its parent
        lua_settop(inner, table);
    }
}

// Enters the field under the key on top. A new table is put in place at once where nothing stands, but for
// one below a stand-in: entering must not be what replaces a value.
int LuaConfig::Data::enterField(lua_State * inner) const {
    int const key = lua_gettop(inner);
    lua_pushvalue(inner, key);
    lua_rawget(inner, 1);
    if (lua_istable(inner, -1))
        return 1;
    bool const isFree = lua_isnil(inner, -1);

    lua_newtable(inner);
    int const created = lua_gettop(inner);
    lua_rawgeti(inner, LUA_REGISTRYINDEX, standIns);
    int const map = lua_gettop(inner);
    if (isFree && !hasField(inner, map, 1)) {
        lua_pushvalue(inner, key);
        lua_pushvalue(inner, created);
        lua_rawset(inner, 1);
    } else {
        lua_pushvalue(inner, created);
        lua_createtable(inner, 2, 0);
        lua_pushvalue(inner, 1);
        lua_rawseti(inner, -2, 1);
        lua_pushvalue(inner, key);
        lua_rawseti(inner, -2, 2);
        lua_rawset(inner, map);
    }
    lua_settop(inner, created);
    return 1;
}

// Once a push is refused, those above it are, too: pops must meet them in the reverse order.
bool LuaConfig::Data::mayEnter() {
    ForgetListing();
    bool const hasRoom = lua_gettop(L) + 1 + LUA_MINSTACK <= LUAI_MAXCSTACK;
    if (!hasRoom && !refusalTraced) {
        refusalTraced = true;
        dbTimeStampedTracefAux("SCRIPT -- State '%s': no room to enter another table", name.c_str());
    }
    return hasRoom && refusedPushes == 0;
}

void LuaConfig::Data::finishEnter(bool entered) {
    if (entered)
        lua_checkstack(L, LUA_MINSTACK); // the protected call had that room: nothing is left to allocate
    else
        ++refusedPushes;
}

void LuaConfig::Data::Enter(std::string_view fieldName) {
    finishEnter(mayEnter() && callProtected(1, [&](lua_State * inner) {
                    pushKeyToSet(inner, 1, fieldName);
                    return enterField(inner);
                }));
}

void LuaConfig::Data::Enter(double index) {
    finishEnter(mayEnter() && callProtected(1, [&](lua_State * inner) {
                    lua_pushnumber(inner, index);
                    return enterField(inner);
                }));
}

void LuaConfig::Data::EnterGlobals() {
    finishEnter(mayEnter() && callProtected(1, [](lua_State * inner) {
                    lua_pushvalue(inner, LUA_GLOBALSINDEX);
                    return 1;
                }));
}

void LuaConfig::Data::Leave() {
    ForgetListing();
    if (refusedPushes > 0) {
        --refusedPushes;
        return;
    }
    // Inside of a function that a script has called, the stack is that function's, without the globals.
    lua_Debug running;
    int const base = lua_getstack(L, 0, &running) == 0 ? 1 : 0;
    if (lua_gettop(L) > base)
        lua_pop(L, 1);
}

std::vector<FieldName> LuaConfig::Data::ListFields() {
    StackHeight const height(L);
    int const table = CurrentTable();
    bool const isGlobals = lua_rawequal(L, table, LUA_GLOBALSINDEX) != 0;
    int const key = lua_gettop(L) + 1;
    std::vector<WalkKey> keys;
    lua_pushnil(L);
    while (lua_next(L, table) != 0) {
        std::optional<WalkKey> const field = walkKeyAt(L, key);
        if (field && !(isGlobals && isBuiltin(key, key + 1)))
            keys.push_back(*field);
        lua_pop(L, 1);
    }
    std::sort(keys.begin(), keys.end(), comesBefore);
    std::vector<FieldName> fields;
    fields.reserve(keys.size());
    std::transform(keys.begin(), keys.end(), std::back_inserter(fields), nameOf);
    return fields;
}

std::vector<FieldName> const & LuaConfig::Data::Listing() {
    void const * const table = lua_topointer(L, CurrentTable());
    if (!listing || listedTable != table)
        listing = ListFields();
    listedTable = table;
    return *listing;
}

// Whether the constructor put this value under this key into the globals; both are stack indices.
bool LuaConfig::Data::isBuiltin(int key, int value) {
    lua_rawgeti(L, LUA_REGISTRYINDEX, builtins);
    lua_pushvalue(L, key);
    lua_rawget(L, -2);
    bool const same = lua_rawequal(L, -1, value) != 0;
    lua_pop(L, 2);
    return same;
}

bool LuaConfig::Data::Run(std::string_view source, char const * chunkName, std::string & reason) {
    StackHeight const height(L);
    ForgetListing();
    // Functions that the script calls move the cursor on a stack of their own.
    unsigned int const refused = std::exchange(refusedPushes, 0);
    bool const ran = script::loadSource(L, source, chunkName) == 0 && lua_pcall(L, 0, 0, 0) == 0;
    refusedPushes = refused;
    ForgetListing();
    if (!ran)
        reason = errorText(L);
    return ran;
}

// What is referred to holds the table at 0 and behind it the keys in the order of the walk.
int LuaConfig::Data::AnchorWalk(std::vector<FieldName> const & fields) {
    int reference = LUA_NOREF;
    callProtected(0, [&](lua_State * inner) {
        lua_createtable(inner, static_cast<int>(fields.size()), 1);
        lua_pushvalue(inner, 1);
        lua_rawseti(inner, -2, 0);
        int place = 0;
        for (FieldName const & field : fields) {
            if (field.index)
                lua_pushnumber(inner, *field.index);
            else
                lua_pushlstring(inner, field.text.data(), field.text.size());
            lua_rawseti(inner, -2, ++place);
        }
        reference = luaL_ref(inner, LUA_REGISTRYINDEX);
        return 0;
    });
    return reference;
}

void LuaConfig::Data::PushWalked(int reference, std::size_t position) {
    lua_rawgeti(L, LUA_REGISTRYINDEX, reference);
    lua_rawgeti(L, -1, 0);
    lua_rawgeti(L, -2, static_cast<int>(position) + 1);
    lua_rawget(L, -2);
}
