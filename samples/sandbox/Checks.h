#pragma once

// One check per subsystem. Each uses its subsystem as a game would and reports one line of evidence. They run
// in this order: later ones read the files that earlier ones built.

#include "samples/sandbox/Assets.h"
#include "samples/sandbox/Report.h"

void CheckFiles(Report & report);
void CheckTables(Report & report, std::vector<Asset> const & assets);
void CheckReaders(Report & report, std::vector<Asset> const & assets);
void CheckKeys(Report & report, std::vector<Asset> const & assets);
void CheckLogs(Report & report, std::vector<Asset> const & assets);
