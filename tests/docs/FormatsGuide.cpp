// The files below files/formats, which the page of formats shows, are what the library writes and reads.

#include "Cross/Util/BoundVolumeIO.h"
#include "Cross/Util/CRCRecord.h"
#include "Cross/Util/ConfigFile.h"
#include "Cross/Util/DictionaryLoad.h"
#include "Cross/Util/FilePathLogger.h"
#include "Cross/Util/KeyValueContainer.h"
#include "Cross/Util/KeyValueContainerIO.h"
#include "Cross/Util/RenderStats.h"
#include "Cross/Util/StatgraphFile.h"
#include "Cross/Util/SystemConfig.h"
#include "Cross/Util/TGAIO.h"
#include "Cross/engine/core/Utf.h"
#include "Cross/engine/platform/Options.h"
#include "Cross/engine/scriptconfig/LuaConfig.h"
#include "samples/inventory/Inventory.h"
#include "tests/support/AliasedFolder.h"
#include "tests/support/HandClock.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>

namespace {

std::string documented(std::string const & name) {
    std::ifstream file(DOCS_FILES "/formats/" + name, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

class FormatsGuide : public testing::Test {
protected:
    FormatsGuide() { FilePath::SetAlias("DOCS", DOCS_FILES "/formats"); }

    ~FormatsGuide() override { FilePath::RemoveAlias("DOCS"); }

    void ExpectDocumented(char const * name) const { EXPECT_EQ(folder.ReadFile(name), documented(name)); }

    // The log whose name begins so, with a time stamp behind it.
    void ExpectDocumentedLog(std::string const & begin, char const * name) const {
        for (auto const & entry : std::filesystem::directory_iterator(folder.Path())) {
            std::string const found = entry.path().filename().string();
            if (found.starts_with(begin + ".")) {
                EXPECT_EQ(folder.ReadFile(found), documented(name));
                return;
            }
        }
        ADD_FAILURE() << "no log " << begin;
    }

    AliasedFolder folder{"log"};
    HandClock clock;
};

struct Unit : Inv::NamedResource {};

class UnitKind : public inventory::Kind<Unit> {
public:
    char const * GetBinName() const override { return "Unit"; }

    bool CanReload() const override { return false; }

    bool CanDeferLoading() const override { return true; }

    Inv::NamedResource * Load(char const *) const override { return new Unit; }

    Inv::NamedResource * Reload(Inv::NamedResource *) const override { return nullptr; }
};

} // namespace

TEST_F(FormatsGuide, Dictionary) {
    Dictionary names(true);
    names.GetKey("title");
    names.GetKey("speed");
    {
        ByteStreamProxy stream = FilePath::OpenStream("log:names.dict", c_streamWrite);
        DictionaryLoad::Save(stream, names);
    }
    ExpectDocumented("names.dict");
}

TEST_F(FormatsGuide, RunLengthPicture) {
    Array2D<MathPrim::Colour, Array2DNewAllocator<MathPrim::Colour>> image;
    ASSERT_TRUE(TGAIO::Load("DOCS:flag.tga", image));
    ASSERT_EQ(image.width * image.height, 3u);
    EXPECT_EQ(image.data[0], MathPrim::Colour::FromWord(0xFFFF0000));
    EXPECT_EQ(image.data[1], MathPrim::Colour::FromWord(0x800000FF));
    EXPECT_EQ(image.data[2], MathPrim::Colour::FromWord(0x800000FF));
}

TEST_F(FormatsGuide, SectionedFile) {
    ConfigFile const file(DOCS_FILES "/formats/display.ini");
    file.Save(utf::ToUtf16(folder / "saved.ini").c_str());
    ExpectDocumented("saved.ini");
}

TEST_F(FormatsGuide, KeyValueFile) {
    KeyValueContainer camera;
    camera.Set("distance", 38.5f);
    camera.Set("orbit", -17.25f);
    camera.SetString("title", "Wide \"view\"");
    {
        ByteStreamProxy const stream = FilePath::OpenStream("log:camera.lua", c_streamWrite);
        KeyValueContainerIO::Save(camera, *stream, "camera");
    }
    ExpectDocumented("camera.lua");
}

TEST_F(FormatsGuide, UserSettings) {
    std::filesystem::path const before = std::filesystem::current_path();
    std::filesystem::current_path(DOCS_FILES "/formats");
    SystemConfig::Initialize();
    std::filesystem::current_path(before);
    SystemConfig::Instance()->SetSetting(Dictionary::Instance().GetKey("textureDetail"), 3);
    EXPECT_TRUE(SystemConfig::Instance()->Save("log:user.lua"));
    SystemConfig::Shutdown();
    ExpectDocumented("user.lua");
}

TEST_F(FormatsGuide, DumpsOfTheInventory) {
    UnitKind units;
    Inv::Setup(true);
    {
        inventory::Handle<Unit> const tank = units.Get("Units/Light_Tank.attr");
        while (inventory::Front::LoadResources(4) != 0) {}
        inventory::Handle<Unit> const later = units.Get("medic");
        LuaConfig script("console", true);
        EXPECT_TRUE(script.RunString("inv_dump()", true));
        char const * const arguments[] = {"game", "-invtrackloading"};
        Plat::Options::SetCommandLine(2, arguments);
        inventory::Front::DumpToLogfile("left");
        Plat::Options::SetCommandLine(0, nullptr);
    }
    Inv::Shutdown();
    ExpectDocumentedLog("invdump", "invdump.csv");
    ExpectDocumentedLog("left", "left.txt");
}

TEST_F(FormatsGuide, StatGraph) {
    std::unique_ptr<StatGraph::Sink> file(StatgraphFile::Create());
    StatGraph::Register(file.get());
    StatGraph::ChannelCreate("units");
    StatGraph::ChannelEnable("units", true);
    for (char const * const late : {"", "", "physics"}) {
        if (*late) {
            StatGraph::ChannelCreate(late);
            StatGraph::ChannelEnable(late, true);
            StatGraph::ChannelSubmit(late, 1.25f);
        }
        clock.milliseconds += 500;
        StatGraph::ChannelSubmit("units", 40);
        StatGraph::Update();
    }
    StatGraph::Unregister(file.get());
    file.reset();
    StatGraph::ChannelDestroy("units");
    StatGraph::ChannelDestroy("physics");
    ExpectDocumentedLog("statgraph", "statgraph.txt");
}

TEST_F(FormatsGuide, RenderStatistics) {
    RenderStats & stats = *RenderStats::Instance();
    stats.Enable(true);
    if (RenderStats::StatEntry * const tank = stats.AddModelStat("models/tank.mesh")) {
        tank->renderCalls = 2;
        tank->shaderChanges = 1;
        tank->tris = 412;
    }
    stats.AddModelStat("models/tank.mesh");
    stats.DumpStatsToLogFile();
    stats.UpdateAndDraw(1.0f / 60.0f);
    stats.Enable(false);
    ExpectDocumentedLog("renderstats", "renderstats.csv");
}

TEST_F(FormatsGuide, OpenedFiles) {
    FilePathLogger logger;
    logger.LogFiles("DATA", "read", "opened.txt", true);
    logger.AddComment("the level begins");
    logger.OnFileOpen(u"art\\tank.tga", "DATA", "read");
    ExpectDocumented("opened.txt");
}

TEST_F(FormatsGuide, SyncBlock) {
    CRCBlock block;
    Dictionary & names = keyedCRCEntry::s_dictionary;
    {
        CRCGroup const sim(block, names.GetKey("Sim"), true);
        Record(block, names.GetKey("frame"), 137, true);
        Record(block, names.GetKey("alive"), true, true);
        Record(block, names.GetKey("pos"), Math::Vector2f{1.25f, 0.0f}, true);
    }
    block.Print("sync");
    ExpectDocumentedLog("sync", "sync.txt");
}
