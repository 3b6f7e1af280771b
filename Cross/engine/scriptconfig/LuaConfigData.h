#pragma once

// What a LuaConfig is made of, for the sources of this folder.
//
// Lua raises an error for want of memory, or out of a finalizer that the collector runs, from nearly every
// call that allocates, and outside of a protected call an error ends the process. So there are two kinds of
// code here: reading only moves what exists already (names come from a cache of Lua strings), and everything
// else runs as the work of callProtected, where an error ends, is traced and becomes a false result.

#include "Cross/engine/scriptconfig/LuaConfig.h"
#include "Cross/engine/scriptconfig/StateLibraries.h"

#include <cstddef>
#include <lua.hpp>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace script {

// The name of a field as a walk gives it.
struct FieldName {
    std::string text;
    std::optional<double> index; // the number key, if it is one
};

} // namespace script

struct LuaConfig::Data {
    Data(char const * name, bool isScriptState);
    Data(Data const &) = delete;
    Data & operator=(Data const &) = delete;
    ~Data();

    // From now on what the globals hold counts as put there by the constructor.
    void TakeGlobalsForBuiltins();

    // Stack index of the current table.
    int CurrentTable() const;

    // Pushes the value of a field of the table at a stack index; nil when there is none.
    void PushField(int table, std::string_view fieldName);

    void SetNumber(std::string_view fieldName, double value);
    void SetString(std::string_view fieldName, std::string_view text);
    void ClearField(std::string_view fieldName);

    // Move the cursor. A push that is refused is counted, so that its pop leaves the cursor alone, too.
    void Enter(std::string_view fieldName);
    void Enter(double index);
    void EnterGlobals();
    void Leave();

    // The fields of the current table in the order of a walk.
    std::vector<script::FieldName> ListFields();

    // The same, kept until the next change through this class, or until another table is the current one.
    std::vector<script::FieldName> const & Listing();

    void ForgetListing() { listing.reset(); }

    // Runs source; the cursor is as before. On failure `reason` is Lua's message.
    bool Run(std::string_view source, char const * chunkName, std::string & reason);

    // Keeps the current table and the keys of its fields alive for a walk over them, until it lets go of the
    // reference. LUA_NOREF when there is no memory for it.
    int AnchorWalk(std::vector<script::FieldName> const & fields);

    void ReleaseWalk(int reference) { luaL_unref(L, LUA_REGISTRYINDEX, reference); }

    // Pushes the value that now stands under the key of the field at that place of a walk; nil when it went.
    void PushWalked(int reference, std::size_t position);

    // The table of what the constructor put into the globals, as a reference into the registry.
    int Builtins() const { return builtins; }

    std::string const name;
    lua_State * L = nullptr;

private:
    // A Lua string that is kept alive.
    struct CachedName {
        std::string_view text; // Lua's own; null for a free slot
        int reference = 0;     // in the registry; 0 is none
    };

    static int open(lua_State * L);

    // Calls work(L) like a lua_CFunction, with the current table alone on the stack, and pushes `results`
    // values. On a Lua error it pushes nothing, traces the error and gives false. `work` raises nothing of
    // its own and can be run again.
    template <class Work>
    bool callProtected(int results, Work work);
    int runProtected(void * task, int results);

    bool isBuiltin(int key, int value);
    void pushName(std::string_view fieldName);
    bool cacheName(CachedName & slot, std::string_view fieldName);
    void forgetNames();

    bool mayEnter();
    void finishEnter(bool entered);
    int enterField(lua_State * inner) const;
    void attachStandIns(lua_State * inner) const;

    bool const isScriptState;

    // References into the registry.
    int protectedCall = 0;
    int standIns = 0; // tables that stand in for a plain value: each one's parent and key there
    int builtins = 0;

    unsigned int refusedPushes = 0;
    bool refusalTraced = false;
    std::optional<std::vector<script::FieldName>> listing;
    void const * listedTable = nullptr;

    // A hash table of names read lately.
    std::vector<CachedName> names;
    std::size_t nameCount = 0;
};
