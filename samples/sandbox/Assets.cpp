#include "samples/sandbox/Assets.h"

#include <algorithm>
#include <filesystem>
#include <tuple>

std::vector<Asset> FindAssets(std::string const & dataFolder) {
    std::vector<Asset> assets;
    std::error_code missing;
    for (char const * kind : {"units", "weapons"}) {
        std::filesystem::path const folder = std::filesystem::path(dataFolder) / "attributes" / kind;
        for (auto const & entry : std::filesystem::directory_iterator(folder, missing))
            if (entry.path().extension() == ".lua")
                assets.push_back({kind, entry.path().stem().string()});
    }
    std::sort(assets.begin(), assets.end(), [](Asset const & left, Asset const & right) {
        return std::tie(left.kind, left.name) < std::tie(right.kind, right.name);
    });
    return assets;
}
