#pragma once

// Pictures and models of the sample game, in the inventory: both come late, in batches, and again when their
// file is saved.

#include "Cross/Util/BoundVolume.h"
#include "Cross/engine/filesystem/LoadScheduler.h"
#include "samples/inventory/Inventory.h"
#include "samples/renderer/Texture.h"

#include <memory>
#include <string>

// What a unit wears.
struct Skin : Inv::NamedResource {
    std::shared_ptr<Texture const> texture; // never null
};

struct Model : Inv::NamedResource {
    MathPrim::Mesh mesh;
    BoundVolume bounds;
};

// The art that the data folder ships, as the names of its resources: pictures that all show the same, and a
// model.
inline constexpr char const * c_skinNames[] = {"art/tank24", "art/tank24_rle", "art/tank32",
                                               "art/tank32_rle"};
inline constexpr char const * c_tankName = "art/tank";

// Puts pictures and models where the kinds find them: pictures as they are, models imported from OBJ text.
bool BuildArt(std::string & error);

// Null when the file cannot be read; the trace says why.
std::unique_ptr<Skin> ReadSkin(std::string const & path);
std::unique_ptr<Model> ReadModel(std::string const & path);

// A kind whose assets are one file each: "art/tank" is GENERIC:art/tank with the kind's extension.
template <class Data>
class FileKind : public inventory::Kind<Data> {
public:
    using Read = std::unique_ptr<Data> (*)(std::string const & path);

    FileKind(char const * binName, char const * extension, Read read)
        : binName(binName), extension(extension), read(read) {}

    char const * GetBinName() const override { return binName; }

    bool CanReload() const override { return true; }

    bool CanDeferLoading() const override { return true; }

    void PrepareToLoad(char const * name) override { LoadScheduler::AddFile(pathOf(name).c_str()); }

    Inv::NamedResource * Load(char const * name) const override { return read(pathOf(name)).release(); }

    // What cannot be read leaves the old data where it is.
    Inv::NamedResource * Reload(Inv::NamedResource * data) const override {
        std::unique_ptr<Data> fresh = read(pathOf(data->GetName()));
        if (fresh)
            delete data;
        return fresh.release();
    }

private:
    std::string pathOf(char const * name) const { return std::string("GENERIC:") + name + extension; }

    char const * binName;
    char const * extension;
    Read read;
};
