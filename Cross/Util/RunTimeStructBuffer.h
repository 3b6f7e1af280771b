#pragma once

// Instances of run-time layouts, and refs that name their members.
//
// A ref remembers where it found its member last time, so reaching a member usually costs one comparison. It
// serves any number of buffers; alternating between layouts, it searches at each change.
//
// Threads: a buffer belongs to one thread at a time, and so does a ref, even a const one: asking a buffer
// changes what it remembers.

#include "Cross/Util/RunTimeStruct.h"
#include "Cross/engine/core/Export.h"

namespace RunTimeStruct {

// Where a layout has no such member.
inline constexpr unsigned int c_noOffset = 0xFFFFFFFF;

class CROSS_UTIL_API Ref {
public:
    // Not valid: without a type.
    Ref() = default;

    // The key of a member, and the type and number of elements that its user expects.
    Ref(Dictionary::Key const & key, TypeInfo const * type, unsigned int length)
        : key(key), length(length), type(type) {}

    Dictionary::Key const & GetKey() const { return key; }

    unsigned int GetLength() const { return length; }

    TypeInfo const * GetTypeInfo() const { return type; }

    // Both in bytes, of all elements. The ref must be valid.
    unsigned int GetSize() const { return type->GetSize() * length; }

    unsigned int GetTotalSize() const { return GetSize(); }

    bool IsValid() const { return type != nullptr; }

    // What is remembered: the layout that was asked last, and the offset found there, c_noOffset for none.
    unsigned int GetLastLayoutID() const { return lastLayoutID; }

    unsigned int GetLastOffset() const { return lastOffset; }

    void UpdateLast(unsigned int layoutID, unsigned int offset) const {
        lastLayoutID = layoutID;
        lastOffset = offset;
    }

private:
    Dictionary::Key key;
    unsigned int length = 0;
    TypeInfo const * type = nullptr;
    mutable unsigned int lastLayoutID = c_noLayoutID;
    mutable unsigned int lastOffset = 0;
};

class CROSS_UTIL_API Buffer {
public:
    // Not set up: no layout and no block.
    Buffer() = default;

    // Copies share the layout and have a block of their own with the same bytes. A copy of a buffer that is
    // not set up is not set up either.
    Buffer(Buffer const & other);
    Buffer & operator=(Buffer const & other);
    ~Buffer();

    // Gives the buffer a block for the layout; its bytes are not set. An equal layout keeps block and bytes.
    // Always true. Throws std::bad_alloc, and then nothing has changed.
    bool Setup(Layout const & layout);

    // Gives the block back and forgets the layout.
    void Reset();

    bool IsSetup() const { return layoutID != c_noLayoutID; }

    // c_noLayoutID without a layout.
    unsigned int GetLayoutID() const { return layout ? layout->GetLayoutID() : c_noLayoutID; }

    // Null without a layout and for an unknown key.
    LayoutMember const * FindMember(Dictionary::Key const & key) const;

    // The address of a member, which may be unaligned; null when there is none. Only the key counts: type and
    // length are not checked, and layouts that differ in nothing but lengths count as one, so a ref must not
    // be used with both. RunTimeStructMember.h checks.
    void * GetVoidPtr(Ref const & ref) const {
        if (layoutID != ref.GetLastLayoutID() && !searchMember(ref)) [[unlikely]]
            return nullptr;
        unsigned int const offset = ref.GetLastOffset();
        return offset == c_noOffset || !data ? nullptr : data + offset;
    }

    // The block, null when there is none. Dead after Reset, after a Setup with another layout and with the
    // buffer.
    void * GetData() { return data; }

    void const * GetData() const { return data; }

    // In bytes.
    unsigned int GetSize() const { return size; }

private:
    bool setup(boost::shared_ptr<InternalLayout> const & newLayout);
    bool searchMember(Ref const & ref) const;
    void copyFrom(Buffer const & other);

    boost::shared_ptr<InternalLayout> layout;
    unsigned int layoutID = c_noLayoutID;
    char * data = nullptr;
    unsigned int size = 0;
};

} // namespace RunTimeStruct
