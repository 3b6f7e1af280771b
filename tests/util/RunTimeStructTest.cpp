#include "Cross/Util/RunTimeStruct.h"
#include "Cross/Util/RunTimeStructBuffer.h"
#include "Cross/Util/RunTimeStructCopier.h"
#include "Cross/Util/RunTimeStructMember.h"
#include "Cross/engine/memory/MemPool.h"
#include "tests/support/HeapLimit.h"

#include <gtest/gtest.h>

#include <bit>
#include <cstring>
#include <string>
#include <tuple>

using namespace RunTimeStruct;

namespace {

using Key = Dictionary::Key;

struct Described {
    std::uint32_t key;
    TypeInfo const * type;
    unsigned int length = 1;
};

Layout layoutOf(std::initializer_list<Described> members) {
    Layout layout;
    for (Described const & member : members)
        EXPECT_TRUE(layout.AddMember(Key(member.key), member.type, member.length));
    return layout;
}

Buffer bufferOf(Layout const & layout, char first = 0) {
    Buffer buffer;
    buffer.Setup(layout);
    for (unsigned int i = 0; i < buffer.GetSize(); ++i)
        static_cast<char *>(buffer.GetData())[i] = static_cast<char>(first + static_cast<char>(i));
    return buffer;
}

std::string bytesOf(Buffer const & buffer) {
    return {static_cast<char const *>(buffer.GetData()), buffer.GetSize()};
}

TypeInfo const * const c_float = GetTypeInfo_float();
TypeInfo const * const c_bool = GetTypeInfo_bool();
TypeInfo const * const c_vector = GetTypeInfo_Math_Vector3f();

} // namespace

TEST(Layouts, TypesHaveTheirNamesAndSizes) {
    std::string types;
    for (TypeInfo const * type :
         {c_float, GetTypeInfo_int(), c_bool, GetTypeInfo_Math_Vector2f(), c_vector,
          GetTypeInfo_Math_Vector4f(), GetTypeInfo_Math_Matrix3f(), GetTypeInfo_Math_Matrix43f(),
          GetTypeInfo_Math_Matrix4f(), GetTypeInfo_MathPrim_Colour()})
        types += type->GetName() + (" " + std::to_string(type->GetSize())) + "\n";
    EXPECT_EQ(types, "float 4\nint 4\nbool 1\nMath::Vector2f 8\nMath::Vector3f 12\nMath::Vector4f 16\n"
                     "Math::Matrix3f 36\nMath::Matrix43f 48\nMath::Matrix4f 64\nMathPrim::Colour 4\n");
}

TEST(Layouts, MembersLieBackToBack) {
    Layout layout = layoutOf({{1, c_bool}, {2, c_float}, {3, c_vector, 3}, {4, c_float, 0}, {5, c_bool}});
    unsigned int const c_offsets[] = {0, 1, 5, 41, 41};
    for (unsigned int i = 0; i < 5; ++i)
        EXPECT_EQ(layout.GetMember(i)->offset, c_offsets[i]) << i;
    EXPECT_EQ(layout.GetDataSize(), 42u);
    EXPECT_EQ(layout.GetMember(5), nullptr);
    EXPECT_TRUE(layout.RemoveMember(Key(2)));
    EXPECT_EQ(layout.GetMemberIndex(Key(3)), 1);
    EXPECT_EQ(layout.FindMember(Key(3))->offset, 1u);
    EXPECT_EQ(layout.GetDataSize(), 38u);
    EXPECT_EQ(layout.GetMemberIndex(Key(2)), -1);
}

// Made of keys, types and order; lengths play no part.
TEST(Layouts, IdentityNumber) {
    EXPECT_EQ(Layout().GetLayoutID(), 0xFFFFFFFFu);
    auto const address = static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(c_float));
    std::uint32_t expected = 0;
    Layout layout;
    for (int i = 0; i < 40; ++i) { // beyond 32 the rotation begins anew
        layout.AddMember(Key(0x10u * static_cast<unsigned int>(i + 1)), c_float, 1);
        expected = std::rotl(expected, i % 32) ^ 0x10u * static_cast<unsigned int>(i + 1) ^ address;
    }
    EXPECT_EQ(layout.GetLayoutID(), expected);
    layout.ClearAllMembers();
    EXPECT_EQ(layout.GetLayoutID(), 0u);

    Layout const one = layoutOf({{1, c_bool, 5}, {2, c_float}}),
                 same = layoutOf({{1, c_bool, 5}, {2, c_float}}),
                 turned = layoutOf({{2, c_float}, {1, c_bool, 5}}),
                 otherLengths = layoutOf({{1, c_bool}, {2, c_float, 2}}); // of the same size in all
    EXPECT_TRUE(*one.GetInternalLayout() == *same.GetInternalLayout());
    EXPECT_FALSE(*one.GetInternalLayout() == *turned.GetInternalLayout());
    EXPECT_FALSE(*one.GetInternalLayout() == *otherLengths.GetInternalLayout());
    EXPECT_EQ(one.GetLayoutID(), otherLengths.GetLayoutID());
}

TEST(Layouts, RefusedMembersChangeNothing) {
    TypeInfo const big("big", 0x80000000);
    Layout layout = layoutOf({{1, c_float}});
    unsigned int const id = layout.GetLayoutID();
    EXPECT_FALSE(layout.AddMember(Key(1), c_bool, 1));
    EXPECT_FALSE(layout.AddMember(Key(2), nullptr, 1));
    EXPECT_FALSE(layout.AddMember(Key(2), &big, 2));
    EXPECT_FALSE(layout.AddMember(Key(2), c_bool, 0xFFFFFFFC));
    EXPECT_FALSE(layout.RemoveMember(Key(2)));
    EXPECT_EQ(layout.GetMemberCount(), 1u);
    EXPECT_EQ(layout.GetLayoutID(), id);
    EXPECT_TRUE(layout.AddMember(Key(2), c_bool, 0xFFFFFFFB)) << "exactly 32 bits";
}

// The first change through a handle that shares its body, also one that fails, leaves the others theirs.
TEST(Layouts, HandlesCopyOnWrite) {
    Layout a = layoutOf({{1, c_float}});
    Layout b = a, c = a;
    auto const body = a.GetInternalLayout();
    EXPECT_TRUE(b.AddMember(Key(2), c_float, 1));
    EXPECT_EQ(a.GetMemberCount(), 1u);
    EXPECT_FALSE(c.RemoveMember(Key(9)));
    InternalLayout const * const own = c.GetInternalLayout().get();
    EXPECT_NE(own, body.get());
    EXPECT_TRUE(*own == *body);
    EXPECT_TRUE(c.AddMember(Key(3), c_float, 1));
    EXPECT_EQ(c.GetInternalLayout().get(), own) << "a body of its own is changed in place";
    Layout const moved = static_cast<Layout &&>(a);
    EXPECT_EQ(a.GetInternalLayout(), moved.GetInternalLayout()) << "a moved-from layout stays whole";
}

// Only a body with bytes has blocks, of exactly its size.
TEST(Layouts, BodiesGiveOutBlocks) {
    InternalLayout body;
    EXPECT_EQ(body.AllocBufferData(), nullptr);
    EXPECT_TRUE(body.AddMember(Key(1), c_bool, 1) && body.AddMember(Key(2), c_vector, 2));
    EXPECT_EQ(body.FindMemberIndex(Key(2)), 1);
    MemPoolStats before, during;
    MemPoolFindStats("RunTimeStruct", before);
    void * const block = body.AllocBufferData();
    MemPoolFindStats("RunTimeStruct", during);
    body.FreeBufferData(block);
    EXPECT_EQ(during.liveBytes, before.liveBytes + 25);
}

TEST(Buffers, WithoutALayoutThereIsNothing) {
    Buffer buffer;
    Ref const ref(Key(1), c_float, 1);
    EXPECT_EQ(buffer.GetVoidPtr(ref), nullptr);
    EXPECT_EQ(ref.GetLastOffset(), 0u) << "the ref stays as it was";
    buffer.Setup(Layout());
    EXPECT_FALSE(buffer.IsSetup() || Ref().IsValid() || buffer.GetVoidPtr(ref));
}

TEST(Buffers, SetupKeepsTheBytesOfAnEqualLayoutAndCopiesHaveTheirOwn) {
    Layout layout = layoutOf({{1, c_float}, {2, c_bool}});
    Buffer buffer = bufferOf(layout, 10);
    std::string const bytes = bytesOf(buffer);
    void const * const block = buffer.GetData();
    Buffer copy(buffer), other = bufferOf(layoutOf({{7, c_vector}}));
    other = buffer;
    EXPECT_TRUE(copy.GetData() != buffer.GetData() && other.GetData() != buffer.GetData());
    EXPECT_TRUE(bytesOf(copy) == bytes && bytesOf(other) == bytes);
    EXPECT_EQ(copy.FindMember(Key(1)), buffer.FindMember(Key(1))) << "the layout is shared";
    Buffer & itself = copy;
    copy = itself;
    EXPECT_EQ(bytesOf(copy), bytes);
    other = Buffer();
    EXPECT_EQ(other.GetData(), nullptr);

    EXPECT_TRUE(buffer.Setup(layout) && buffer.Setup(layoutOf({{1, c_float}, {2, c_bool}})));
    EXPECT_TRUE(buffer.GetData() == block && bytesOf(buffer) == bytes);
    layout.AddMember(Key(3), c_vector, 1); // the handle moves to a clone
    EXPECT_EQ(buffer.FindMember(Key(3)), nullptr);
    EXPECT_TRUE(buffer.Setup(layout));
    EXPECT_EQ(buffer.GetSize(), 17u);
}

TEST(Buffers, RefsTellWhatTheyExpect) {
    Ref const ref(Key(7), c_vector, 3), none;
    EXPECT_TRUE(ref.IsValid() && ref.GetKey() == Key(7) && ref.GetTypeInfo() == c_vector);
    EXPECT_TRUE(ref.GetLength() == 3 && ref.GetSize() == 36 && ref.GetTotalSize() == 36);
    EXPECT_TRUE(!none.IsValid() && none.GetKey() == Key::INVALID && none.GetLength() == 0);
    EXPECT_TRUE(none.GetLastLayoutID() == 0xFFFFFFFF && none.GetLastOffset() == 0);
}

TEST(Buffers, RefsRememberOneLayout) {
    Buffer const a = bufferOf(layoutOf({{1, c_bool}, {2, c_float}})), b = bufferOf(layoutOf({{2, c_float}}));
    Buffer const without = bufferOf(layoutOf({{9, c_float}}));
    Ref const ref(Key(2), c_float, 1);
    auto const at = [&](Buffer const & buffer) {
        return static_cast<char const *>(buffer.GetVoidPtr(ref)) -
               static_cast<char const *>(buffer.GetData());
    };
    for (int round = 0; round < 2; ++round) {
        EXPECT_EQ(at(a), 1);
        EXPECT_EQ(at(b), 0);
        EXPECT_EQ(ref.GetLastLayoutID(), b.GetLayoutID());
        EXPECT_EQ(without.GetVoidPtr(ref), nullptr);
        EXPECT_EQ(ref.GetLastOffset(), 0xFFFFFFFFu);
    }
    ref.UpdateLast(a.GetLayoutID(), 3);
    EXPECT_EQ(at(a), 3) << "what is remembered is not searched again";
    Buffer gone = a;
    gone.Reset();
    EXPECT_EQ(gone.GetVoidPtr(ref), nullptr);
}

// The pool of bodies and blocks is empty again at the end, and a set-up that finds no memory changes nothing.
TEST(Buffers, MemoryIsGivenBack) {
    MemPoolStats before, during, after;
    MemPoolFindStats("RunTimeStruct", before);
    {
        Buffer buffer = bufferOf(layoutOf({{1, c_float}}), 5);
        Layout const huge = layoutOf({{1, c_vector, 1'000'000}});
        std::string const bytes = bytesOf(buffer);
        {
            HeapLimit const limit(1'000'000);
            EXPECT_THROW(buffer.Setup(huge), std::bad_alloc);
        }
        EXPECT_EQ(bytesOf(buffer), bytes);
        EXPECT_TRUE(buffer.IsSetup());
        MemPoolFindStats("RunTimeStruct", during);
        EXPECT_EQ(during.liveBlocks, before.liveBlocks + 3) << "two bodies and a block";
    }
    MemPoolFindStats("RunTimeStruct", after);
    EXPECT_EQ(after.liveBlocks, before.liveBlocks);
}

TEST(Members, AreReadAndWrittenOnlyAsTheyAre) {
    Buffer buffer = bufferOf(layoutOf({{1, c_bool}, {2, c_float}, {3, c_vector, 2}, {4, c_float, 0}}));
    Member<float> const number(Key(2));
    Member<Math::Vector3f> const vectors(Key(3), 2);
    Member<bool> const flag(Key(1));
    EXPECT_TRUE(number.Set(buffer, 1.5f) && vectors.Set(buffer, {1, 2, 3}, 1));
    std::string const bytes = bytesOf(buffer);
    float value = 0;
    Math::Vector3f vector{};
    EXPECT_TRUE(number.Get(buffer, value) && vectors.Get(buffer, vector, 1));
    EXPECT_TRUE(value == 1.5f && vector == (Math::Vector3f{1, 2, 3}));
    static_cast<char *>(buffer.GetData())[0] = 77; // no bool has this byte
    bool isSet = false;
    EXPECT_TRUE(flag.Get(buffer, isSet) && isSet);
    static_cast<char *>(buffer.GetData())[0] = 0;

    int word = 42;
    EXPECT_FALSE(Member<int>(Key(2)).Get(buffer, word)) << "another type";
    EXPECT_FALSE(Member<int>(Key(8)).Set(buffer, 1)) << "no such member";
    EXPECT_FALSE(Member<Math::Vector3f>(Key(3)).Set(buffer, {9, 9, 9})) << "another length";
    EXPECT_FALSE(vectors.Set(buffer, {9, 9, 9}, 2)) << "behind the last element";
    EXPECT_FALSE(number.Get(Buffer(), value));
    Member<float> const empty(Key(4), 0);
    EXPECT_TRUE(empty.IsIn(buffer) && !empty.Set(buffer, 9)) << "there, without elements";
    EXPECT_EQ(word, 42);
    EXPECT_EQ(bytesOf(buffer), bytes);
}

TEST(Copiers, CopyWhatBothLayoutsHave) {
    Layout const source = layoutOf({{1, c_bool}, {2, c_float}, {3, c_bool, 4}, {4, c_bool, 2}, {5, c_float}});
    Layout const dest = layoutOf({{9, c_bool}, {3, c_bool, 3}, {5, c_bool}, {4, c_bool, 3}, {1, c_bool}});
    Copier copier;
    copier.AddLayout(source, dest); // 5 has another type; the lengths of 3 and 4 differ both ways
    Buffer const from = bufferOf(source, 'a');
    Buffer to = bufferOf(dest, '0');
    for (int i = 0; i < 2; ++i) { // with a new plan and with the known one
        copier.Copy(from, to);
        EXPECT_EQ(bytesOf(to), "0fgh4jk7a");
        to = bufferOf(dest, '0');
    }
    Buffer none;
    copier.Copy(none, to);
    copier.Copy(from, none);
}

// Each pair of layouts, in each direction, has its plan; a key that a layout lacks is skipped.
TEST(Copiers, PlansBelongToPairs) {
    Buffer const ab = bufferOf(layoutOf({{1, c_bool}, {2, c_bool}}), 'a');
    Buffer const ba = bufferOf(layoutOf({{2, c_bool}, {1, c_bool}}), 'a');
    Buffer const b = bufferOf(layoutOf({{2, c_bool}}), 'a');
    std::tuple<Buffer const &, Buffer const &, char const *> const cases[] = {
        {ab, ab, "ab"}, {ab, ba, "ba"}, {ba, ba, "ab"}, {ba, ab, "ba"}, {ab, b, "b"}, {b, ab, "-a"}};
    Copier copier;
    for (unsigned int key = 1; key <= 2; ++key)
        copier.AddRef(Ref(Key(key), c_bool, 1), Ref(Key(key), c_bool, 1));
    for (int round = 0; round < 2; ++round)
        for (auto const & [from, dest, expected] : cases) {
            Buffer to = dest;
            std::memset(to.GetData(), '-', to.GetSize());
            copier.Copy(from, to);
            EXPECT_EQ(bytesOf(to), expected);
        }
}

TEST(Copiers, AddedRefsMustAgree) {
    Layout const layout = layoutOf({{1, c_float}, {2, c_float}});
    Buffer const from = bufferOf(layout, 'a');
    Buffer to = bufferOf(layout, '0');
    Copier copier;
    copier.Reserve(8);
    TypeInfo const twin("float", 4); // a type is its object, whatever its name and size
    copier.AddRef(Ref(Key(1), c_float, 1), Ref(Key(2), &twin, 1));   // another type
    copier.AddRef(Ref(Key(1), c_float, 1), Ref(Key(2), c_float, 2)); // another size
    copier.AddRef(Ref(), Ref());
    EXPECT_TRUE(copier.Empty());
    copier.AddRef(Ref(Key(1), c_float, 1), Ref(Key(2), c_float, 1));
    copier.Copy(from, to);
    EXPECT_EQ(bytesOf(to), "0123abcd");
    copier.AddRef(Ref(Key(2), c_float, 1), Ref(Key(1), c_float, 1)); // drops the plan
    copier.Copy(from, to);
    EXPECT_EQ(bytesOf(to), "efghabcd");
    copier.Clear();
    EXPECT_TRUE(copier.Empty());
    for (unsigned int key = 2; key >= 1; --key) // both to one place
        copier.AddRef(Ref(Key(key), c_float, 1), Ref(Key(2), c_float, 1));
    copier.Copy(from, to);
    EXPECT_EQ(bytesOf(to), "efghefgh") << "copies go by their place in the source";
}

TEST(Copiers, AliasesNameTheSource) {
    TypeInfo const twin("bool", 1);
    Layout const source = layoutOf({{1, c_bool}, {2, c_bool}, {3, &twin}});
    Layout const dest = layoutOf({{5, c_bool}, {6, c_bool}, {7, c_bool}, {1, c_bool}});
    Copier copier;
    copier.AddAliasedLayout(source, dest,
                            {{Key(5), Key(2)}, {Key(6), Key(2)}, {Key(7), Key(3)}, {Key(8), Key(1)}});
    Buffer to = bufferOf(dest, '0');
    copier.Copy(bufferOf(source, 'a'), to);
    EXPECT_EQ(bytesOf(to), "bb23") << "one member goes to two places, another type and unnamed ones stay";
}

// Two pairs of layouts with one identity number and other lengths share a plan: nothing outside of a block is
// read or written, and what fits is copied.
TEST(Copiers, PlansOfOtherLengthsStayInsideTheBlocks) {
    Layout const wide = layoutOf({{1, c_bool, 4}, {2, c_bool, 4}, {3, c_bool, 2}});
    Layout const narrow = layoutOf({{1, c_bool, 4}, {2, c_bool, 1}, {3, c_bool, 1}});
    ASSERT_EQ(wide.GetLayoutID(), narrow.GetLayoutID());
    Copier byWide, byNarrow;
    byWide.AddLayout(wide, wide);
    byNarrow.AddLayout(narrow, narrow);
    auto const copied = [](Copier & copier, Layout const & source, Layout const & dest) {
        Buffer to = bufferOf(dest, '0');
        copier.Copy(bufferOf(source, 'a'), to);
        return bytesOf(to);
    };
    EXPECT_EQ(copied(byWide, wide, wide), "abcdefghij");
    EXPECT_EQ(copied(byWide, wide, narrow), "abcd45");
    EXPECT_EQ(copied(byWide, narrow, wide), "abcd456789");
    EXPECT_EQ(copied(byNarrow, narrow, narrow), "abcdef");
    EXPECT_EQ(copied(byNarrow, wide, wide), "abcdef6789") << "the smaller pair made the plan";
}
