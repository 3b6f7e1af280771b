#pragma once

// Typed binding objects: a native function of up to 8 arguments as a script function. The call checks the
// number of arguments and their types, then calls a delegate; the delegate is called only when every argument
// converted.
//
//     library.StoreLuaBindingObj(config, LuaBinding::Bind(config, "dr_clear", &clearFrame));
//
// Arguments: const char* (the text stays the script state's), float, bool, int, unsigned int. Results: bool
// or none. Threads and lifetime: see LuaBinding.h.

#include "Cross/Util/lua/LuaBindingException.h"
#include "Cross/engine/core/FastDelegate.h"
#include "Cross/engine/scriptconfig/LuaBinding.h"

#include <lua.hpp>

#include <cmath>
#include <cstddef>
#include <limits>
#include <string>
#include <tuple>
#include <type_traits>
#include <utility>

namespace LuaBinding {

// How one type of argument is named in messages and read from the stack. Read gives false when the argument
// is of another type, and `value` then means nothing.
template <class T>
struct Argument;

template <>
struct Argument<char const *> {
    static constexpr char const * c_name = "const char*";

    static bool Read(lua_State * state, int index, char const *& value) {
        value = lua_tolstring(state, index, nullptr);
        return value != nullptr;
    }
};

// A number, or a text that reads as one. What is no number reads as 0, so only a 0 needs a second look.
inline bool ReadNumber(lua_State * state, int index, double & value) {
    value = lua_tonumber(state, index);
    return value != 0.0 || lua_isnumber(state, index) != 0;
}

template <>
struct Argument<float> {
    static constexpr char const * c_name = "float";

    static bool Read(lua_State * state, int index, float & value) {
        double number = 0.0;
        bool const isNumber = ReadNumber(state, index, number);
        value = static_cast<float>(number);
        return isNumber;
    }
};

template <>
struct Argument<bool> {
    static constexpr char const * c_name = "bool";

    // A text that looks like a number is none here.
    static bool Read(lua_State * state, int index, bool & value) {
        int const type = lua_type(state, index);
        value = type == LUA_TBOOLEAN ? lua_toboolean(state, index) != 0 : lua_tonumber(state, index) != 0.0;
        return type == LUA_TBOOLEAN || type == LUA_TNUMBER;
    }
};

// A number counts as whole when it differs from its truncation by less than the resolution of a double at 1.
// The limits come first: they keep out NaN and what the type cannot hold.
template <class T>
bool ReadWholeNumber(lua_State * state, int index, T & value) {
    double number = 0.0;
    if (!ReadNumber(state, index, number) ||
        !(number > static_cast<double>(std::numeric_limits<T>::min()) - 1.0 &&
          number < static_cast<double>(std::numeric_limits<T>::max()) + 1.0))
        return false;
    value = static_cast<T>(number);
    return std::fabs(number - static_cast<double>(value)) < std::numeric_limits<double>::epsilon();
}

template <>
struct Argument<int> {
    static constexpr char const * c_name = "int";

    static bool Read(lua_State * state, int index, int & value) {
        return ReadWholeNumber(state, index, value);
    }
};

template <>
struct Argument<unsigned int> {
    static constexpr char const * c_name = "unsigned int";

    static bool Read(lua_State * state, int index, unsigned int & value) {
        return ReadWholeNumber(state, index, value);
    }
};

// The binding object of any number of arguments. D is the type of its delegate.
template <class D, class R, class... Args>
class ObjInternal : public ObjInternalBase {
    static_assert(std::is_same_v<R, bool> || std::is_void_v<R>);
    static_assert(sizeof...(Args) <= 8);

public:
    ObjInternal(LuaConfig * config, char const * functionName, D delegate)
        : ObjInternalBase(config, functionName, signatureText().c_str()), delegate(delegate) {}

    int Call(lua_State * state) override {
        CheckArgs(state, sizeof...(Args));
        return callWith(state, std::index_sequence_for<Args...>());
    }

protected:
    ~ObjInternal() override = default;

private:
    static std::string signatureText() {
        std::string text;
        ((text += text.empty() ? "" : ", ", text += Argument<Args>::c_name), ...);
        return (text.empty() ? "none" : text) + (std::is_void_v<R> ? " -> none" : " -> bool");
    }

    template <std::size_t... Index>
    int callWith(lua_State * state, std::index_sequence<Index...>) {
        std::tuple<Args...> values;
        (readArgument(state, static_cast<int>(Index) + 1, std::get<Index>(values)), ...);
        int const height = lua_gettop(state);
        if constexpr (std::is_void_v<R>) {
            delegate(std::get<Index>(values)...);
            return checkedResults(state, height, 0);
        } else {
            lua_pushboolean(state, delegate(std::get<Index>(values)...));
            return checkedResults(state, height, 1);
        }
    }

    template <class T>
    void readArgument(lua_State * state, int index, T & value) {
        if (!Argument<T>::Read(state, index, value))
            throw Exception("Invalid parameter %d (type expected=%s, received=%s) in function %s", index,
                            Argument<T>::c_name, lua_typename(state, lua_type(state, index)), FunctionName());
    }

    // A delegate that changed the height of the stack itself would hand garbage to the script.
    static int checkedResults(lua_State * state, int heightBefore, int results) {
        if (lua_gettop(state) != heightBefore + results)
            throw Exception("Invalid Stack");
        return results;
    }

    D delegate;
};

// The same for each number of arguments, by the types of the arguments, the delegate and the result.
template <class D, class R>
using ObjInternal0 = ObjInternal<D, R>;
template <class A1, class D, class R>
using ObjInternal1 = ObjInternal<D, R, A1>;
template <class A1, class A2, class D, class R>
using ObjInternal2 = ObjInternal<D, R, A1, A2>;
template <class A1, class A2, class A3, class D, class R>
using ObjInternal3 = ObjInternal<D, R, A1, A2, A3>;
template <class A1, class A2, class A3, class A4, class D, class R>
using ObjInternal4 = ObjInternal<D, R, A1, A2, A3, A4>;
template <class A1, class A2, class A3, class A4, class A5, class D, class R>
using ObjInternal5 = ObjInternal<D, R, A1, A2, A3, A4, A5>;
template <class A1, class A2, class A3, class A4, class A5, class A6, class D, class R>
using ObjInternal6 = ObjInternal<D, R, A1, A2, A3, A4, A5, A6>;
template <class A1, class A2, class A3, class A4, class A5, class A6, class A7, class D, class R>
using ObjInternal7 = ObjInternal<D, R, A1, A2, A3, A4, A5, A6, A7>;
template <class A1, class A2, class A3, class A4, class A5, class A6, class A7, class A8, class D, class R>
using ObjInternal8 = ObjInternal<D, R, A1, A2, A3, A4, A5, A6, A7, A8>;

// Binds a plain function in a state and gives the handle to store.
template <class R, class... Args>
Obj Bind(LuaConfig & config, char const * functionName, R (*function)(Args...)) {
    using Delegate = fastdelegate::FastDelegate<R(Args...)>;
    return Obj(new ObjInternal<Delegate, R, Args...>(&config, functionName, function));
}

} // namespace LuaBinding
