#pragma once

// One check per subsystem. Each uses its subsystem as a game would and reports one line of evidence. They run
// in this order on a started game; later ones build on what earlier ones proved.

#include "samples/sandbox/Assets.h"
#include "samples/sandbox/Game.h"
#include "samples/sandbox/Report.h"
#include "samples/sandbox/StartUp.h"

void CheckFiles(Report & report);
void CheckStart(Report & report, StartUp const & start, bool failedOnce);
void CheckTables(Report & report, std::vector<Asset> const & assets);
void CheckReaders(Report & report, std::vector<Asset> const & assets);
void CheckKeys(Report & report, std::vector<Asset> const & assets);
void CheckLogs(Report & report, std::vector<Asset> const & assets);
void CheckInventory(Report & report, Game & game);
void CheckReload(Report & report, Game & game);
void CheckScripts(Report & report);
void CheckSettings(Report & report, Game const & game);
void CheckConfigFiles(Report & report);
void CheckInstruments(Report & report, Game & game);
void CheckMenu(Report & report, Game & game);
void CheckArt(Report & report, Game & game);
void CheckRecords(Report & report);

// Changes one bit in one of two worlds at the start of a frame, counted from 1.
void CheckSync(Report & report, unsigned int driftFrame);
void CheckNothingLeft(Report & report, Game & game);
