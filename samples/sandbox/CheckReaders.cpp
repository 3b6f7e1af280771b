// Reads every asset three ways through one interface: from its script, from its binary table, and from
// nothing.

#include "samples/sandbox/Checks.h"

#include "Cross/Util/AttributesBinary.h"
#include "Cross/Util/AttributesEmpty.h"
#include "Cross/Util/AttributesLua.h"
#include "Cross/Util/BinaryConfig.h"
#include "Cross/Util/BinaryConfigIO.h"
#include "Cross/engine/scriptconfig/LuaConfig.h"
#include "Cross/engine/scriptconfig/LuaConfigSave.h"

#include <cstring>

namespace {

constexpr unsigned int c_textSize = 256;

// What a game reads of one asset, and the same for every reader.
std::string readNumber(AttributesInterface const & reader, char const * name) {
    float number = 0.0f;
    int whole = 0;
    if (reader.GetNumber(name, number))
        return std::to_string(number);
    return reader.GetNumber(name, whole) ? std::to_string(static_cast<float>(whole)) : "none";
}

std::string readText(AttributesInterface const & reader, char const * name) {
    char text[c_textSize];
    return reader.GetString(name, text, c_textSize) ? text : "none";
}

struct Comparison {
    Report & report;
    LuaConfig & script;
    AttributesInterface & fromScript;
    AttributesInterface & fromTable;
    AttributesInterface & fromNothing;
    unsigned int values = 0;
    unsigned int tables = 0;

    void Table(std::string const & where) {
        ++tables;
        std::vector<std::string> names;
        for (LuaConfig::Iterator it = script.IterateBegin(); it != script.IterateEnd(); ++it)
            if (std::strcmp(it.GetName(), "types") != 0)
                names.push_back(it.GetName());
        report.Expect(fromTable.GetCount() == names.size(), where + " has as many fields in its table");
        for (std::string const & name : names)
            Field(where + "." + name, name.c_str());
    }

    void Field(std::string const & where, char const * name) {
        report.Expect(!fromNothing.AttributeExists(name) && !fromNothing.TableExists(name),
                      "nothing holds no " + where);
        if (fromScript.TableExists(name)) {
            report.Expect(fromTable.TableExists(name), where + " is a table in both");
            Nested(where, name);
            return;
        }
        ++values;
        report.Expect(fromTable.AttributeExists(name), where + " exists in both");
        bool on = false;
        bool onInTable = false;
        switch (script.GetType(name)) {
        case LuaConfig::LT_BOOLEAN:
            report.Expect(fromScript.GetBool(name, on) && fromTable.GetBool(name, onInTable) &&
                              on == onInTable,
                          where + " is the same flag");
            break;
        case LuaConfig::LT_NUMBER:
            report.Expect(readNumber(fromScript, name) == readNumber(fromTable, name),
                          where + " is the same number");
            break;
        default:
            Text(where, name);
        }
    }

    void Text(std::string const & where, char const * name) {
        char16_t wide[c_textSize];
        char16_t wideInTable[c_textSize];
        if (fromTable.GetWString(name, wideInTable, c_textSize))
            report.Expect(fromScript.GetWString(name, wide, c_textSize) &&
                              std::u16string(wide) == wideInTable,
                          where + " is the same wide text");
        else
            report.Expect(readText(fromScript, name) == readText(fromTable, name),
                          where + " is the same text");
    }

    void Nested(std::string const & where, char const * name) {
        for (AttributesInterface * reader : {&fromScript, &fromTable, &fromNothing})
            reader->TablePush(name);
        Table(where);
        for (AttributesInterface * reader : {&fromScript, &fromTable, &fromNothing})
            reader->TablePop();
    }
};

} // namespace

void CheckReaders(Report & report, std::vector<Asset> const & assets) {
    report.Begin(Subsystem::Tables);
    unsigned int values = 0;
    unsigned int tables = 0;
    for (Asset const & asset : assets) {
        LuaConfig script(asset.name.c_str(), false);
        BinaryConfig table;
        if (!report.Expect(LuaConfigSave::LoadLua(script, asset.ScriptPath().c_str()),
                           "running " + asset.ScriptPath()) ||
            !report.Expect(BinaryConfigIO::Load(asset.TablePath().c_str(), table),
                           "loading " + asset.TablePath()))
            continue;
        AttributesLua fromScript(&script, asset.ScriptPath().c_str());
        AttributesBinary fromTable(table, asset.TablePath().c_str());
        AttributesEmpty fromNothing("nothing");
        Comparison comparison{report, script, fromScript, fromTable, fromNothing};
        comparison.Table(asset.name);
        values += comparison.values;
        tables += comparison.tables;
    }
    report.Expect(values > 0, "some values were compared");
    report.Evidence(std::to_string(values) + " values in " + std::to_string(tables) +
                    " tables read the same from script and table, and nothing from nothing");
}
