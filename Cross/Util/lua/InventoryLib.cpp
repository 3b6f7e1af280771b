// The script library "inventory".

#include "Cross/Util/Inv.h"
#include "Cross/Util/LogFile.h"
#include "Cross/Util/lua/LuaBindingObj.h"
#include "Cross/Util/lua/LuaLibNames.h"
#include "Cross/engine/scriptconfig/LuaLibMan.h"
#include "Cross/engine/scriptconfig/LuaLibrary.h"
#include "Cross/engine/scriptconfig/LuaPrint.h"

namespace {

struct InventoryLibrary;

} // namespace

template <>
class InvFront<InventoryLibrary> {
public:
    static void Dump(Inv::DumpInfo & info) { Inv::Warehouse::Instance()->Dump(info); }
};

namespace {

// Writes what the inventory holds to a log of comma-separated values. A comma in a name shifts the columns.
void inv_dump() {
    if (!Inv::Warehouse::Instance()) {
        luax_print(LuaBinding::GetContext(), "There is no inventory");
        return;
    }
    Inv::DumpInfo info;
    InvFront<InventoryLibrary>::Dump(info);

    char filename[c_maxPath];
    LogFile::MakeFilename(filename, "invdump", "csv");
    LogFile log;
    log.CreateWithName(filename, true, false);
    log.puts("BinName,Name,RefCount");
    for (Inv::DumpInfo::BinRecord const & bin : info.bins)
        for (Inv::DumpInfo::ResourceRecord const & record : bin.resources)
            log.printf("%s,%s,%d", bin.name, record.name, record.references);
    log.Close();
}

class LuaInventoryLib : public LuaLibrary {
public:
    LuaInventoryLib() { LuaLibMan::AddLibrary(LUALIB_INVENTORY, this); }

    ~LuaInventoryLib() override { LuaLibMan::RemLibrary(LUALIB_INVENTORY, this); }

    bool BindState(LuaConfig & config) override {
        StoreLuaBindingObj(config, LuaBinding::Bind(config, "inv_dump", &inv_dump));
        return true;
    }

    bool ReleaseState(LuaConfig & config) override {
        ClearLuaBindingObj(config);
        return true;
    }
};

LuaInventoryLib s_library;

} // namespace
