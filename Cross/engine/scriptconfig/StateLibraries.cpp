#include "Cross/engine/scriptconfig/StateLibraries.h"

#include "Cross/engine/filesystem/FilePath.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstring>

namespace script {
namespace {

// A data state reads one file and goes: the collector starts a cycle when memory has grown to this
// percentage.
constexpr int c_dataGCPause = 400;

// The standard matcher calls itself once per item of the pattern, on the C stack.
constexpr std::size_t c_maxDataPattern = 1000;

constexpr char const * c_patternFunctions[] = {"find", "gfind", "gmatch", "gsub", "match"};

constexpr char const * c_withheldFromData[] = {
    "dofile",   "load",     "loadfile",       "loadstring", // code from elsewhere
    "getfenv",  "setfenv",                                  // the environments that the libraries hide in
    "gcinfo",   "newproxy", "collectgarbage",               // the collector, and finalizers that it would run
    "coroutine"};                                           // threads that hooks of the state do not reach

void refuseBytecode(lua_State * L, char const * piece, std::size_t size) {
    if (size == 0 || piece[0] != LUA_SIGNATURE[0])
        return;
    lua_pushliteral(L, "bytecode is refused");
    lua_error(L);
}

char const * readBuffer(lua_State * L, void * context, std::size_t * size) {
    auto & rest = *static_cast<std::string_view *>(context);
    std::string_view const piece = rest;
    rest = {};
    refuseBytecode(L, piece.data(), piece.size());
    *size = piece.size();
    return piece.data();
}

// Pieces that the function at index 1 gives; index 3 keeps the last one alive.
char const * readPiece(lua_State * L, void * context, std::size_t * size) {
    bool & atStart = *static_cast<bool *>(context);
    luaL_checkstack(L, 2, "too many nested functions");
    lua_pushvalue(L, 1);
    lua_call(L, 0, 1);
    *size = 0;
    if (lua_isnil(L, -1))
        return nullptr;
    if (!lua_isstring(L, -1))
        luaL_error(L, "reader function must return a string");
    lua_replace(L, 3);
    char const * const piece = lua_tolstring(L, 3, size);
    if (atStart)
        refuseBytecode(L, piece, *size);
    atStart = false;
    return piece;
}

int finishLoad(lua_State * L, int status) {
    if (status == 0)
        return 1;
    lua_pushnil(L);
    lua_insert(L, -2);
    return 2;
}

int scriptLoad(lua_State * L) {
    luaL_checktype(L, 1, LUA_TFUNCTION);
    char const * const chunkName = luaL_optstring(L, 2, "=(load)");
    lua_settop(L, 3);
    bool atStart = true;
    return finishLoad(L, lua_load(L, readPiece, &atStart, chunkName));
}

int scriptLoadString(lua_State * L) {
    std::size_t length = 0;
    char const * const text = luaL_checklstring(L, 1, &length);
    char const * const chunkName = luaL_optstring(L, 2, text);
    return finishLoad(L, loadSource(L, {text, length}, chunkName));
}

int loadSourceFile(lua_State * L, char const * path) {
    char const * const chunkName = lua_pushfstring(L, "@%s", path);
    ByteStreamProxy const stream = FilePath::OpenStream(path, c_streamRead);
    std::optional<std::string> const text = stream ? readSource(*stream) : std::nullopt;
    if (text)
        return loadSource(L, skipPreamble(*text), chunkName);
    lua_pushfstring(L, "cannot read '%s'", path);
    return LUA_ERRFILE;
}

int scriptLoadFile(lua_State * L) { return finishLoad(L, loadSourceFile(L, luaL_checkstring(L, 1))); }

int scriptDoFile(lua_State * L) {
    char const * const path = luaL_checkstring(L, 1);
    int const height = lua_gettop(L) + 1; // the name of the chunk lies below what it returns
    if (loadSourceFile(L, path) != 0)
        return lua_error(L);
    lua_call(L, 0, LUA_MULTRET);
    return lua_gettop(L) - height;
}

int loadModule(lua_State * L, char const * name, char const * path) {
    if (loadSourceFile(L, path) != 0)
        luaL_error(L, "error loading module '%s' from file '%s':\n\t%s", name, path, lua_tostring(L, -1));
    return 1;
}

// The searcher of `require` for files of source: tries the templates of package.path. Upvalue: package.
int searchModule(lua_State * L) {
    char const * const name = luaL_checkstring(L, 1);
    lua_getfield(L, lua_upvalueindex(1), "path");
    char const * templates = lua_tostring(L, -1);
    if (!templates)
        return luaL_error(L, "'package.path' must be a string");
    char const * const fileName = luaL_gsub(L, name, ".", LUA_DIRSEP);
    lua_pushliteral(L, ""); // the report of what was tried
    while (*templates) {
        std::size_t const length = std::strcspn(templates, LUA_PATHSEP);
        lua_pushlstring(L, templates, length);
        char const * const path = luaL_gsub(L, lua_tostring(L, -1), LUA_PATH_MARK, fileName);
        if (FilePath::GetFileType(path) == FilePath::FT_FILE)
            return loadModule(L, name, path);
        lua_pushfstring(L, "%s\n\tno file '%s'", lua_tostring(L, -3), path);
        lua_replace(L, -4);
        lua_pop(L, 2);
        templates += length;
        templates += std::strspn(templates, LUA_PATHSEP);
    }
    return 1;
}

// unpack whose count does not overflow, as the standard one's does.
int dataUnpack(lua_State * L) {
    luaL_checktype(L, 1, LUA_TTABLE);
    double const first = std::trunc(luaL_optnumber(L, 2, 1));
    double const last = std::trunc(luaL_optnumber(L, 3, static_cast<double>(lua_objlen(L, 1))));
    double const count = last - first + 1;
    if (!(count >= 1))
        return 0;
    if (count > LUAI_MAXCSTACK || !lua_checkstack(L, static_cast<int>(count)))
        return luaL_error(L, "too many results to unpack");
    for (int i = 0; i < static_cast<int>(count); ++i) {
        lua_pushnumber(L, first + i);
        lua_rawget(L, 1);
    }
    return static_cast<int>(count);
}

// Stands before each function that takes a pattern. Upvalue: the standard function.
int dataMatch(lua_State * L) {
    std::size_t length = 0;
    luaL_checklstring(L, 2, &length);
    if (length > c_maxDataPattern)
        return luaL_error(L, "pattern is too long");
    lua_pushvalue(L, lua_upvalueindex(1));
    lua_insert(L, 1);
    lua_call(L, lua_gettop(L) - 1, LUA_MULTRET);
    return lua_gettop(L);
}

void open(lua_State * L, lua_CFunction library, char const * name) {
    lua_pushcfunction(L, library);
    lua_pushstring(L, name);
    lua_call(L, 1, 0);
}

void setFunction(lua_State * L, int table, char const * name, lua_CFunction function) {
    lua_pushcfunction(L, function);
    lua_setfield(L, table, name);
}

void removeField(lua_State * L, int table, char const * name) {
    lua_pushnil(L);
    lua_setfield(L, table, name);
}

void guardPatterns(lua_State * L) {
    lua_getglobal(L, LUA_STRLIBNAME);
    int const library = lua_gettop(L);
    for (char const * name : c_patternFunctions) {
        lua_getfield(L, library, name);
        lua_pushcclosure(L, dataMatch, 1);
        lua_setfield(L, library, name);
    }
    lua_pop(L, 1);
}

void removeDump(lua_State * L) {
    lua_getglobal(L, LUA_STRLIBNAME);
    removeField(L, lua_gettop(L), "dump");
    lua_pop(L, 1);
}

// Puts new globals in front of the present ones, which scripts go on seeing through them.
void hideGlobals(lua_State * L) {
    lua_pushvalue(L, LUA_GLOBALSINDEX);
    int const libraries = lua_gettop(L);
    lua_newtable(L);
    int const globals = lua_gettop(L);
    lua_pushvalue(L, globals);
    lua_setfield(L, libraries, "_G");

    lua_newtable(L);
    lua_pushvalue(L, libraries);
    lua_setfield(L, -2, "__index");
    lua_pushboolean(L, 0);
    lua_setfield(L, -2, "__metatable");
    lua_setmetatable(L, globals);

    lua_pushvalue(L, globals);
    lua_replace(L, LUA_GLOBALSINDEX);
    lua_settop(L, libraries - 1);
}

void replaceSearcher(lua_State * L) {
    lua_getglobal(L, LUA_LOADLIBNAME);
    lua_getfield(L, -1, "loaders");
    lua_pushvalue(L, -2);
    lua_pushcclosure(L, searchModule, 1);
    lua_rawseti(L, -2, 2); // behind the one of package.preload
    lua_pop(L, 2);
}

} // namespace

void openDataLibraries(lua_State * L) {
    lua_gc(L, LUA_GCSETPAUSE, c_dataGCPause);
    open(L, luaopen_base, "");
    open(L, luaopen_string, LUA_STRLIBNAME);
    open(L, luaopen_table, LUA_TABLIBNAME);
    open(L, luaopen_math, LUA_MATHLIBNAME);
    for (char const * name : c_withheldFromData)
        removeField(L, LUA_GLOBALSINDEX, name);
    removeDump(L);
    setFunction(L, LUA_GLOBALSINDEX, "unpack", dataUnpack);
    guardPatterns(L);
    hideGlobals(L);
}

void openScriptLibraries(lua_State * L) {
    luaL_openlibs(L);
    setFunction(L, LUA_GLOBALSINDEX, "load", scriptLoad);
    setFunction(L, LUA_GLOBALSINDEX, "loadstring", scriptLoadString);
    setFunction(L, LUA_GLOBALSINDEX, "loadfile", scriptLoadFile);
    setFunction(L, LUA_GLOBALSINDEX, "dofile", scriptDoFile);
    replaceSearcher(L);
    removeDump(L);
}

int loadSource(lua_State * L, std::string_view text, char const * chunkName) {
    return lua_load(L, readBuffer, &text, chunkName);
}

std::optional<std::string> readSource(ByteStream & stream) {
    unsigned int const length = stream.GetLen();
    unsigned int const position = stream.GetPos();
    std::string text(position < length ? length - position : 0, '\0');
    if (stream.Read(text.data(), static_cast<unsigned int>(text.size())) != text.size())
        return std::nullopt;
    return text;
}

std::string_view skipPreamble(std::string_view text) {
    constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
    if (text.starts_with(byteOrderMark))
        text.remove_prefix(byteOrderMark.size());
    if (text.starts_with('#'))
        text.remove_prefix(std::min(text.find('\n'), text.size()));
    return text;
}

std::string errorText(lua_State * L) {
    if (lua_type(L, -1) != LUA_TSTRING)
        return "the error is no text";
    std::size_t length = 0;
    char const * const text = lua_tolstring(L, -1, &length);
    return {text, length};
}

} // namespace script
