#pragma once

// The table `types` of a source. Private to the table source.

#include "tools/tablesource/SourceTree.h"

namespace TableSource {

// Takes `types` out of the root and marks the fields that it lists; listed orders are brought about. What is
// wrong with it goes to `errors`.
void ApplyTypes(Node & root, Messages & errors);

} // namespace TableSource
