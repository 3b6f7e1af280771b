// A program of another project: interns a name, builds a table in memory and reads it back.

#include "Cross/Util/BinaryConfig.h"
#include "Cross/Util/BinaryConfigCreator.h"
#include "Cross/Util/BinaryConfigIO.h"
#include "Cross/Util/Dictionary.h"

#include <cstdio>

int main() {
    BinaryConfigCreator creator;
    creator.SetNumber("speed", 1.5f);
    BinaryConfig table;
    float speed = 0.0f;
    bool const read =
        BinaryConfigIO::CreateBinaryConfig(creator, table, 1) && table.GetNumber("speed", speed);
    bool const interned =
        Dictionary::Instance().GetKey("Root").GetValue() == Dictionary::Instance().GetKey("root").GetValue();
    std::printf("speed %g, interned %d\n", static_cast<double>(speed), interned);
    return read && speed == 1.5f && interned ? 0 : 1;
}
