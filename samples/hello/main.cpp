#include "Cross/Util/AttributesBinary.h"
#include "Cross/Util/BinaryConfigCreator.h"
#include "Cross/Util/BinaryConfigIO.h"
#include "Cross/engine/filesystem/FilePath.h"

#include <cstdio>

int main() {
    BinaryConfigCreator creator; // builds a table of values in memory
    creator.SetString("name", "light_tank");
    creator.SetNumber("speed", 16.5f);
    BinaryConfig table;
    BinaryConfigIO::CreateBinaryConfig(creator, table, 1);

    AttributesBinary tank(table, "light_tank"); // the one reader, over tables and scripts alike
    float speed = 0.0f;
    tank.GetNumber("speed", 0.0f, 10.0f, speed); // clamped to [0, 10]
    std::printf("speed %g\n", static_cast<double>(speed));

    FilePath::SetAlias("GENERIC", "."); // files go by aliases; an old one stays when a save fails
    return BinaryConfigIO::Save("GENERIC:light_tank.attr", table, 1) ? 0 : 1;
}
