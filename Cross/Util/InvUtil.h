#pragma once

// Canonical names of resources.

#include "Cross/engine/core/Export.h"

namespace InvUtil {

// Writes the canonical form of `name` to `out`, which must hold it; `out` may be `name`: what stands up to
// the last ':' falls away, '/' becomes '\', with `stripExtension` the text ends before its last '.', wherever
// that stands, and the letters A to Z become lower case. "DATA:Art/Units/Tank.dat" gives "art\units\tank". A
// null name gives "". Any thread.
CROSS_UTIL_API void TranslateResourceName(char * out, char const * name, bool stripExtension);

} // namespace InvUtil
