#pragma once

// Binding objects: native functions that scripts call. A binding object registers itself in a script state
// under a name and gets the calls made there. An exception derived from std::exception that leaves its Call
// becomes a script error with that text; the Lua stack is then as Lua leaves it after an error, and nothing
// leaks.
//
// Threads: those of the script state.
// Lifetime: Obj shares the ownership of a binding object; with the last handle it ends. A script that calls
// the function after that gets a script error. An object may outlive its state.

#include "Cross/engine/core/Export.h"

#include <memory>
#include <string>

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
    // Registers a global function of that name in the state, in place of what the name stood for. `signature`
    // is for lists of functions; null counts as "".
    ObjInternalBase(LuaConfig * config, char const * functionName, char const * signature = nullptr);

    virtual ~ObjInternalBase();

    // The call: arguments stand on the Lua stack from 1 on. Gives the number of results that it left on top.
    virtual int Call(lua_State * state) = 0;

private:
    friend class Obj;
    struct Link;

    static int dispatch(lua_State * state);
    static int collectLink(lua_State * state);

    std::string functionName;
    std::string signature;
    std::shared_ptr<Link> link;
};

// Shared ownership of a binding object, which was made with new. Cheap to copy.
class CROSS_ENGINE_API Obj {
public:
    explicit Obj(ObjInternalBase * object);
    ~Obj();

    ObjInternalBase const & operator*() const { return *object; }

    ObjInternalBase const * operator->() const { return object.get(); }

private:
    std::shared_ptr<ObjInternalBase> object;
};

// The state of the script call in progress on this thread, for functions that have no state among their
// arguments; null outside of any.
CROSS_ENGINE_API lua_State * GetContext();

} // namespace LuaBinding
