#pragma once

// Binding objects: native functions that scripts call. A binding object registers itself in a script state
// under a name and gets the calls made there. An exception derived from std::exception that leaves its Call
// becomes a script error with that text; the Lua stack is then as Lua leaves it after an error, and nothing
// leaks.
//
// Threads: those of the script state.
// Lifetime: Obj shares the ownership of a binding object; with the last handle it ends, though not before a
// call of it that is in progress. A script that calls the function after that, or before the first handle,
// gets a script error. An object may outlive its state.

#include "Cross/engine/core/Export.h"

#include <memory>
#include <string>
#include <utility>

class LuaConfig;
struct lua_State;

namespace LuaBinding {

class CROSS_ENGINE_API ObjInternalBase {
public:
    ObjInternalBase(ObjInternalBase const &) = delete;
    ObjInternalBase & operator=(ObjInternalBase const &) = delete;

    // The name given to the constructor.
    char const * FunctionName() const { return functionName.c_str(); }

    // The types of arguments and result, "const char*, float -> bool"; "" when the constructor was given
    // none.
    char const * Signature() const { return signature.c_str(); }

    // Throws std::runtime_error unless the present call has exactly `count` arguments.
    void CheckArgs(lua_State * state, unsigned int count);

protected:
    // Registers a global function of that name in the state, in place of what the name stood for, whatever
    // metatable the globals have. `signature` is for lists of functions; null counts as "". Throws
    // std::runtime_error when the state has no memory for it.
    ObjInternalBase(LuaConfig * config, char const * functionName, char const * signature = nullptr);

    virtual ~ObjInternalBase();

public:
    // The call: arguments stand on the Lua stack from 1 on. Gives the number of results that it left on top.
    virtual int Call(lua_State * state) = 0;

private:
    friend class Obj;

    static int dispatch(lua_State * state);
    static int enter(lua_State * state);
    static int leave(lua_State * state);

    std::string functionName;
    std::string signature;
    int handles = 0;

    // Where the function in the state finds this object: null inside unless there are handles. The function
    // has a share, so that either may end first.
    std::shared_ptr<ObjInternalBase *> place;
};

// Shared ownership of a binding object, which was made with new. Cheap to copy.
class CROSS_ENGINE_API Obj {
public:
    explicit Obj(ObjInternalBase * object) : object(object) {
        ++object->handles;
        *object->place = object;
    }

    Obj(Obj const & other) noexcept : object(other.object) { ++object->handles; }

    Obj & operator=(Obj other) noexcept {
        std::swap(object, other.object);
        return *this;
    }

    ~Obj() {
        if (--object->handles > 0)
            return;
        *object->place = nullptr;
        delete object;
    }

    ObjInternalBase const & operator*() const { return *object; }

    ObjInternalBase const * operator->() const { return object; }

private:
    ObjInternalBase * object;
};

// The state of the script call in progress on this thread, for functions that have no state among their
// arguments; null outside of any.
CROSS_ENGINE_API lua_State * GetContext();

} // namespace LuaBinding
