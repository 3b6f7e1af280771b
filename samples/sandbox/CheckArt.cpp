// Pictures and a model through the codecs and the inventory, and a picture that is replaced while the game
// runs.

#include "samples/sandbox/Checks.h"

#include "Cross/Util/TGAIO.h"
#include "Cross/engine/filesystem/FilePath.h"
#include "samples/sandbox/Files.h"

#include <memory>
#include <vector>

namespace {

void checkPictures(Report & report, Game const & game) {
    Skin const * const first = game.tankSkins.front().Get();
    if (!report.Expect(first != nullptr, "the first picture is loaded"))
        return;
    for (inventory::Handle<Skin> const & skin : game.tankSkins)
        report.Expect(skin.Get() && skin->texture->pixels == first->texture->pixels,
                      "every kind of Targa file shows the same picture");
    report.Evidence(std::to_string(game.tankSkins.size()) +
                    " Targa files of an independent tool show one picture of " +
                    std::to_string(first->texture->width) + " x " + std::to_string(first->texture->height));
}

void checkModel(Report & report, Game const & game) {
    Model const * const tank = game.tankModel.Get();
    if (!report.Expect(tank != nullptr, "the tank's model is loaded"))
        return;
    std::size_t const triangles = tank->mesh.indices.size() / 3;
    Math::Vector3f const extents = tank->bounds.GetOBB().extents;
    report.Expect(triangles >= 60, "the model has triangles");
    report.Expect(extents.x > 2 && extents.y > 1 && extents.z > 4, "its bound volume is that of a tank");
    report.Evidence("a mesh of " + std::to_string(triangles) + " triangles was imported");
}

// The same picture with all colours inverted, in the place of its file.
bool saveInverted(Skin const & skin) {
    std::vector<MathPrim::Colour> pixels = skin.texture->pixels;
    for (MathPrim::Colour & pixel : pixels)
        pixel = MathPrim::Colour::FromWord(pixel.ToWord() ^ 0x00FFFFFF);
    return TGAIO::Save("GENERIC:art/tank32.tga", skin.texture->width, skin.texture->height, 32,
                       static_cast<unsigned int>(pixels.size() * sizeof(MathPrim::Colour)), pixels.data());
}

void checkReload(Report & report, Game const & game) {
    inventory::Handle<Skin> const & skin = game.tankSkins[2]; // tank32
    if (!skin.Get())
        return;
    FilePath::PumpFileChanges(); // what the start wrote is no news
    std::shared_ptr<Texture const> const before = skin->texture;
    report.Expect(saveInverted(*skin.Get()), "the picture is painted over");
    FilePath::PumpFileChanges();
    report.Expect(skin->texture != before && skin->texture->pixels[0] != before->pixels[0],
                  "the saved picture stands behind the same handle");
    WriteWholeFile("GENERIC:art/tank32.tga", ReadWholeFile("DATA:art/tank32.tga"));
    FilePath::PumpFileChanges();
    report.Expect(skin->texture->pixels == before->pixels, "and so does the one that comes back");
    report.Evidence("a picture that was saved anew came in while it was in use");
}

} // namespace

void CheckArt(Report & report, Game & game) {
    report.Begin(Subsystem::Codecs);
    checkPictures(report, game);
    checkModel(report, game);
    checkReload(report, game);
}
