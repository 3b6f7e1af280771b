#pragma once

// RunTimeStruct: records described at run time. A Layout lists named, typed members; a Buffer
// (RunTimeStructBuffer.h) is one instance of it as a block of bytes; a Copier (RunTimeStructCopier.h) moves
// members between instances of different layouts.
//
// Members lie back to back without alignment and are plain bytes: nothing constructs, converts or destroys
// them. RunTimeStructMember.h reads and writes them safely.
//
// Threads: a handle belongs to one thread at a time; a body that several handles share is never changed, and
// may be read from several threads.

#include "Cross/Util/Dictionary.h"
#include "Cross/engine/core/Export.h"

#include <boost/shared_ptr.hpp>

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace RunTimeStruct {

// The type of a member's elements. Types are told apart by the address of this object, which must outlive
// all layouts that name it; two with one name and size are two types.
class CROSS_UTIL_API TypeInfo {
public:
    // `size` is in bytes, of one element. A null name is "".
    TypeInfo(char const * name, unsigned int size) : name(name ? name : ""), size(size) {}

    unsigned int GetSize() const { return size; }

    char const * GetName() const { return name.c_str(); }

private:
    std::string name;
    unsigned int size;
};

// The library's own types. They live as long as the library.
CROSS_UTIL_API TypeInfo const * GetTypeInfo_float();
CROSS_UTIL_API TypeInfo const * GetTypeInfo_int();
CROSS_UTIL_API TypeInfo const * GetTypeInfo_bool(); // one byte
CROSS_UTIL_API TypeInfo const * GetTypeInfo_Math_Vector2f();
CROSS_UTIL_API TypeInfo const * GetTypeInfo_Math_Vector3f();
CROSS_UTIL_API TypeInfo const * GetTypeInfo_Math_Vector4f();
CROSS_UTIL_API TypeInfo const * GetTypeInfo_Math_Matrix3f();
CROSS_UTIL_API TypeInfo const * GetTypeInfo_Math_Matrix43f();
CROSS_UTIL_API TypeInfo const * GetTypeInfo_Math_Matrix4f();
CROSS_UTIL_API TypeInfo const * GetTypeInfo_MathPrim_Colour();

// A member of a layout: an array of `length` elements.
struct LayoutMember {
    Dictionary::Key key;
    unsigned int length;
    unsigned int offset; // in bytes, in a block
    TypeInfo const * type;

    friend bool operator==(LayoutMember const &, LayoutMember const &) = default;
};

// The identity number of a layout that was never changed.
inline constexpr unsigned int c_noLayoutID = 0xFFFFFFFF;

// The body that the handles of a layout share.
class CROSS_UTIL_API InternalLayout {
public:
    InternalLayout() = default;

    InternalLayout(InternalLayout const &) = default; // a moved-from body would have a size without members
    InternalLayout & operator=(InternalLayout const &) = default;

    // Bodies come from the pool "RunTimeStruct", as the blocks of buffers do.
    static void * operator new(std::size_t size);
    static void operator delete(void * body);

    // Adds a member at the end. False, and nothing has changed, when the key is there already, for a null
    // type, and when a block would exceed 32 bits. A length of 0 is allowed.
    bool AddMember(Dictionary::Key const & key, TypeInfo const * type, unsigned int length);

    // False when there is no such member. Those behind it move forward.
    bool RemoveMember(Dictionary::Key const & key);
    void ClearAllMembers();

    unsigned int GetMemberCount() const { return static_cast<unsigned int>(members.size()); }

    // In the order of adding; null from the count on. Pointers last until the next change.
    LayoutMember const * GetMember(unsigned int index) const;
    LayoutMember const * FindMember(Dictionary::Key const & key) const;

    // -1 when there is none.
    int FindMemberIndex(Dictionary::Key const & key) const;

    // A number made of the keys, the types and their order, for this process only. Lengths play no part in
    // it. 0 once all members are gone.
    unsigned int GetLayoutID() const { return layoutID; }

    // Bytes in a block.
    unsigned int GetDataSize() const { return dataSize; }

    // A block whose bytes are not set, null for an empty layout. Throws std::bad_alloc.
    void * AllocBufferData() const;

    // Null does nothing.
    void FreeBufferData(void * data) const;

    // Equal in everything: identity number, size and each member.
    bool operator==(InternalLayout const & other) const;

private:
    void recalculate();
    unsigned int updateLayoutID(Dictionary::Key const & key, unsigned int id, unsigned int shift,
                                TypeInfo const * type) const;

    unsigned int layoutID = c_noLayoutID;
    std::vector<LayoutMember> members;
    unsigned int dataSize = 0;
};

// A handle to a body. Copies share it; the first change through a handle whose body is shared gives the
// handle a body of its own, also when the change then fails. So buffers never see their layout change.
class CROSS_UTIL_API Layout {
public:
    Layout() : body(new InternalLayout) {}

    Layout(Layout const &) = default; // a moved-from handle would have no body
    Layout & operator=(Layout const &) = default;

    // As in InternalLayout.
    bool AddMember(Dictionary::Key const & key, TypeInfo const * type, unsigned int length);
    bool RemoveMember(Dictionary::Key const & key);
    void ClearAllMembers();

    unsigned int GetMemberCount() const { return body->GetMemberCount(); }

    LayoutMember const * GetMember(unsigned int index) const { return body->GetMember(index); }

    LayoutMember const * FindMember(Dictionary::Key const & key) const { return body->FindMember(key); }

    int GetMemberIndex(Dictionary::Key const & key) const { return body->FindMemberIndex(key); }

    unsigned int GetLayoutID() const { return body->GetLayoutID(); }

    unsigned int GetDataSize() const { return body->GetDataSize(); }

    boost::shared_ptr<InternalLayout> const & GetInternalLayout() const { return body; }

private:
    void copyOnWrite();

    boost::shared_ptr<InternalLayout> body;
};

} // namespace RunTimeStruct
