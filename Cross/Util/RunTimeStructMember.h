#pragma once

// Typed access to the members of buffers, checked against the layout: a member that is not there, or has
// another type or length, is neither read nor written. Elements are copied as bytes, whatever their
// alignment.
//
//     RunTimeStruct::Member<float> const speed(dca::GetKey("speed"));
//     float value = 0;
//     if (speed.Get(unit, value)) ...
//
// Threads: as many as the buffer allows.

#include "Cross/Util/RunTimeStructBuffer.h"
#include "Cross/engine/core/Math.h"
#include "Cross/engine/core/MathPrim.h"

#include <cstring>
#include <type_traits>

namespace RunTimeStruct {

// The library's type of a C++ type. A program adds overloads for its own types, in the namespace of each.
inline TypeInfo const * TypeInfoOf(float const *) { return GetTypeInfo_float(); }

inline TypeInfo const * TypeInfoOf(int const *) { return GetTypeInfo_int(); }

inline TypeInfo const * TypeInfoOf(bool const *) { return GetTypeInfo_bool(); }

inline TypeInfo const * TypeInfoOf(Math::Vector2f const *) { return GetTypeInfo_Math_Vector2f(); }

inline TypeInfo const * TypeInfoOf(Math::Vector3f const *) { return GetTypeInfo_Math_Vector3f(); }

inline TypeInfo const * TypeInfoOf(Math::Vector4f const *) { return GetTypeInfo_Math_Vector4f(); }

inline TypeInfo const * TypeInfoOf(Math::Matrix3f const *) { return GetTypeInfo_Math_Matrix3f(); }

inline TypeInfo const * TypeInfoOf(Math::Matrix43f const *) { return GetTypeInfo_Math_Matrix43f(); }

inline TypeInfo const * TypeInfoOf(Math::Matrix4f const *) { return GetTypeInfo_Math_Matrix4f(); }

inline TypeInfo const * TypeInfoOf(MathPrim::Colour const *) { return GetTypeInfo_MathPrim_Colour(); }

template <class T>
class Member {
    static_assert(std::is_trivially_copyable_v<T>, "members are plain bytes");

public:
    // A member of `length` elements.
    explicit Member(Dictionary::Key const & key, unsigned int length = 1)
        : ref(key, TypeInfoOf(static_cast<T const *>(nullptr)), length) {}

    Ref const & GetRef() const { return ref; }

    // Whether the buffer has this member, of this type and length.
    bool IsIn(Buffer const & buffer) const { return find(buffer) != nullptr; }

    // Reads an element. False, and `value` stays, when the buffer does not have it.
    bool Get(Buffer const & buffer, T & value, unsigned int index = 0) const {
        char const * const bytes = find(buffer, index);
        if (!bytes)
            return false;
        if constexpr (std::is_same_v<T, bool>)
            value = *bytes != 0; // a block that was not set may hold any byte
        else
            std::memcpy(&value, bytes, sizeof(value));
        return true;
    }

    // Writes an element. False, and nothing is written, when the buffer does not have it.
    bool Set(Buffer & buffer, T const & value, unsigned int index = 0) const {
        char * const bytes = find(buffer, index);
        if (bytes)
            std::memcpy(bytes, &value, sizeof(value));
        return bytes != nullptr;
    }

private:
    // Searches the layout each time: what a ref remembers does not know about lengths.
    LayoutMember const * find(Buffer const & buffer) const {
        LayoutMember const * const member = buffer.FindMember(ref.GetKey());
        bool const fits = member && member->type == ref.GetTypeInfo() && member->length == ref.GetLength() &&
                          member->type->GetSize() == sizeof(T);
        return fits ? member : nullptr;
    }

    char const * find(Buffer const & buffer, unsigned int index) const {
        LayoutMember const * const member = find(buffer);
        if (!member || index >= member->length)
            return nullptr;
        return static_cast<char const *>(buffer.GetData()) + member->offset + std::size_t{index} * sizeof(T);
    }

    char * find(Buffer & buffer, unsigned int index) const {
        return const_cast<char *>(find(static_cast<Buffer const &>(buffer), index));
    }

    Ref ref;
};

} // namespace RunTimeStruct
