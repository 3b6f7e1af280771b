#include "samples/sandbox/Checks.h"

#include "Cross/Util/CheatMenu.h"
#include "Cross/Util/DebugRender.h"
#include "Cross/Util/SystemConfig.h"
#include "Cross/Util/UtilSocket.h"
#include "Cross/engine/memory/MemPool.h"

void CheckStopped(Report & report, bool socketsWereUp) {
    report.Begin(Subsystem::Engine);
    report.Expect(!Inv::Warehouse::Instance() && !SystemConfig::Instance() && !CheatMenu::Instance() &&
                      !DebugRender::s_pProxy,
                  "inventory, settings, menu and renderer are gone");
    report.Expect(socketsWereUp && UtilSocketShutDown() == -1, "the socket layer was up and is down");
    for (char const * const pool : {"InvNames", "InvResources", "InvNodes"}) {
        MemPoolStats stats{};
        report.Expect(MemPoolFindStats(pool, stats) && stats.liveBlocks == 0,
                      std::string("the pool ") + pool + " is there and empty");
    }
    report.Evidence(
        "inventory, settings, menu, renderer and sockets stopped, and the inventory's pools are empty");
}
