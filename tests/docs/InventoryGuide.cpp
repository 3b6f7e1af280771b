#include "Cross/Util/InitList.h"
#include "Cross/Util/lua/LuaBindingObj.h"
#include "Cross/engine/scriptconfig/LuaConfig.h"
#include "samples/inventory/Inventory.h"

#include <gtest/gtest.h>

#include <string>

namespace {

// [inventory-kind]
struct Texture : Inv::NamedResource {
    std::string pixels;
};

class TextureKind : public inventory::Kind<Texture> {
public:
    char const * GetBinName() const override { return "Texture"; }

    bool CanReload() const override { return true; }

    bool CanDeferLoading() const override { return true; }

    // Null when there is no such texture.
    Inv::NamedResource * Load(char const * name) const override {
        auto * const texture = new Texture;
        texture->pixels = std::string("pixels of ") + name;
        return texture;
    }

    // The new data takes the place of the old behind every handle; the old one is this operation's to dispose
    // of.
    Inv::NamedResource * Reload(Inv::NamedResource * data) const override {
        Inv::NamedResource * const fresh = Load(data->GetName());
        if (fresh)
            delete data;
        return fresh;
    }
};

// [inventory-kind]

TEST(InventoryGuide, AHandleIsThereAtOnceAndItsDataLater) {
    // [inventory-use]
    TextureKind textures;
    Inv::Setup(true);
    inventory::Handle<Texture> grass = textures.Get("DATA:Art/Grass.tga");

    // once per frame while a load screen shows: four assets at most
    while (inventory::Front::LoadResources(4) != 0) {}
    Texture * const texture = grass.Get(); // ask anew in each frame: a reload replaces it

    // [inventory-use]
    ASSERT_NE(texture, nullptr);
    EXPECT_EQ(texture->pixels, "pixels of art\\grass");
    EXPECT_STREQ(texture->GetName(), "art\\grass");

    // [inventory-end]
    grass = {};                // gives the reference back
    inventory::Front::Flush(); // frees what nobody holds
    Inv::Shutdown();
    // [inventory-end]
    EXPECT_EQ(Inv::Warehouse::Instance(), nullptr);
}

// [initlist-step]
class BuildTerrain : public InitList::Entry {
public:
    InitList::LoadResult Load() override { return ++tiles < 64 ? InitList::InProgress : InitList::Finished; }

    void Unload() override { tiles = 0; }

    float GetProgress() override { return static_cast<float>(tiles) / 64.0f; }

    void Abort() override { tiles = 0; }

private:
    int tiles = 0;
};

// [initlist-step]

TEST(InventoryGuide, ALoadingScreen) {
    float bar = 0.0f;
    // [initlist-use]
    InitList::Manager start("level");
    start.Register(new BuildTerrain, "terrain", 2.5f); // expected to take 2.5 seconds
    while (start.Load() == InitList::InProgress)
        bar = start.LoadProgress(); // draw the bar, pump messages
    bool const isUp = start.GetState() == InitList::Manager::Loaded;
    // [initlist-use]
    EXPECT_TRUE(isUp);
    EXPECT_GT(bar, 0.9f);
}

// [binding]
void setFog(char const * area, float density, bool visible) {
    if (density < 0.0f)
        throw LuaBinding::Exception("%s cannot have a density of %g", area, static_cast<double>(density));
    (void)visible;
}

// [binding]

TEST(InventoryGuide, AScriptFunction) {
    // [binding-use]
    LuaConfig script("console", true);
    LuaBinding::Obj const fog = LuaBinding::Bind(script, "set_fog", &setFog);
    script.RunString("set_fog('valley', 0.5, true)", true);     // true
    script.RunString("set_fog('valley', 'thick', true)", true); // false: the second argument is no number
    bool const ran =
        script.RunString("set_fog('valley', -1, true)", true); // false, with the text above in the trace
    // [binding-use]
    EXPECT_FALSE(ran);
    EXPECT_TRUE(script.RunString("set_fog('valley', 0.5, true)", true));
}

} // namespace
