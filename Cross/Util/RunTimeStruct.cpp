#include "Cross/Util/RunTimeStruct.h"

#include "Cross/engine/core/Math.h"
#include "Cross/engine/core/MathPrim.h"
#include "Cross/engine/memory/MemPool.h"

#include <algorithm>
#include <bit>
#include <limits>

namespace RunTimeStruct {

namespace {

// First of these objects, so that it goes last.
MemoryPoolObj s_pool("RunTimeStruct", 0, 0, false);

TypeInfo const s_float("float", sizeof(float));
TypeInfo const s_int("int", sizeof(int));
TypeInfo const s_bool("bool", 1);
TypeInfo const s_vector2f("Math::Vector2f", sizeof(Math::Vector2f));
TypeInfo const s_vector3f("Math::Vector3f", sizeof(Math::Vector3f));
TypeInfo const s_vector4f("Math::Vector4f", sizeof(Math::Vector4f));
TypeInfo const s_matrix3f("Math::Matrix3f", sizeof(Math::Matrix3f));
TypeInfo const s_matrix43f("Math::Matrix43f", sizeof(Math::Matrix43f));
TypeInfo const s_matrix4f("Math::Matrix4f", sizeof(Math::Matrix4f));
TypeInfo const s_colour("MathPrim::Colour", sizeof(MathPrim::Colour));

std::uint64_t bytesOf(TypeInfo const * type, unsigned int length) {
    return std::uint64_t{type->GetSize()} * length;
}

} // namespace

TypeInfo const * GetTypeInfo_float() { return &s_float; }

TypeInfo const * GetTypeInfo_int() { return &s_int; }

TypeInfo const * GetTypeInfo_bool() { return &s_bool; }

TypeInfo const * GetTypeInfo_Math_Vector2f() { return &s_vector2f; }

TypeInfo const * GetTypeInfo_Math_Vector3f() { return &s_vector3f; }

TypeInfo const * GetTypeInfo_Math_Vector4f() { return &s_vector4f; }

TypeInfo const * GetTypeInfo_Math_Matrix3f() { return &s_matrix3f; }

TypeInfo const * GetTypeInfo_Math_Matrix43f() { return &s_matrix43f; }

TypeInfo const * GetTypeInfo_Math_Matrix4f() { return &s_matrix4f; }

TypeInfo const * GetTypeInfo_MathPrim_Colour() { return &s_colour; }

void * InternalLayout::operator new(std::size_t size) {
    return MemPoolAlloc(s_pool.Get(), static_cast<unsigned int>(size));
}

void InternalLayout::operator delete(void * body) { MemPoolFree(s_pool.Get(), body); }

bool InternalLayout::AddMember(Dictionary::Key const & key, TypeInfo const * type, unsigned int length) {
    if (!type || FindMember(key))
        return false;
    if (bytesOf(type, length) > std::numeric_limits<unsigned int>::max() - dataSize)
        return false;
    members.push_back({key, length, dataSize, type});
    recalculate();
    return true;
}

bool InternalLayout::RemoveMember(Dictionary::Key const & key) {
    int const index = FindMemberIndex(key);
    if (index < 0)
        return false;
    members.erase(members.begin() + index);
    recalculate();
    return true;
}

void InternalLayout::ClearAllMembers() {
    members.clear();
    recalculate();
}

LayoutMember const * InternalLayout::GetMember(unsigned int index) const {
    return index < members.size() ? &members[index] : nullptr;
}

LayoutMember const * InternalLayout::FindMember(Dictionary::Key const & key) const {
    auto const found = std::find_if(members.begin(), members.end(),
                                    [&key](LayoutMember const & member) { return member.key == key; });
    return found == members.end() ? nullptr : &*found;
}

int InternalLayout::FindMemberIndex(Dictionary::Key const & key) const {
    LayoutMember const * const member = FindMember(key);
    return member ? static_cast<int>(member - members.data()) : -1;
}

void * InternalLayout::AllocBufferData() const {
    return dataSize == 0 ? nullptr : MemPoolAlloc(s_pool.Get(), dataSize);
}

void InternalLayout::FreeBufferData(void * data) const { MemPoolFree(s_pool.Get(), data); }

bool InternalLayout::operator==(InternalLayout const & other) const {
    return layoutID == other.layoutID && dataSize == other.dataSize && members == other.members;
}

void InternalLayout::recalculate() {
    layoutID = 0;
    dataSize = 0;
    for (unsigned int i = 0; i < members.size(); ++i) {
        LayoutMember & member = members[i];
        member.offset = dataSize;
        dataSize += static_cast<unsigned int>(bytesOf(member.type, member.length));
        layoutID = updateLayoutID(member.key, layoutID, i, member.type);
    }
}

unsigned int InternalLayout::updateLayoutID(Dictionary::Key const & key, unsigned int id, unsigned int shift,
                                            TypeInfo const * type) const {
    auto const address = static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(type));
    return std::rotl(id, static_cast<int>(shift % 32)) ^ key.GetValue() ^ address;
}

bool Layout::AddMember(Dictionary::Key const & key, TypeInfo const * type, unsigned int length) {
    copyOnWrite();
    return body->AddMember(key, type, length);
}

bool Layout::RemoveMember(Dictionary::Key const & key) {
    copyOnWrite();
    return body->RemoveMember(key);
}

void Layout::ClearAllMembers() {
    copyOnWrite();
    body->ClearAllMembers();
}

void Layout::copyOnWrite() {
    if (body.use_count() > 1)
        body.reset(new InternalLayout(*body));
}

} // namespace RunTimeStruct
