#include "Cross/Util/Inv.h"

#include "Cross/Util/InvUtil.h"
#include "Cross/engine/filesystem/FilePath.h"
#include "Cross/engine/memory/MemPool.h"
#include "Cross/engine/platform/Options.h"
#include "samples/inventory/Inventory.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/WarningCapture.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace {

using inventory::Front;
using inventory::Handle;

constexpr std::uint32_t c_inventoryWarnings = 0x494E56;

std::size_t liveBlocks(char const * pool) {
    MemPoolStats stats{};
    MemPoolFindStats(pool, stats);
    return stats.liveBlocks;
}

// Data that counts itself and keeps what it was loaded as.
struct Asset : Inv::NamedResource {
    explicit Asset(std::string content) : content(std::move(content)) { ++s_alive; }

    ~Asset() override { --s_alive; }

    void OnSetName(char const * name) override { names.push_back(name ? name : "(null)"); }

    std::string content;
    std::vector<std::string> names;
    std::vector<Handle<Asset>> dependencies;
    static inline int s_alive = 0;
};

// A kind that notes what is asked of it: "prepare a", "load a", "default a", "post a", "reload a".
class TestKind : public inventory::Kind<Asset> {
public:
    explicit TestKind(std::vector<std::string> & log, char const * binName = "Test")
        : log(log), binName(binName) {}

    char const * GetBinName() const override { return binName; }

    bool CanReload() const override { return canReload; }

    bool CanDeferLoading() const override { return canDefer; }

    Inv::NamedResource * CreateDefault(char const * name) const override {
        log.push_back(std::string("default ") + name);
        return hasDefault ? new Asset("default") : nullptr;
    }

    void PrepareToLoad(char const * name) override { log.push_back(std::string("prepare ") + name); }

    Inv::NamedResource * Load(char const * name) const override {
        log.push_back(std::string("load ") + name);
        if (onLoad)
            onLoad(name);
        if (missing.count(name))
            return nullptr;
        loaded.push_back(new Asset(name));
        return loaded.back();
    }

    Inv::NamedResource * Reload(Inv::NamedResource * data) const override {
        log.push_back(std::string("reload ") + data->GetName());
        if (reloadsNothing)
            return nullptr;
        Asset * const fresh = new Asset("reloaded");
        retired.push_back(data);
        return fresh;
    }

    void PostLoad(Inv::NamedResource * data) override {
        log.push_back(std::string("post ") + data->GetName());
    }

    void DestroyData(Inv::NamedResource * data) const override {
        EXPECT_EQ(Front::GetResource(*data), nullptr) << "the link is cut before the data is destroyed";
        log.push_back("destroy " + static_cast<Asset *>(data)->content);
        delete data;
    }

    void DeleteRetired() const {
        for (Inv::NamedResource * data : retired)
            delete data;
        retired.clear();
    }

    std::vector<std::string> & log;
    char const * binName;
    bool canReload = true;
    bool canDefer = false;
    bool hasDefault = false;
    bool reloadsNothing = false;
    std::set<std::string> missing;
    std::function<void(std::string const &)> onLoad;
    mutable std::vector<Inv::NamedResource *> loaded;
    mutable std::vector<Inv::NamedResource *> retired;
};

using Log = std::vector<std::string>;

// A warehouse with batching and two kinds; checks at the end that nothing is left of resources, names and
// data.
struct InvTest : testing::Test {
    void SetUp() override { Inv::Setup(true); }

    void TearDown() override {
        Inv::Shutdown();
        EXPECT_EQ(Inv::Warehouse::Instance(), nullptr);
        kind.DeleteRetired();
        EXPECT_EQ(Asset::s_alive, 0);
        EXPECT_EQ(liveBlocks("InvResources"), 0u);
        EXPECT_EQ(liveBlocks("InvNames"), 0u);
        EXPECT_EQ(liveBlocks("InvNodes"), 0u);
    }

    Log TakeLog() { return std::exchange(log, {}); }

    Log log;
    TestKind kind{log};
    TestKind other{log, "Another"};
};

Inv::Resource * makeNamed(char const * name) {
    auto * const resource = new Inv::Resource;
    resource->SetName(name);
    return resource;
}

} // namespace

TEST(InvUtilTest, NamesBecomeCanonical) {
    struct Case {
        char const * name;
        bool strip;
        char const * canonical;
    };

    Case const cases[] = {
        {"DATA:Art/Units/Tank.dat", true, "art\\units\\tank"},
        // only what stands behind the last ':' counts
        {"a:b:c.d", true, "c"},
        {"a:b:c.d", false, "c.d"},
        {"DATA:", true, ""},
        // the last '.' of the whole text ends it, also one in a directory
        {"dir.old/file", true, "dir"},
        {".", true, ""},
        {"//", true, "\\\\"},
        // only the letters A to Z have a case
        {"\xC3\x84RGER", true, "\xC3\x84rger"},
        {"", true, ""},
    };
    for (Case const & row : cases) {
        char out[260];
        InvUtil::TranslateResourceName(out, row.name, row.strip);
        EXPECT_STREQ(out, row.canonical) << row.name;
    }
}

TEST(InvPairTest, DataHasAHandleFromTheFirstMoment) {
    {
        Asset * const asset = new Asset("alone");
        Inv::Resource * const resource = Front::GetResource(*asset);
        EXPECT_EQ(Front::GetReferences(resource), 1);
        EXPECT_EQ(resource->GetData(), asset);
        EXPECT_EQ(Inv::Resource::Retain(resource), resource);
        EXPECT_EQ(Front::GetReferences(resource), 2);
        Inv::Resource::Release(resource); // only its own data holds it: both go
    }
    EXPECT_EQ(Asset::s_alive, 0);
    EXPECT_EQ(liveBlocks("InvResources"), 0u);
    EXPECT_EQ(Inv::Resource::Retain(nullptr), nullptr);
    Inv::Resource::Release(nullptr);
}

TEST(InvPairTest, DataMovesFromItsBlankHandleAndBack) {
    Inv::Resource * const resource = makeNamed("x");
    Asset * const first = new Asset("first");
    Asset * const second = new Asset("second");
    resource->SetData(first);
    EXPECT_EQ(liveBlocks("InvResources"), 2u) << "the blank handle of the first is gone";
    EXPECT_EQ(Front::GetReferences(resource), 2);
    resource->SetData(first);
    EXPECT_EQ(Front::GetReferences(resource), 2);

    resource->SetData(second);
    EXPECT_EQ(Front::GetResource(*first), nullptr);
    EXPECT_EQ(first->GetName(), nullptr);
    EXPECT_EQ(Front::GetReferences(resource), 2);
    delete first;

    // a handle held by nothing but its data changes its data without ending half-way
    Inv::Resource * const blank = Front::GetResource(*new Asset("third"));
    Inv::NamedResource * const third = blank->GetData();
    blank->SetData(new Asset("fourth"));
    delete third;
    EXPECT_EQ(Front::GetReferences(blank), 1);
    delete blank->GetData();

    delete second; // leaves the handle without data
    EXPECT_EQ(resource->GetData(), nullptr);
    EXPECT_EQ(Front::GetReferences(resource), 1);
    Inv::Resource::Release(resource);
    EXPECT_EQ(Asset::s_alive, 0);
    EXPECT_EQ(liveBlocks("InvResources"), 0u);
}

TEST(InvPairTest, NamesReachTheData) {
    Asset asset("named");
    asset.SetName("one");
    asset.SetName("one");
    asset.SetName("ONE"); // another case is another name
    Front::GetResource(asset)->SetName(nullptr);
    EXPECT_EQ(asset.names, (Log{"one", "ONE", "(null)"}));
    EXPECT_EQ(asset.GetName(), nullptr);
}

TEST_F(InvTest, AnAssetLoadsOnceUnderWhateverSpelling) {
    Handle<Asset> const first = kind.Get("DATA:Art/Tank.dat");
    EXPECT_EQ(first->content, "DATA:Art/Tank.dat") << "a load at once gets the caller's spelling";
    EXPECT_STREQ(Front::GetName(first.GetResource()), "art\\tank");
    EXPECT_EQ(kind.Get("art\\TANK").GetResource(), first.GetResource());
    EXPECT_EQ(kind.Find("x:art/tank.png").GetResource(), first.GetResource());
    EXPECT_FALSE(kind.Find("art/tan"));
    EXPECT_FALSE(other.Find("art/tank")) << "a kind is its pointer";
    EXPECT_EQ(TakeLog(), (Log{"load DATA:Art/Tank.dat", "post art\\tank"}));
    EXPECT_EQ(Front::GetReferences(first.GetResource()), 3);
}

TEST_F(InvTest, RequiredMeansNowAndTheRealAsset) {
    kind.missing = {"gone"};
    // without a default: false, and never tried again
    EXPECT_FALSE(kind.Require("gone"));
    EXPECT_TRUE(kind.Get("gone"));
    EXPECT_EQ(kind.Get("gone").Get(), nullptr);
    EXPECT_EQ(TakeLog(), (Log{"load gone", "default gone"}));

    // with a default: only those who do not require the asset get it
    kind.missing = {"Absent"};
    kind.hasDefault = true;
    EXPECT_FALSE(kind.Require("Absent"));
    EXPECT_EQ(TakeLog(), (Log{"load Absent", "default absent", "post absent"}));
    EXPECT_EQ(kind.Get("absent")->content, "default");
    EXPECT_FALSE(kind.Require("absent"));
    EXPECT_EQ(TakeLog(), Log{});

    // a null name is the empty one
    kind.missing = {};
    EXPECT_EQ(kind.Get(nullptr)->content, "");
    EXPECT_TRUE(kind.Find(""));
}

TEST_F(InvTest, DeferredLoadsComeOnDemandOrWhenRequired) {
    kind.canDefer = true;
    Handle<Asset> const a = kind.Get("a");
    Handle<Asset> const b = kind.Get("b");
    EXPECT_EQ(TakeLog(), Log{});
    EXPECT_TRUE(Front::IsDeferred(a.GetResource()));
    EXPECT_EQ(a->content, "a");
    EXPECT_TRUE(kind.Require("B.dat"));
    EXPECT_EQ(TakeLog(), (Log{"load a", "post a", "load b", "post b"}))
        << "the stored name, as it is stored already";
    EXPECT_EQ(Front::LoadResources(10), 0u);
}

TEST_F(InvTest, BatchingCanBeTurnedOff) {
    kind.canDefer = true;
    Inv::Setup(false); // a second set-up does nothing
    kind.Get("deferred");
    EXPECT_EQ(TakeLog(), Log{});
    Inv::Shutdown();
    Inv::Setup(false);
    kind.Get("at once");
    EXPECT_EQ(TakeLog(), (Log{"load at once", "post at once"}));
    Inv::Shutdown();

    char const * const arguments[] = {"game", "-invbatchingoff"};
    Plat::Options::SetCommandLine(2, arguments);
    Inv::Setup(true);
    kind.Get("by option");
    EXPECT_EQ(TakeLog(), (Log{"destroy at once", "load by option", "post by option"}));
    Plat::Options::SetCommandLine(1, arguments);
}

TEST_F(InvTest, TwinsWarnAndTheFirstIsFound) {
    WarningCapture warnings(c_inventoryWarnings);
    Inv::Resource * const first = makeNamed("Same");
    Inv::Resource * const second = makeNamed("SAME.dat");
    Front::AddResource(first, &kind);
    Front::AddResource(second, &kind);
    EXPECT_EQ(warnings.texts,
              Log{"Duplicate Test resource 'same' added to inventory - please check the resource!"});
    EXPECT_EQ(kind.Find("same").GetResource(), first);
    EXPECT_EQ(Front::GetResourcesCount(&kind), 2u);
    EXPECT_EQ(Front::GetResourceAt(0, &kind), first) << "equal keys stay in the order in which they came";
    EXPECT_EQ(Front::GetResourceAt(1, &kind), second);
    EXPECT_EQ(Front::GetResourceAt(0, &other), nullptr);
    first->SetName("changed"); // stored: nothing changes
    EXPECT_STREQ(Front::GetName(first), "same");
    Inv::Resource::Release(first);
    Inv::Resource::Release(second);

    // two names with one hash: both are stored and found
    warnings.texts.clear();
    Handle<Asset> const one = kind.Get("abhjbwag");
    Handle<Asset> const two = kind.Get("wyumcchu");
    EXPECT_EQ(warnings.texts, Log{"'Test' Key collision with 'wyumcchu' added to inventory."});
    EXPECT_EQ(kind.Find("abhjbwag").GetResource(), one.GetResource());
    EXPECT_EQ(kind.Find("wyumcchu").GetResource(), two.GetResource());
}

TEST_F(InvTest, HiddenResourcesAreFoundByNoName) {
    WarningCapture warnings(c_inventoryWarnings);
    Inv::Resource * const hidden = makeNamed("Secret");
    Inv::Resource * const unnamed = new Inv::Resource;
    Front::AddHiddenResource(hidden, &kind);
    Front::AddHiddenResource(unnamed, &kind);
    EXPECT_STREQ(Front::GetName(hidden), "Secret") << "a chosen name stays as it is";
    EXPECT_EQ(std::string(Front::GetName(unnamed)).size(), 38u);
    EXPECT_FALSE(kind.Find("secret"));
    EXPECT_TRUE(warnings.texts.empty());
    kind.Get("secret"); // collides with the hidden one, and duplicates none
    EXPECT_EQ(warnings.texts, Log{"'Test' Key collision with 'secret' added to inventory."});
    Inv::Resource::Release(hidden);
    Inv::Resource::Release(unnamed);
}

TEST_F(InvTest, LongNamesAreCutBehindTheAlias) {
    std::string const thousand(1000, 'n');
    Handle<Asset> const handle = kind.Get(("DATA:" + thousand).c_str());
    EXPECT_EQ(std::string(Front::GetName(handle.GetResource())), thousand.substr(0, 255));
    EXPECT_EQ(kind.Find(thousand.substr(0, 256).c_str()).GetResource(), handle.GetResource());
    EXPECT_FALSE(kind.Find(thousand.substr(0, 254).c_str()));
    EXPECT_EQ(handle->content, "DATA:" + thousand) << "the load gets the caller's spelling";
    for (char const * odd : {"////", "....", "a:b:c:d", ":"})
        EXPECT_TRUE(kind.Get(odd)) << odd;
}

TEST_F(InvTest, ThePumpCountsItsStages) {
    kind.canDefer = true;
    kind.Get("a");
    kind.Get("b");
    unsigned int const oneByOne[] = {2, 1, 2, 1, 0};
    for (unsigned int left : oneByOne)
        EXPECT_EQ(Front::LoadResources(1), left);
    EXPECT_EQ(TakeLog(), (Log{"prepare a", "prepare b", "load a", "load b", "post a", "post b"}));

    kind.Get("c");
    kind.Get("d");
    EXPECT_EQ(Front::LoadResources(0), 2u) << "an idle pump collects whatever the budget";
    EXPECT_EQ(Front::LoadResources(0), 2u) << "and then makes no progress";
    unsigned int const atOnce[] = {2, 0, 0};
    for (unsigned int left : atOnce)
        EXPECT_EQ(Front::LoadResources(100000), left);
    Front::LoadAllResources();
}

TEST_F(InvTest, ABatchIsSortedByKindAndName) {
    TestKind later{log, "test"}; // the same name as a kind whose bin comes first
    for (TestKind * each : {&kind, &other, &later})
        each->canDefer = true;
    kind.Get("b");
    later.Get("a");
    other.Get("z");
    kind.Get("A");
    Front::LoadResources(1);
    EXPECT_EQ(TakeLog(), (Log{"prepare z", "prepare a", "prepare b", "prepare a"}));
    Front::LoadAllResources();
    Inv::Shutdown(); // before the local kind goes
}

TEST_F(InvTest, EveryPostLoadComesAfterAllLoads) {
    kind.canDefer = other.canDefer = true;
    kind.onLoad = [&](std::string const & name) {
        if (name == "parent")
            other.Get("child");
    };
    kind.Get("parent");
    kind.Get("early")->content = "on demand";
    TakeLog();
    Front::LoadAllResources();
    EXPECT_EQ(TakeLog(), (Log{"prepare parent", "load parent", "prepare child", "load child", "post parent",
                              "post child"}));
}

TEST_F(InvTest, AnAbortedBatchStartsAfresh) {
    kind.canDefer = true;
    for (char const * name : {"a", "b", "c"})
        kind.Get(name);
    Front::LoadResources(1);
    Front::LoadResources(1); // loads "a"
    EXPECT_EQ(Front::LoadResources(1, true), 0u);
    TakeLog();
    EXPECT_EQ(Front::LoadResources(10), 2u);
    Front::LoadAllResources();
    EXPECT_EQ(TakeLog(), (Log{"prepare b", "prepare c", "load b", "load c", "post b", "post c"}))
        << "a's stays owed";
    EXPECT_EQ(Front::LoadResources(1, true), 0u) << "with no batch open";
}

TEST_F(InvTest, ALoadThatThrowsLosesNothing) {
    kind.canDefer = true;
    kind.onLoad = [](std::string const & name) {
        if (name == "bad")
            throw std::runtime_error("bad");
    };
    for (char const * name : {"bad", "good"})
        kind.Get(name);
    Front::LoadResources(10);
    EXPECT_THROW(Front::LoadResources(10), std::runtime_error);
    Front::LoadAllResources();
    EXPECT_EQ(TakeLog(), (Log{"prepare bad", "prepare good", "load bad", "load good", "post good"}));
}

TEST_F(InvTest, ALoadMayFlush) {
    kind.onLoad = [](std::string const &) { Front::Flush(); };
    Handle<Asset> const handle = kind.Get("a");
    EXPECT_EQ(handle->content, "a");
    kind.canDefer = true;
    Handle<Asset> const deferred = kind.Get("b");
    EXPECT_EQ(deferred->content, "b");
}

TEST_F(InvTest, PreloadTouchesNoFlag) {
    kind.canDefer = true;
    Front::Preload("unknown", &kind);
    Handle<Asset> const a = kind.Get("a");
    Front::Preload(&kind);
    EXPECT_EQ(TakeLog(), Log{"load a"});
    EXPECT_TRUE(Front::IsDeferred(a.GetResource()));
    // the load is still owed and done on demand; what the preload brought is cut loose
    EXPECT_EQ(Asset::s_alive, 1);
    Asset * const loaded = a.Get();
    EXPECT_EQ(TakeLog(), (Log{"load a", "post a"}));
    EXPECT_EQ(Asset::s_alive, 2);
    Front::Preload("A", &kind);
    EXPECT_EQ(a->content, "A") << "the caller's spelling";
    EXPECT_EQ(loaded->GetName(), nullptr);
    delete loaded;
    delete kind.loaded.front();
}

TEST_F(InvTest, FlushFreesWhatNobodyHolds) {
    Handle<Asset> held = kind.Get("held");
    kind.Get("free");
    Front::Flush(&kind);
    EXPECT_EQ(Front::GetResourcesCount(&kind), 1u);
    Front::Flush(held.GetResource(), &kind);
    Front::Flush(held.GetResource(), &other);
    EXPECT_EQ(Front::GetResourcesCount(&kind), 1u);
    Inv::Resource * const resource = held.GetResource();
    held = {};
    Front::Flush(resource, &other); // not the bin it is in
    EXPECT_EQ(Front::GetResourcesCount(&kind), 1u);
    Front::Flush(resource, &kind);
    EXPECT_EQ(Front::GetResourcesCount(&kind), 0u);
    kind.Get("free");
    EXPECT_EQ(std::count(log.begin(), log.end(), "load free"), 2) << "a flushed name loads again";
}

TEST_F(InvTest, FlushFollowsDependenciesAcrossKinds) {
    // a chain through both kinds, each held by the one before only
    char const * const names[] = {"a", "b", "c", "d", "e"};
    Handle<Asset> previous;
    for (char const * name : names) {
        Handle<Asset> const next =
            (previous && previous->dependencies.empty() && *name % 2 ? kind : other).Get(name);
        if (previous)
            previous->dependencies.push_back(next);
        previous = next;
    }
    previous = {};
    Front::Flush();
    EXPECT_EQ(Front::GetResourcesCount(&kind) + Front::GetResourcesCount(&other), 0u);
    EXPECT_EQ(Asset::s_alive, 0);
}

TEST_F(InvTest, RemovedResourcesLiveOnWithTheirHolders) {
    Handle<Asset> const held = kind.Get("held");
    kind.Get("free");
    Front::Remove(held.GetResource(), &other); // not there
    Front::Remove(&kind);
    EXPECT_EQ(Front::GetResourcesCount(&kind), 0u);
    EXPECT_EQ(held->content, "held");
    EXPECT_EQ(Asset::s_alive, 1);
    EXPECT_NE(kind.Get("held").GetResource(), held.GetResource());
    Front::Remove(held.GetResource(), &kind); // no longer stored
    held.GetResource()->SetName("free again");
    EXPECT_STREQ(Front::GetName(held.GetResource()), "free again");
}

TEST_F(InvTest, ShutdownLeavesHandlesWithoutData) {
    Handle<Asset> const held = kind.Get("held");
    Inv::Shutdown();
    EXPECT_EQ(held.Get(), nullptr);
    EXPECT_STREQ(Front::GetName(held.GetResource()), "held");
    EXPECT_EQ(Asset::s_alive, 0);
    Inv::Shutdown();
    const_cast<Handle<Asset> &>(held) = {};
}

TEST_F(InvTest, ReloadPutsNewDataBehindTheSameHandle) {
    Handle<Asset> const held = kind.Get("held");
    kind.Get("free");
    TakeLog();
    Front::Reload(&kind);
    EXPECT_EQ(held->content, "reloaded");
    EXPECT_EQ(Front::GetResourcesCount(&kind), 1u) << "what nobody holds goes right after its reload";
    kind.reloadsNothing = true;
    Front::Reload(held.GetResource(), &kind);
    EXPECT_EQ(held->content, "reloaded");
    kind.canReload = false;
    TakeLog();
    Front::Reload(held.GetResource(), &kind);
    Front::Reload(&kind);
    Front::Reload(nullptr, &kind);
    Front::Reload(held.GetResource(), nullptr);
    EXPECT_EQ(TakeLog(), Log{});
}

TEST_F(InvTest, DumpsTellCountsAndStates) {
    TemporaryFolder folder;
    FilePath::SetAlias("log", folder.Path().c_str());
    kind.canDefer = true;
    kind.hasDefault = true;
    kind.missing = {"gone"};
    Handle<Asset> const gone = kind.Require("gone") ? Handle<Asset>() : kind.Get("gone");
    kind.Get("later");
    Inv::Resource * const hidden = makeNamed("h");
    Front::AddHiddenResource(hidden, &kind);
    Inv::Resource::Release(hidden);
    Inv::DumpInfo const info = Front::Dump();
    ASSERT_EQ(info.bins.size(), 1u);
    EXPECT_STREQ(info.bins[0].name, "Test");

    Front::DumpToLogfile("inventory"); // without the option nothing is written
    EXPECT_EQ(folder.CountEntries(), 0u);
    char const * const arguments[] = {"game", "-invtrackloading"};
    Plat::Options::SetCommandLine(2, arguments);
    Front::DumpToLogfile("inventory");
    Plat::Options::SetCommandLine(1, arguments);
    ASSERT_EQ(folder.CountEntries(), 1u);
    std::string const file = std::filesystem::directory_iterator(folder.Path())->path().filename();
    std::string const text = folder.ReadFile(file);
    EXPECT_EQ(text.substr(0, 21), "Test -- 3 items left\n");
    for (char const * line : {"       3 references (LD ) to gone\n", "       1 references (   ) to later\n",
                              "       1 references (L H) to h\n", "\n\n 3 resources in the inventory\n"})
        EXPECT_NE(text.find(line), std::string::npos) << line << text;
    FilePath::RemoveAlias("log");
}

TEST_F(InvTest, AChangedFileReloadsOneResourcePerKind) {
    Inv::Shutdown();
    TemporaryFolder folder;
    folder.WriteFile("art/tank.dat", "old");
    FilePath::SetAlias("DATA", folder.Path().c_str());
    Inv::Setup(true);
    Handle<Asset> const one = kind.Get("DATA:art/tank.dat");
    Handle<Asset> const two = other.Get("art/tank");
    TakeLog();
    folder.WriteFile("art/tank.dat", "new");
    folder.WriteFile("art/unknown.dat", "new");
    EXPECT_EQ(FilePath::PumpFileChanges(), 2u);
    EXPECT_EQ(TakeLog(), (Log{"reload art\\tank", "reload art\\tank"}));
    EXPECT_EQ(one->content, "reloaded");
    other.DeleteRetired();
    FilePath::RemoveAlias("DATA");
}
