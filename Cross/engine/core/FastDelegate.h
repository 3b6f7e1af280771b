#pragma once

// fastdelegate: a bound call, cheap to copy and without allocation: an object pointer with a member function,
// or a plain function. The delegate does not own the object, which must outlive every call. A delegate of a
// null function is empty. Calling an empty delegate is outside the contract; test it first. Two delegates are
// equal when they are bound to the same object and function, wherever in the process that was done.

#include <cstddef>
#include <cstring>
#include <type_traits>
#include <utility>

namespace fastdelegate {

template <class Signature>
class FastDelegate;

template <class R, class... Args>
class FastDelegate<R(Args...)> {
public:
    FastDelegate() = default;

    FastDelegate(std::nullptr_t) {}

    FastDelegate(R (*function)(Args...)) {
        if (function)
            store(nullptr, function, [](void *, unsigned char const * bytes, Args... args) -> R {
                return load<R (*)(Args...)>(bytes)(std::forward<Args>(args)...);
            });
    }

    template <class T>
    FastDelegate(std::type_identity_t<T> * object, R (T::*member)(Args...)) {
        bindMember<T>(object, member);
    }

    template <class T>
    FastDelegate(std::type_identity_t<T> const * object, R (T::*member)(Args...) const) {
        bindMember<T const>(const_cast<T *>(object), member);
    }

    R operator()(Args... args) const { return invoke(object, function, std::forward<Args>(args)...); }

    explicit operator bool() const { return invoke != nullptr; }

    bool empty() const { return invoke == nullptr; }

    bool operator==(FastDelegate const & other) const {
        return object == other.object && std::memcmp(function, other.function, sizeof(function)) == 0;
    }

private:
    using Invoke = R (*)(void *, unsigned char const *, Args...);

    // Large enough for any member function pointer of the compilers that build this library.
    static constexpr std::size_t c_functionSize = 2 * sizeof(void *);

    template <class Function>
    static Function load(unsigned char const * bytes) {
        Function result;
        std::memcpy(&result, bytes, sizeof(result));
        return result;
    }

    template <class T, class Member>
    void bindMember(void * target, Member member) {
        if (!member)
            return;
        store(target, member, [](void * bound, unsigned char const * bytes, Args... args) -> R {
            return (static_cast<T *>(bound)->*load<Member>(bytes))(std::forward<Args>(args)...);
        });
    }

    template <class Function>
    void store(void * target, Function bound, Invoke forwarder) {
        static_assert(sizeof(Function) <= c_functionSize);
        object = target;
        std::memcpy(function, &bound, sizeof(bound));
        invoke = forwarder;
    }

    void * object = nullptr;
    unsigned char function[c_functionSize] = {};
    Invoke invoke = nullptr; // each library has a forwarder of its own, so equality leaves it out
};

// The same by the number of arguments, with the result last.
template <class R>
using FastDelegate0 = FastDelegate<R()>;
template <class A1, class R>
using FastDelegate1 = FastDelegate<R(A1)>;
template <class A1, class A2, class R>
using FastDelegate2 = FastDelegate<R(A1, A2)>;
template <class A1, class A2, class A3, class R>
using FastDelegate3 = FastDelegate<R(A1, A2, A3)>;
template <class A1, class A2, class A3, class A4, class R>
using FastDelegate4 = FastDelegate<R(A1, A2, A3, A4)>;
template <class A1, class A2, class A3, class A4, class A5, class R>
using FastDelegate5 = FastDelegate<R(A1, A2, A3, A4, A5)>;
template <class A1, class A2, class A3, class A4, class A5, class A6, class R>
using FastDelegate6 = FastDelegate<R(A1, A2, A3, A4, A5, A6)>;
template <class A1, class A2, class A3, class A4, class A5, class A6, class A7, class R>
using FastDelegate7 = FastDelegate<R(A1, A2, A3, A4, A5, A6, A7)>;
template <class A1, class A2, class A3, class A4, class A5, class A6, class A7, class A8, class R>
using FastDelegate8 = FastDelegate<R(A1, A2, A3, A4, A5, A6, A7, A8)>;

} // namespace fastdelegate
