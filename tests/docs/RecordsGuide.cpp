#include "Cross/Util/Dca.h"
#include "Cross/Util/RunTimeStructCopier.h"
#include "Cross/Util/RunTimeStructMember.h"

#include <gtest/gtest.h>

TEST(RecordsGuide, AllOfIt) {
    // [describe]
    RunTimeStruct::Layout layout;
    layout.AddMember(dca::GetKey("alive"), RunTimeStruct::GetTypeInfo_bool(), 1);
    layout.AddMember(dca::GetKey("pos"), RunTimeStruct::GetTypeInfo_Math_Vector2f(), 1);
    layout.AddMember(dca::GetKey("ammo"), RunTimeStruct::GetTypeInfo_int(), 3); // an array of three

    RunTimeStruct::Buffer unit;
    unit.Setup(layout); // 21 bytes, not yet set
    // [describe]
    EXPECT_EQ(unit.GetSize(), 21u);

    // [access]
    RunTimeStruct::Member<Math::Vector2f> const pos(dca::GetKey("pos"));
    RunTimeStruct::Member<int> const ammo(dca::GetKey("ammo"), 3);
    pos.Set(unit, {4.0f, 5.0f});
    ammo.Set(unit, 30, 2); // the last of the three

    Math::Vector2f where{};
    bool const isThere = pos.Get(unit, where);
    // [access]
    EXPECT_TRUE(isThere && where == (Math::Vector2f{4.0f, 5.0f}));

    // [copy]
    RunTimeStruct::Layout packet; // what goes over the network
    packet.AddMember(dca::GetKey("sender"), RunTimeStruct::GetTypeInfo_int(), 1);
    packet.AddMember(dca::GetKey("pos"), RunTimeStruct::GetTypeInfo_Math_Vector2f(), 1);

    RunTimeStruct::Copier copier;
    copier.AddLayout(layout, packet);

    RunTimeStruct::Buffer message;
    message.Setup(packet);
    copier.Copy(unit, message); // pos; sender stays
    // [copy]
    Math::Vector2f sent{};
    EXPECT_TRUE(pos.Get(message, sent) && sent == where);
}
