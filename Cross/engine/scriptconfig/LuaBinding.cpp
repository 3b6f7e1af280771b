#include "Cross/engine/scriptconfig/LuaBinding.h"

#include "Cross/engine/core/Text.h"
#include "Cross/engine/scriptconfig/LuaConfig.h"
#include "Cross/engine/scriptconfig/StateLibraries.h"

#include <lua.hpp>

#include <exception>
#include <new>
#include <stdexcept>

namespace LuaBinding {

namespace {

constexpr std::size_t c_messageSize = 1024;

thread_local lua_State * s_context = nullptr;

// Makes a state the present one while it lives.
class ContextScope {
public:
    explicit ContextScope(lua_State * state) : outer(s_context) { s_context = state; }

    ContextScope(ContextScope const &) = delete;
    ContextScope & operator=(ContextScope const &) = delete;

    ~ContextScope() { s_context = outer; }

private:
    lua_State * outer;
};

} // namespace

ObjInternalBase::ObjInternalBase(LuaConfig * config, char const * functionName, char const * signature)
    : functionName(functionName),
      signature(signature ? signature : ""),
      place(std::make_shared<ObjInternalBase *>(nullptr)) {
    lua_State * const state = config->GetState();
    int status = lua_cpcall(state, &ObjInternalBase::enter, this);
    if (status == LUA_ERRRUN) { // the error of a finalizer that happened to be due
        lua_pop(state, 1);
        status = lua_cpcall(state, &ObjInternalBase::enter, this);
    }
    if (status == 0)
        return;
    std::string const reason = script::errorText(state);
    lua_pop(state, 1);
    throw std::runtime_error("cannot bind function " + this->functionName + ": " + reason);
}

ObjInternalBase::~ObjInternalBase() = default;

// Puts the function into the globals; runs protected. The share is made when nothing stands between it and
// the metatable that ends it.
int ObjInternalBase::enter(lua_State * state) {
    auto const & object = *static_cast<ObjInternalBase const *>(lua_touserdata(state, 1));
    lua_pushstring(state, object.FunctionName());
    void * const block = lua_newuserdata(state, sizeof(object.place));
    lua_createtable(state, 0, 1);
    lua_pushcfunction(state, &ObjInternalBase::leave);
    lua_setfield(state, -2, "__gc");
    new (block) std::shared_ptr<ObjInternalBase *>(object.place);
    lua_setmetatable(state, -2);
    lua_pushvalue(state, -2);
    lua_pushcclosure(state, &ObjInternalBase::dispatch, 2);
    lua_rawset(state, LUA_GLOBALSINDEX);
    return 0;
}

// The state lets go of the share. A finalizer of the script may still call the function after that, and finds
// the pointer null.
int ObjInternalBase::leave(lua_State * state) {
    static_cast<std::shared_ptr<ObjInternalBase *> *>(lua_touserdata(state, 1))->reset();
    return 0;
}

void ObjInternalBase::CheckArgs(lua_State * state, unsigned int count) {
    int const received = lua_gettop(state);
    if (received == static_cast<int>(count))
        return;
    std::string message;
    text::Printf(message, "Invalid number of parameters (expected=%d, received=%d) in function %s",
                 static_cast<int>(count), received, FunctionName());
    throw std::runtime_error(message);
}

// Every call from a script comes here. The Lua error is raised last, from a plain buffer, when no object is
// alive that a jump out of this function would skip.
int ObjInternalBase::dispatch(lua_State * state) {
    char message[c_messageSize];
    auto const & place =
        *static_cast<std::shared_ptr<ObjInternalBase *> *>(lua_touserdata(state, lua_upvalueindex(1)));
    if (ObjInternalBase * const object = place ? *place : nullptr) {
        Obj const handle(object); // the function may end its own binding
        try {
            ContextScope const context(state);
            return object->Call(state);
        } catch (std::exception const & error) {
            text::CopyCut(message, sizeof(message), error.what());
        }
    } else {
        text::PrintfCut(message, sizeof(message), "function %s is no longer bound",
                        lua_tostring(state, lua_upvalueindex(2)));
    }
    return luaL_error(state, "%s", message);
}

lua_State * GetContext() { return s_context; }

} // namespace LuaBinding
