#include "Cross/Util/AttributesBinary.h"
#include "Cross/Util/AttributesEmpty.h"
#include "Cross/Util/AttributesLua.h"
#include "Cross/Util/BinaryConfig.h"
#include "Cross/Util/BinaryConfigCreator.h"
#include "Cross/Util/BinaryConfigIO.h"
#include "Cross/engine/scriptconfig/LuaConfig.h"

#include <gtest/gtest.h>

#include <string>

namespace {

// [read-ship]
struct Ship {
    std::string name = "unnamed";
    float speed = 10.0f;
    int crew = 1;
    float fuel = 0.0f;
};

Ship ReadShip(AttributesInterface & attributes) {
    Ship ship;
    char name[64];
    if (attributes.GetString("name", name, sizeof(name)))
        ship.name = name;
    attributes.GetNumber("speed", 0.0f, 40.0f, ship.speed); // clamped
    attributes.GetNumber("crew", ship.crew);                // a failed read leaves the default
    if (attributes.TableExists("engine")) {
        attributes.TablePush("engine");
        attributes.GetNumber("fuel", ship.fuel);
        attributes.TablePop();
    }
    return ship;
}

// [read-ship]

void expectDart(Ship const & ship) {
    EXPECT_EQ(ship.name, "Dart");
    EXPECT_EQ(ship.speed, 40.0f);
    EXPECT_EQ(ship.crew, 3);
    EXPECT_EQ(ship.fuel, 0.5f);
}

TEST(AttributesGuide, OneReaderOverAllSources) {
    // [read-from-script]
    LuaConfig script("dart.lua", false);
    script.RunString("name = 'Dart' speed = 55 crew = 3 engine = { fuel = 0.5 }", true);
    AttributesLua fromScript(&script, "dart.lua");
    Ship const scripted = ReadShip(fromScript);
    // [read-from-script]
    expectDart(scripted);

    // [read-from-table]
    BinaryConfigCreator creator;
    creator.SetString("name", "Dart");
    creator.SetNumber("speed", 55.0f); // 55 would make an Integer, which does not read as a float
    creator.SetNumber("crew", 3);
    creator.TablePush("engine", false);
    creator.SetNumber("fuel", 0.5f);
    creator.TablePop();
    BinaryConfig table;
    BinaryConfigIO::CreateBinaryConfig(creator, table, 1);

    AttributesBinary fromTable(table, "dart");
    Ship const stored = ReadShip(fromTable);
    // [read-from-table]
    expectDart(stored);

    // [read-from-nothing]
    AttributesEmpty nothing("no ship");
    Ship const plain = ReadShip(nothing); // all defaults
    // [read-from-nothing]
    EXPECT_EQ(plain.name, "unnamed");
    EXPECT_EQ(plain.speed, 10.0f);
}

// [walk-tables]
float SumFuel(AttributesInterface & attributes) {
    float sum = 0.0f;
    attributes.GetNumber("fuel", sum);
    for (unsigned int i = 0; i < attributes.GetCount(); ++i) {
        std::uint32_t const key = attributes.GetAt(i);
        if (!attributes.TableExists(key))
            continue;
        attributes.TablePush(key);
        sum += SumFuel(attributes);
        attributes.TablePop();
    }
    return sum;
}

// [walk-tables]

TEST(AttributesGuide, Walk) {
    LuaConfig script("fleet.lua", false);
    ASSERT_TRUE(script.RunString("a = { fuel = 1 } b = { fuel = 2, tank = { fuel = 4 } }", true));
    AttributesLua fleet(&script, "fleet.lua");
    EXPECT_EQ(SumFuel(fleet), 7.0f);
}

} // namespace
