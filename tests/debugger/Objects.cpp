// The objects that the debugger prints: each type as it is in use, zeroed, and made of rubbish.

#include "Cross/Util/BinaryConfig.h"
#include "Cross/Util/BinaryConfigCreator.h"
#include "Cross/Util/BinaryConfigIO.h"
#include "Cross/Util/ConfigFile.h"
#include "Cross/Util/Dca.h"
#include "Cross/Util/KeyValueContainer.h"
#include "Cross/Util/RunTimeStructMember.h"
#include "Cross/engine/filesystem/RamStream.h"
#include "samples/inventory/Inventory.h"

#include <cstring>

struct Texture : Inv::NamedResource {};

class TextureKind : public inventory::Kind<Texture> {
public:
    char const * GetBinName() const override { return "Texture"; }

    bool CanReload() const override { return false; }

    bool CanDeferLoading() const override { return true; }

    Inv::NamedResource * Load(char const *) const override { return new Texture; }

    Inv::NamedResource * Reload(Inv::NamedResource *) const override { return nullptr; }
};

// Memory that no constructor has seen.
union Raw {
    char bytes[1024];
    Dictionary::Key key;
    dca::Key dcaKey;
    Dictionary dictionary;
    BinaryConfig table;
    Inv::Resource resource;
    inventory::Handle<Texture> handle;
    RunTimeStruct::Layout layout;
    RunTimeStruct::Buffer buffer;
    ConfigFile file;
    KeyValueContainer bag;

    explicit Raw(int byte) { std::memset(bytes, byte, sizeof(bytes)); }

    ~Raw() {}
};

struct Objects {
    Dictionary::Key known = Dictionary::Instance().GetKey("Light_Tank");
    Dictionary::Key unknown{0x12345678};
    dca::Key path = dca::GetKey("Art/Grass");
    Dictionary small;

    BinaryConfig table;
    BinaryConfig noTable;

    TextureKind textures;
    inventory::Handle<Texture> deferred;
    inventory::Handle<Texture> loaded;
    inventory::Handle<Texture> empty;
    Inv::Resource & blank = *new Inv::Resource;

    RunTimeStruct::TypeInfo const ownType{"Own", 2};
    RunTimeStruct::Layout layout;
    RunTimeStruct::Buffer unit;
    RunTimeStruct::Buffer noUnit;

    ConfigFile file;
    KeyValueContainer bag;

    Raw zeros{0};
    Raw rubbish{0xAB};
};

namespace {

void fillTable(BinaryConfig & table) {
    BinaryConfigCreator creator;
    creator.SetString("name", "light \"tank\"");
    creator.SetWString("title", u"L\u00E4ufer");
    creator.SetNumber("speed", 16.0f);
    creator.SetNumber("crew", -4);
    creator.SetBool("amphibious", true);
    creator.SetNumber("nameless", 0.1f);
    creator.TablePush("ammunition", true);
    creator.SetNumber("speed", 60);
    creator.TablePop();
    BinaryConfigIO::CreateBinaryConfig(creator, table, 1);
    for (char const * name : {"name", "title", "speed", "crew", "amphibious", "ammunition"})
        Dictionary::Instance().GetKey(name);
}

void fillRecord(Objects & objects) {
    using namespace RunTimeStruct;
    objects.layout.AddMember(dca::GetKey("alive"), GetTypeInfo_bool(), 1);
    objects.layout.AddMember(dca::GetKey("pos"), GetTypeInfo_Math_Vector2f(), 1);
    objects.layout.AddMember(dca::GetKey("ammo"), GetTypeInfo_int(), 3);
    objects.layout.AddMember(dca::GetKey("tint"), GetTypeInfo_MathPrim_Colour(), 1);
    objects.layout.AddMember(dca::GetKey("own"), &objects.ownType, 1);
    objects.unit.Setup(objects.layout);
    std::memset(objects.unit.GetData(), 1, objects.unit.GetSize());
    Member<Math::Vector2f>(dca::GetKey("pos")).Set(objects.unit, {4.5f, -5.0f});
    for (unsigned int i = 0; i < 3; ++i)
        Member<int>(dca::GetKey("ammo"), 3).Set(objects.unit, static_cast<int>(i) - 1, i);
}

void fillSettings(Objects & objects) {
    char const text[] = "[Video]\r\nWidth=1280\r\nHeight=720\r\nAA=4\r\n[Audio]\r\nVolume=7\r\n[Empty]\r\n";
    RamStream stream;
    stream.Open(0, c_streamWrite);
    stream.Write(text, sizeof(text) - 1);
    stream.SetPos(0);
    objects.file.Load(&stream);
    objects.bag.Set("distance", 38.5f);
    objects.bag.SetString("follows", "light_tank");
}

} // namespace

// Where the debugger stops.
[[gnu::noinline]] void look(Objects & objects) { asm volatile("" : : "r"(&objects) : "memory"); }

int main() {
    Inv::Setup(true);
    Objects objects;
    objects.small.GetKey("One");
    objects.small.GetKey("two");
    fillTable(objects.table);
    objects.loaded = objects.textures.Require("Art/Grass");
    objects.deferred = objects.textures.Get("Art/Sand");
    fillRecord(objects);
    fillSettings(objects);
    look(objects);
}
