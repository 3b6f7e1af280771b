#pragma once

// The assets of the sample game: each is a script in data/attributes/KIND/NAME.lua, built into
// GENERIC:KIND/NAME.attr.

#include <string>
#include <vector>

struct Asset {
    std::string kind; // "units" or "weapons"
    std::string name;

    std::string ScriptPath() const { return "DATA:attributes/" + kind + "/" + name + ".lua"; }

    std::string TablePath() const { return "GENERIC:" + kind + "/" + name + ".attr"; }
};

// All assets below the data folder, sorted by kind and name.
std::vector<Asset> FindAssets(std::string const & dataFolder);
