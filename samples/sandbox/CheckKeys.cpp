// Names as keys: the names of all fields are interned, found again both ways, and lead to the same fields as
// walking does.

#include "samples/sandbox/Checks.h"

#include "Cross/Util/BinaryConfig.h"
#include "Cross/Util/BinaryConfigIO.h"
#include "Cross/Util/Dca.h"
#include "Cross/Util/DictionaryLoad.h"
#include "Cross/engine/filesystem/FilePath.h"
#include "Cross/engine/scriptconfig/LuaConfig.h"
#include "Cross/engine/scriptconfig/LuaConfigSave.h"

#include <set>

namespace {

std::set<std::string> namesOf(Asset const & asset) {
    std::set<std::string> names;
    LuaConfig script(asset.name.c_str(), false);
    LuaConfigSave::LoadLua(script, asset.ScriptPath().c_str());
    for (LuaConfig::Iterator it = script.IterateBegin(); it != script.IterateEnd(); ++it)
        names.insert(it.GetName());
    names.erase("types");
    return names;
}

std::set<std::uint32_t> keysByWalking(Asset const & asset) {
    std::set<std::uint32_t> keys;
    BinaryConfig table;
    if (BinaryConfigIO::Load(asset.TablePath().c_str(), table))
        for (unsigned int i = 0; i < table.GetCount(); ++i)
            keys.insert(table.GetAt(i));
    return keys;
}

// The dictionary as a program would keep it beside its data: read back, every text has the key it had.
bool comesBack(Dictionary const & names) {
    constexpr char const * c_file = "SCRATCH:names.dict";
    {
        ByteStreamProxy stream = FilePath::OpenStream(c_file, c_streamWrite);
        DictionaryLoad::Save(stream, names);
    }
    ByteStreamProxy stream = FilePath::OpenStream(c_file, c_streamRead);
    Dictionary copy(true);
    return DictionaryLoad::Load(stream, copy);
}

} // namespace

void CheckKeys(Report & report, std::vector<Asset> const & assets) {
    report.Begin(Subsystem::Keys);
    Dictionary names(true);
    std::size_t fields = 0;
    for (Asset const & asset : assets) {
        std::set<std::uint32_t> byName;
        for (std::string const & name : namesOf(asset))
            byName.insert(names.GetKey(name.c_str()).GetValue());
        report.Expect(byName == keysByWalking(asset),
                      "keys by name are the keys by walking in " + asset.TablePath());
        fields += byName.size();
    }
    report.Evidence(std::to_string(fields) + " fields have the same key by name and by walking");

    std::size_t interned = 0;
    names.ForEach([&](Dictionary::Key key, char const * text) {
        Dictionary::Key found;
        report.Expect(names.FindKey(text, found) && found == key, std::string(text) + " is found by name");
        report.Expect(names.GetString(key) == std::string(text), std::string(text) + " is found by key");
        ++interned;
    });
    report.Expect(interned > 10, "names were interned");
    report.Evidence(std::to_string(interned) + " names found both ways");

    report.Expect(comesBack(names), "the dictionary keeps its keys in a file");
    report.Expect(dca::GetKey("Units/Tank") == dca::GetKey("units\\tank"), "paths have one spelling");
    report.Expect(dca::GetKeyForNumber(17) == dca::GetKey("17") &&
                      s_numberToKeyVector[17] == dca::GetKey("17"),
                  "a number has the key of its text");
    report.Evidence("a dictionary kept its keys in a file");
}
