#include "Cross/Util/AttributesBinary.h"
#include "Cross/Util/BinaryConfig.h"
#include "Cross/Util/BinaryConfigCreator.h"
#include "Cross/Util/BinaryConfigIO.h"
#include "Cross/engine/filesystem/FilePath.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

TEST(Readme, TwentyLines) {
    TemporaryFolder folder;
    FilePath::SetAlias("GENERIC", folder.Path().c_str());

    // [readme]
    // Build a table in memory, look at it through the one reader, and save it.
    BinaryConfigCreator creator;
    creator.SetString("name", "light_tank");
    creator.SetNumber("speed", 16.5f);
    creator.TablePush("ammunition", false);
    creator.SetNumber("capacity", 60);
    creator.TablePop();

    BinaryConfig table;
    BinaryConfigIO::CreateBinaryConfig(creator, table, 1);
    AttributesBinary tank(table, "light_tank");

    float speed = 0.0f;
    tank.GetNumber("speed", 0.0f, 50.0f, speed); // true; clamped to [0, 50]
    int capacity = 0;
    tank.TablePush("ammunition");
    tank.GetNumber("capacity", capacity); // true; 60
    tank.TablePop();

    bool const saved = BinaryConfigIO::Save("GENERIC:units/light_tank.attr", table, 1);
    // [readme]

    EXPECT_EQ(speed, 16.5f);
    EXPECT_EQ(capacity, 60);
    EXPECT_TRUE(saved);
    EXPECT_EQ(FilePath::GetFileType("GENERIC:units/light_tank.attr"), FilePath::FT_FILE);
    FilePath::RemoveAlias("GENERIC");
}
