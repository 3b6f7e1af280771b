#pragma once

// Each check uses a part of the library as a game would and reports what was seen of it. They run in this
// order on a game that is up; later ones build on what earlier ones proved.

#include "samples/sandbox/Assets.h"
#include "samples/sandbox/Game.h"
#include "samples/sandbox/LoadScreen.h"
#include "samples/sandbox/Report.h"

void CheckFiles(Report & report);
void CheckLoading(Report & report, LoadScreen const & load, bool failedOnce);
void CheckTables(Report & report, std::vector<Asset> const & assets);
void CheckReaders(Report & report, std::vector<Asset> const & assets);
void CheckKeys(Report & report, std::vector<Asset> const & assets);
void CheckLogs(Report & report, std::vector<Asset> const & assets);
void CheckInventory(Report & report, Game & game);
void CheckReload(Report & report, Game & game);
void CheckArt(Report & report, Game & game);
void CheckScripts(Report & report);
void CheckSettings(Report & report, Game const & game);
void CheckConfigFiles(Report & report);
void CheckInstruments(Report & report, Game & game);

// `menuFile` is the menu of the game, which stays loaded behind the check.
void CheckMenu(Report & report, Game & game, char const * menuFile);
void CheckRecords(Report & report);

// Changes one bit in one of two worlds at the start of a frame, counted from 1.
void CheckSync(Report & report, unsigned int driftFrame);

// When everything was unloaded, and when the game has stopped.
void CheckUnloading(Report & report, LoadScreen const & load);
void CheckNothingLeft(Report & report);
void CheckStopped(Report & report, bool socketsWereUp);
