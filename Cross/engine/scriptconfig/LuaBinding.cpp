#include "Cross/engine/scriptconfig/LuaBinding.h"

#include "Cross/engine/core/Text.h"
#include "Cross/engine/scriptconfig/LuaConfig.h"

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

// What ties a registered function to its object. The function in the state holds one share, the object the
// other, so either may end first.
struct ObjInternalBase::Link {
    std::weak_ptr<ObjInternalBase> object;
};

ObjInternalBase::ObjInternalBase(LuaConfig * config, char const * functionName, char const * signature)
    : functionName(functionName), signature(signature ? signature : ""), link(std::make_shared<Link>()) {
    lua_State * const state = config->GetState();
    if (!lua_checkstack(state, 4))
        throw std::runtime_error("no room on the Lua stack to bind " + this->functionName);
    void * const block = lua_newuserdata(state, sizeof(std::shared_ptr<Link>));
    new (block) std::shared_ptr<Link>(link);
    lua_createtable(state, 0, 1);
    lua_pushcfunction(state, &ObjInternalBase::collectLink);
    lua_setfield(state, -2, "__gc");
    lua_setmetatable(state, -2);
    lua_pushstring(state, functionName);
    lua_pushcclosure(state, &ObjInternalBase::dispatch, 2);
    lua_setglobal(state, functionName);
}

ObjInternalBase::~ObjInternalBase() = default;

void ObjInternalBase::CheckArgs(lua_State * state, unsigned int count) {
    int const received = lua_gettop(state);
    if (received == static_cast<int>(count))
        return;
    std::string message;
    text::Printf(message, "Invalid number of parameters (expected=%d, received=%d) in function %s",
                 static_cast<int>(count), received, FunctionName());
    throw std::runtime_error(message);
}

int ObjInternalBase::collectLink(lua_State * state) {
    std::destroy_at(static_cast<std::shared_ptr<Link> *>(lua_touserdata(state, 1)));
    return 0;
}

// Every call from a script comes here. The Lua error is raised last, from a plain buffer, when no object is
// alive that a jump out of this function would skip.
int ObjInternalBase::dispatch(lua_State * state) {
    char message[c_messageSize];
    {
        auto const & link = *static_cast<std::shared_ptr<Link> *>(lua_touserdata(state, lua_upvalueindex(1)));
        std::shared_ptr<ObjInternalBase> const object = link->object.lock();
        if (object) {
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
    }
    return luaL_error(state, "%s", message);
}

Obj::Obj(ObjInternalBase * object) : object(object, [](ObjInternalBase * last) { delete last; }) {
    object->link->object = this->object;
}

Obj::~Obj() = default;

lua_State * GetContext() { return s_context; }

} // namespace LuaBinding
