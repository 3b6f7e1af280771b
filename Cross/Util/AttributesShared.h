#pragma once

// What the readers of attributes have in common. Private to them.

#include "Cross/engine/core/Types.h"
#include "Cross/engine/diagnostics/Warning.h"

namespace attributes {

// The lower bound is tested first and alone decides for a value below it, also when the bounds are the wrong
// way round. NaN stays.
inline float Clamp(float value, float min, float max) {
    if (value < min)
        return min;
    return value > max ? max : value;
}

inline void WarnMissingTable(char const * table, char const * file) {
    dbWarningfAux(FourCC("PBGM"), "TablePush(\"%s\") called on non-existant table in file \"%s\"",
                  table ? table : "", file);
}

} // namespace attributes
