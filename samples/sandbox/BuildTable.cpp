#include "samples/sandbox/BuildTable.h"

#include "Cross/Util/BinaryConfigCreator.h"
#include "Cross/Util/BinaryConfigIO.h"
#include "Cross/engine/filesystem/RamStream.h"
#include "samples/sandbox/Files.h"
#include "tools/tablesource/TableSource.h"

bool BuildTable(Asset const & asset, std::string & error) {
    std::string const script = ReadWholeFile(asset.ScriptPath().c_str());
    if (script.empty()) {
        error = asset.ScriptPath() + " is missing or empty";
        return false;
    }
    return BuildTable(asset, script, error);
}

bool BuildTable(Asset const & asset, std::string const & script, std::string & error) {
    RamStream source;
    source.Open(static_cast<unsigned int>(script.size()), c_streamWrite);
    source.Write(script.data(), static_cast<unsigned int>(script.size()));
    source.SetPos(0);
    BinaryConfigCreator creator;
    TableSource::Report built;
    if (!TableSource::Build(source, creator, built)) {
        error = asset.ScriptPath() + ": " + built.errors.front();
        return false;
    }
    error = asset.TablePath() + " cannot be saved";
    return BinaryConfigIO::Save(asset.TablePath().c_str(), creator, 1);
}
