#include "Cross/Util/Dca.h"
#include "Cross/Util/DictionaryLoad.h"
#include "Cross/engine/filesystem/FilePath.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <cstdio>

TEST(KeysGuide, AllOfIt) {
    TemporaryFolder const folder;
    FilePath::SetAlias("save", folder.Path().c_str());

    // [intern]
    Dictionary names(true); // case-sensitive
    Dictionary::Key const speed = names.GetKey("speed");

    Dictionary::Key found;
    if (names.FindKey("speed", found)) // stores nothing
        std::printf("%08X is %s\n", found.GetValue(), names.GetString(found));
    // [intern]
    EXPECT_EQ(found, speed);

    // [dca]
    dca::Key const tank = dca::GetKey("Units/Tank");
    bool const isOne = tank == dca::GetKey("units\\\\tank"); // true: both are units\tank
    dca::Key const third = dca::GetKeyForNumber(3);          // of the text "3"; a repeat is one array read
    // [dca]
    EXPECT_TRUE(isOne);
    EXPECT_STREQ(dca::GetString(third), "3");

    // [save-and-check]
    {
        ByteStreamProxy stream = FilePath::OpenStream("save:names.dict", c_streamWrite);
        DictionaryLoad::Save(stream, names);
    }
    ByteStreamProxy stream = FilePath::OpenStream("save:names.dict", c_streamRead);
    Dictionary running(true);
    bool const keysHold = DictionaryLoad::Load(stream, running);
    // [save-and-check]
    EXPECT_TRUE(keysHold);
    FilePath::RemoveAlias("save");
}
