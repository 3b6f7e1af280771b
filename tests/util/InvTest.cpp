#include "Cross/Util/Inv.h"

#include "Cross/Util/InvUtil.h"
#include "Cross/engine/filesystem/LoadScheduler.h"
#include "Cross/engine/memory/MemPool.h"
#include "Cross/engine/platform/Options.h"
#include "samples/inventory/Inventory.h"
#include "tests/support/AliasedFolder.h"
#include "tests/support/OnFourThreads.h"
#include "tests/support/WarningCapture.h"

#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <memory>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

using inventory::Front;
using inventory::Handle;
using Log = std::vector<std::string>;

constexpr std::uint32_t c_inventoryWarnings = 0x494E56;

std::size_t liveBlocks(char const * pool) {
    MemPoolStats stats{};
    MemPoolFindStats(pool, stats);
    return stats.liveBlocks;
}

// Data that counts itself and keeps what it was loaded as and how it was called.
struct Asset : Inv::NamedResource {
    explicit Asset(std::string content) : content(std::move(content)) { ++s_alive; }

    ~Asset() override { --s_alive; }

    void OnSetName(char const * name) override { names.push_back(name ? name : "(null)"); }

    std::string content;
    Log names;
    Handle<Asset> dependency;
    static inline int s_alive = 0;
};

// A kind that notes what is asked of it: "prepare a", "load a", "default a", "post a", "reload a".
class TestKind : public inventory::Kind<Asset> {
public:
    explicit TestKind(Log & log, char const * binName = "Test") : log(log), binName(binName) {}

    char const * GetBinName() const override { return binName; }

    bool TranslateName(char * out, char const * name) const override {
        return keepsNames ? std::strcpy(out, name) && translates : Kind::TranslateName(out, name);
    }

    bool CanReload() const override { return canReload; }

    bool CanDeferLoading() const override { return canDefer; }

    Inv::NamedResource * CreateDefault(char const * name) const override {
        log.push_back(std::string("default ") + name);
        return hasDefault ? new Asset("default") : nullptr;
    }

    void PrepareToLoad(char const * name) override { log.push_back(std::string("prepare ") + name); }

    Inv::NamedResource * Load(char const * name) const override {
        log.push_back(std::string("load ") + name);
        meanwhile();
        return lastLoaded = missing.count(name) ? nullptr : new Asset(name);
    }

    Inv::NamedResource * Reload(Inv::NamedResource * data) const override {
        log.push_back(std::string("reload ") + data->GetName());
        meanwhile();
        return onReload(data);
    }

    void PostLoad(Inv::NamedResource * data) override {
        log.push_back(std::string("post ") + data->GetName());
    }

    void DestroyData(Inv::NamedResource * data) const override {
        EXPECT_EQ(Front::GetResource(*data), nullptr) << "the link is cut before the data is destroyed";
        log.push_back("destroy " + static_cast<Asset *>(data)->content);
        delete data;
        meanwhile();
    }

    Log & log;
    char const * binName;
    bool keepsNames = false, translates = true;
    bool canReload = true, canDefer = false, hasDefault = false;
    std::set<std::string> missing;
    mutable Asset * lastLoaded = nullptr;
    std::function<void()> meanwhile = [] {}; // runs inside loading, reloading and destroying
    std::function<Inv::NamedResource *(Inv::NamedResource *)> onReload = [](auto) { return nullptr; };
};

Inv::NamedResource * replace(Inv::NamedResource * old) {
    delete old;
    return new Asset("reloaded");
}

// Two kinds in a warehouse with batching; checks at the end that no resource, name, entry or data is left.
struct InvTest : testing::Test {
    void SetUp() override { Inv::Setup(true); }

    void TearDown() override {
        Inv::Shutdown();
        EXPECT_EQ(Inv::Warehouse::Instance(), nullptr);
        EXPECT_EQ(Asset::s_alive, 0);
        for (char const * pool : {"InvResources", "InvNames", "InvNodes"})
            EXPECT_EQ(liveBlocks(pool), 0u) << pool;
    }

    Log TakeLog() { return std::exchange(log, {}); }

    Log log;
    TestKind kind{log};
    TestKind other{log, "Another"};
};

// A resource that only the inventory holds afterwards.
Inv::Resource * add(char const * name, TestKind const & kind, bool hidden = false) {
    auto * const resource = new Inv::Resource;
    resource->SetName(name);
    hidden ? Front::AddHiddenResource(resource, &kind) : Front::AddResource(resource, &kind);
    Inv::Resource::Release(resource);
    return resource;
}

std::string nameOf(Handle<Asset> const & handle) { return Front::GetName(handle.GetResource()); }

} // namespace

TEST(InvUtilTest, NamesBecomeCanonical) {
    char const * const cases[][3] = {
        // as it stands, without and with its extension; only what stands behind the last ':' counts
        {"a:DATA:Art/Units/Tank.dat", "art\\units\\tank", "art\\units\\tank.dat"},
        {"DATA:", "", ""},
        // the last '.' of the whole text ends it, also one in a directory
        {"dir.old/file", "dir", "dir.old\\file"},
        // only the letters A to Z have a case
        {"\xC3\x84RGER//", "\xC3\x84rger\\\\", "\xC3\x84rger\\\\"},
    };
    for (auto const & [name, stripped, whole] : cases) {
        char out[260];
        InvUtil::TranslateResourceName(out, name, true);
        EXPECT_STREQ(out, stripped);
        InvUtil::TranslateResourceName(out, name, false);
        EXPECT_STREQ(out, whole);
    }
}

TEST_F(InvTest, DataHasAHandleFromTheFirstMoment) {
    Inv::Resource * const born = Front::GetResource(*new Asset("alone"));
    Inv::Resource::Retain(born);
    EXPECT_EQ(Front::GetReferences(born), 2);
    Inv::Resource::Release(born); // only its own data holds it: both go
    EXPECT_EQ(Asset::s_alive, 0);

    // data hears of its names, in which case counts; it moves from its blank handle, which goes, to another,
    // and what was there is cut loose
    auto * const resource = new Inv::Resource;
    Asset * const first = new Asset("first");
    for (char const * name : {"one", "one", "ONE", static_cast<char const *>(nullptr)})
        first->SetName(name);
    EXPECT_EQ(first->names, (Log{"one", "ONE", "(null)"}));
    resource->SetData(first);
    resource->SetData(first);
    EXPECT_EQ(liveBlocks("InvResources"), 1u);
    resource->SetData(new Asset("second"));
    EXPECT_EQ(Front::GetResource(*first), nullptr);
    EXPECT_EQ(first->GetName(), nullptr);
    delete first;
    Inv::Resource::Destroy(Inv::Resource::Retain(resource)); // forced: the data goes, the handle stays
    EXPECT_EQ(resource->GetData(), nullptr);
    EXPECT_EQ(Front::GetReferences(resource), 2);
    Inv::Resource::Release(resource);
    Inv::Resource::Release(resource);

    // a handle held by nothing but its data changes its data without ending half-way, and ends without
    Inv::Resource * const blank = Front::GetResource(*new Asset("third"));
    std::unique_ptr<Inv::NamedResource> const third(blank->GetData());
    blank->SetData(new Asset("fourth"));
    delete blank->GetData();
}

TEST_F(InvTest, TheLastOfManyThreadsDestroys) {
    Handle<Asset> handles[4];
    for (Handle<Asset> & each : handles)
        each = kind.Get("shared");
    Front::Remove(&kind);
    OnFourThreads([&handles](int thread) {
        Handle<Asset> const mine = std::exchange(handles[thread], {});
        for (int copies = 0; copies < 1000; ++copies)
            Handle<Asset> const copy(mine);
    });
    EXPECT_EQ(log.back(), "destroy shared");
}

TEST_F(InvTest, AnAssetLoadsOnceUnderWhateverSpelling) {
    Handle<Asset> const first = kind.Get("DATA:Art/Tank.dat");
    EXPECT_EQ(nameOf(first), "art\\tank");
    EXPECT_EQ(kind.Get("art\\TANK").GetResource(), first.GetResource());
    EXPECT_EQ(kind.Find("x:art/tank.png").GetResource(), first.GetResource());
    EXPECT_FALSE(kind.Find("art/tan"));
    EXPECT_FALSE(other.Find("art/tank")) << "a kind is its pointer";
    EXPECT_EQ(TakeLog(), (Log{"load DATA:Art/Tank.dat", "post art\\tank"})) << "the caller's spelling";
    EXPECT_EQ(Front::GetReferences(first.GetResource()), 3);

    // a kind that keeps its names is searched with case ignored all the same
    other.keepsNames = true;
    Handle<Asset> const kept = other.Get("A:Tank.dat");
    EXPECT_EQ(nameOf(kept), "A:Tank.dat");
    EXPECT_EQ(other.Find("a:TANK.DAT").GetResource(), kept.GetResource());
}

TEST_F(InvTest, NamesAreCutTo255BehindTheAlias) {
    other.keepsNames = true; // copies all it gets into 260 bytes
    std::string const stored(255, 'n');
    for (std::size_t length : {255u, 256u, 1000u}) {
        std::string const name(length, 'n');
        EXPECT_EQ(nameOf(kind.Get(("DATA:" + name).c_str())), stored);
        EXPECT_EQ(nameOf(other.Get((name + ":" + name).c_str())), stored);
        EXPECT_EQ(nameOf(other.Get(("DAT:" + name).c_str())), "DAT:" + stored);
    }
    EXPECT_EQ(Front::GetResourcesCount(&kind), 1u);
}

TEST_F(InvTest, ManyNamesStayFoundWhileOthersGo) {
    std::vector<Handle<Asset>> handles(3000);
    for (unsigned int i = 0; i < handles.size(); ++i) {
        Handle<Asset> const each = kind.Get(std::to_string(i).c_str());
        if (i % 3 == 0)
            handles[i] = each;
    }
    Front::Flush();
    for (unsigned int i = 0; i < handles.size(); ++i)
        EXPECT_EQ(kind.Find(std::to_string(i).c_str()).GetResource(), handles[i].GetResource()) << i;
}

TEST_F(InvTest, RequiredMeansNowAndTheRealAsset) {
    // without a default: false, and never tried again
    kind.missing = {"gone", "Absent"};
    EXPECT_FALSE(kind.Require("gone"));
    EXPECT_EQ(kind.Get("gone").Get(), nullptr);
    // with a default: only those who do not require the asset get it
    kind.hasDefault = true;
    EXPECT_FALSE(kind.Require("Absent"));
    Handle<Asset> const absent = kind.Get("absent");
    EXPECT_EQ(absent->content, "default");
    EXPECT_EQ(TakeLog(), (Log{"load gone", "default gone", "load Absent", "default absent", "post absent"}));
    kind.onReload = &replace;
    Front::Reload(absent.GetResource(), &kind);
    EXPECT_EQ(absent->content, "reloaded");
    EXPECT_FALSE(kind.Require("absent")) << "once a default, always one";
    EXPECT_EQ(kind.Get(nullptr)->content, "") << "a null name is the empty one";
}

TEST_F(InvTest, BatchingCanBeTurnedOff) {
    kind.canDefer = true;
    EXPECT_TRUE(Front::IsDeferred(kind.Get("a").GetResource()));
    char const * const arguments[] = {"game", "-invbatchingoff"};
    for (bool const byOption : {true, false}) {
        Inv::Warehouse::Shutdown();
        Plat::Options::SetCommandLine(byOption ? 2 : 0, arguments);
        Inv::Warehouse::Setup(byOption);
        Inv::Setup(true); // a second set-up does nothing
        EXPECT_FALSE(Front::IsDeferred(kind.Get("a").GetResource())) << byOption;
    }
}

TEST_F(InvTest, TwinsWarnAndTheFirstIsFound) {
    WarningCapture warnings(c_inventoryWarnings);
    Inv::Resource * const first = add("Same", kind);
    Inv::Resource * const second = add("SAME.dat", kind);
    EXPECT_EQ(Front::GetResourceAt(0, &kind), first) << "equal keys stay in the order in which they came";
    EXPECT_EQ(Front::GetResourceAt(1, &kind), second);
    EXPECT_EQ(Front::GetResourceAt(2, &kind), nullptr);
    first->SetName("changed"); // stored: neither changes
    first->SetTypeInfo(&other);
    EXPECT_EQ(kind.Find("same").GetResource(), first);

    // two names with one hash: both are stored and found
    for (char const * name : {"abhjbwag", "wyumcchu"}) {
        Inv::Resource * const each = add(name, kind);
        EXPECT_EQ(kind.Find(name).GetResource(), each);
    }

    // hidden ones warn not, are found by no name, and collide without being duplicated
    add("same", kind, true);
    EXPECT_STREQ(Front::GetName(add("Secret", kind, true)), "Secret") << "a chosen name stays as it is";
    char generated[40];
    Front::GenerateName(generated);
    char const * const unnamed = Front::GetName(add(nullptr, kind, true));
    EXPECT_TRUE(std::strlen(unnamed) == 38 && std::strlen(generated) == 38);
    EXPECT_STRNE(unnamed, generated);
    EXPECT_FALSE(kind.Find("secret"));
    add("secret", kind);
    EXPECT_EQ(warnings.texts,
              (Log{"Duplicate Test resource 'same' added to inventory - please check the resource!",
                   "'Test' Key collision with 'wyumcchu' added to inventory.",
                   "'Test' Key collision with 'secret' added to inventory."}));

    // a kind that the resource has already wins
    auto * const typed = new Inv::Resource;
    typed->SetTypeInfo(&other);
    Front::AddResource(typed, &kind);
    Inv::Resource::Release(typed);
    EXPECT_EQ(other.Find("").GetResource(), typed);
}

TEST_F(InvTest, ThePumpCountsItsStages) {
    kind.canDefer = true;
    for (char const * name : {"a", "b", "c"})
        kind.Get(name);
    EXPECT_EQ(Front::LoadResources(0), 3u) << "an idle pump collects whatever the budget";
    EXPECT_TRUE(kind.Require("C.dat"));
    for (unsigned int left : {2u, 1u, 3u, 2u, 1u, 0u, 0u})
        EXPECT_EQ(Front::LoadResources(1), left);
    EXPECT_EQ(TakeLog(), (Log{"prepare a", "prepare b", "prepare c", "load c", "post c", "load a", "load b",
                              "post a", "post b"}))
        << "what is loaded on demand, under its stored name, is done with";
}

TEST_F(InvTest, ABatchIsSortedAndPostLoadsComeLast) {
    TestKind later{log, "test"}; // the same name as a kind whose bin comes first
    for (TestKind * each : {&kind, &other, &later})
        each->canDefer = true;
    kind.meanwhile = [&] {
        if (log.back() == "load bad")
            throw std::runtime_error("bad");
        later.Get("child");
    };
    kind.Get("parent");
    later.Get("a");
    other.Get("z");
    kind.Get("BAD");
    Front::LoadResources(10);
    EXPECT_EQ(TakeLog(), (Log{"prepare z", "prepare bad", "prepare parent", "prepare a"}));
    EXPECT_THROW(Front::LoadResources(10), std::runtime_error);
    Front::LoadAllResources();
    EXPECT_EQ(TakeLog(), (Log{"load z", "load bad", "load parent", "load a", "prepare child", "load child",
                              "post z", "post parent", "post a", "post child"}))
        << "a load that throws counts as tried and stops nothing else";
    Inv::Shutdown(); // before the local kind goes
}

TEST_F(InvTest, AnAbortedBatchStartsAfresh) {
    kind.canDefer = true;
    for (char const * name : {"a", "b", "c"})
        kind.Get(name);
    Front::LoadResources(1);
    Front::LoadResources(1); // loads "a"
    EXPECT_EQ(Front::LoadResources(1, true), 0u);
    TakeLog();
    kind.meanwhile = [&] {
        if (log.back() == "load b")
            Front::LoadResources(0, true); // also from inside
    };
    for (unsigned int left : {2u, 1u, 1u})
        EXPECT_EQ(Front::LoadResources(10), left);
    Front::LoadResources(1, true); // with c's PostLoad to come
    Front::LoadAllResources();
    EXPECT_EQ(TakeLog(), (Log{"prepare b", "prepare c", "load b", "prepare c", "load c"}))
        << "what is loaded stays so, and no PostLoad comes any more";

    // an abort ends whatever batch is open
    int ended = 0;
    LoadScheduler::BeginSharedBatch(
        "test", +[](LoadScheduler::Batch *, void * count) { ++*static_cast<int *>(count); }, &ended);
    Front::LoadResources(1, true);
    EXPECT_EQ(ended, 1);
}

TEST_F(InvTest, KindsMayUseTheInventoryAndThrow) {
    std::function<void()> const waysToLoad[] = {[&] { kind.Find("x").Get(); }, [&] { kind.Require("y"); },
                                                [] { Front::LoadAllResources(); },
                                                [&] { Front::Preload(&kind); }};
    std::pair<std::function<void()>, int> const deeds[] = {
        // what a load does and how much data there is afterwards
        {[] { Front::Flush(); }, 1},
        {[&] { other.Get("more"); }, 2},
        {[] { throw std::runtime_error("bad"); }, 0},
    };
    kind.canDefer = true;
    for (auto const & [deed, alive] : deeds)
        for (auto const & load : waysToLoad) {
            kind.Get("x");
            kind.meanwhile = deed;
            try {
                load();
            } catch (std::runtime_error const &) {}
            EXPECT_EQ(Asset::s_alive, alive);
            kind.meanwhile = [] {};
            Front::LoadResources(0, true);
            Front::Flush();
        }

    // a walk goes on when what comes next is taken out meanwhile
    std::pair<bool, void (*)(Inv::ResourceTypeInfo const *)> const walks[] = {
        {true, &Front::Preload}, {false, &Front::Reload}, {false, &Front::Flush}, {false, &Front::Remove}};
    for (auto const & [deferred, walk] : walks) {
        kind.canDefer = deferred;
        for (int i = 0; i < 20; ++i)
            kind.Get(std::to_string(i).c_str());
        kind.meanwhile = [] { Front::Flush(); };
        walk(&kind);
        EXPECT_EQ(Front::GetResourcesCount(&kind), deferred ? 1u : 0u) << "the preloaded one was in use";
        Front::Flush();
        kind.meanwhile = [] {};
    }
}

TEST_F(InvTest, PreloadTouchesNoFlag) {
    kind.canDefer = true;
    Front::Preload("unknown", &kind);
    Handle<Asset> const a = kind.Get("a");
    Front::Preload(&kind);
    EXPECT_TRUE(Front::IsDeferred(a.GetResource()));
    // the load is still owed; what is there is cut loose and not freed
    std::unique_ptr<Inv::NamedResource> const preloaded(kind.lastLoaded);
    std::unique_ptr<Inv::NamedResource> const loaded(a.Get());
    kind.missing = {"A"};
    for (bool const hasDefault : {false, true}) {
        EXPECT_EQ(a->content, "a");
        kind.hasDefault = hasDefault;
        Front::Preload("A", &kind);
    }
    EXPECT_EQ(TakeLog(), (Log{"load a", "load a", "post a", "load A", "default A", "load A", "default A"}))
        << "the caller's spelling";
    EXPECT_EQ(a->content, "default");
    EXPECT_FALSE(Front::IsDefault(a.GetResource()));
    EXPECT_EQ(loaded->GetName(), nullptr);
}

TEST_F(InvTest, WhatNobodyHoldsGoesAndHandlesOutliveAll) {
    Handle<Asset> held = kind.Get("held");
    Inv::Resource * const resource = held.GetResource();
    kind.Get("free");
    Front::Flush(resource, &kind);
    TakeLog();
    Front::Remove(&kind);
    EXPECT_EQ(TakeLog(), Log{"destroy free"});
    Inv::Resource * const second = kind.Get("held").GetResource();
    EXPECT_NE(second, resource);
    Front::Remove(resource, &kind); // no longer stored
    resource->SetName("free again");
    EXPECT_EQ(held->names.back(), "free again");
    TakeLog();
    held = {};
    EXPECT_EQ(TakeLog(), Log{"destroy held"}) << "through its kind";
    Front::Flush(second, &other); // not the bin it is in
    EXPECT_EQ(Front::GetResourcesCount(&kind), 1u);
    Front::Flush(second, &kind);
    EXPECT_EQ(Front::GetResourcesCount(&kind), 0u);

    // a chain through both kinds, each held by the one before only
    for (int i = 0; i < 6; ++i) {
        Handle<Asset> const next = (i % 2 ? kind : other).Get(std::to_string(i).c_str());
        next->dependency = std::exchange(held, next);
    }
    held = {};
    Front::Flush();
    EXPECT_EQ(Asset::s_alive, 0);

    held = kind.Get("last");
    Inv::Shutdown();
    EXPECT_EQ(held.Get(), nullptr);
    held.GetResource()->SetName("thawed");
    EXPECT_EQ(nameOf(held), "thawed");
}

TEST_F(InvTest, ReloadPutsNewDataBehindTheSameHandle) {
    Handle<Asset> const held = kind.Get("held");
    kind.Get("free");
    Front::Reload(held.GetResource(), &kind); // gives nothing: the data stays where it is
    kind.meanwhile = [] { throw std::runtime_error("bad"); };
    EXPECT_THROW(Front::Reload(held.GetResource(), &kind), std::runtime_error);
    kind.meanwhile = [] {};
    EXPECT_EQ(held->content, "held");
    TakeLog();
    kind.onReload = &replace;
    Front::Reload(&kind);
    EXPECT_EQ(held->content, "reloaded");
    EXPECT_EQ(Front::GetReferences(held.GetResource()), 3);
    EXPECT_EQ(std::set<std::string>(log.begin(), log.end()),
              (std::set<std::string>{"reload held", "reload free", "destroy reloaded"}))
        << "what nobody holds goes right after its reload";

    TakeLog();
    kind.canDefer = true;
    Front::Reload(kind.Get("deferred").GetResource(), &kind); // no data yet
    kind.canReload = false;
    Front::Reload(held.GetResource(), &kind);
    Front::Reload(&kind);
    EXPECT_EQ(TakeLog(), Log{});
}

TEST_F(InvTest, AChangedFileReloadsOneResourcePerKind) {
    Inv::Shutdown();
    AliasedFolder const folder("DATA");
    folder.WriteFile("art/tank.dat", "old");
    Inv::Setup(true);
    Handle<Asset> const held = kind.Get("DATA:art/tank.dat");
    other.keepsNames = true; // and translates none
    other.translates = false;
    other.Get("DATA:art/tank.dat");
    TakeLog();
    kind.onReload = &replace;
    folder.WriteFile("art/tank.dat", "new");
    folder.WriteFile("art/unknown.dat", "new");
    EXPECT_EQ(FilePath::PumpFileChanges(), 2u);
    EXPECT_EQ(TakeLog(), Log{"reload art\\tank"});
    EXPECT_EQ(held->content, "reloaded");
}

TEST_F(InvTest, DumpsTellCountsAndStates) {
    AliasedFolder const folder("log");
    kind.hasDefault = true;
    kind.missing = {"gone"};
    Handle<Asset> const gone = kind.Get("gone");
    add("h", other, true);
    kind.canDefer = true;
    kind.Get("later");

    Inv::DumpInfo const info = Front::Dump();
    EXPECT_STREQ(info.bins.at(1).name, "Another");
    EXPECT_TRUE(info.bins[1].resources.at(0).hidden);
    Front::DumpToLogfile("inventory"); // without the option nothing is written
    EXPECT_EQ(folder.CountEntries(), 0u);
    char const * const arguments[] = {"game", "-invtrackloading"};
    Plat::Options::SetCommandLine(2, arguments);
    Front::DumpToLogfile("inventory");
    Plat::Options::SetCommandLine(0, nullptr);
    EXPECT_EQ(folder.ReadFile(folder.OnlyEntry()), "Test -- 2 items left\n"
                                                   "       3 references (LD ) to gone\n"
                                                   "       1 references (   ) to later\n"
                                                   "Another -- 1 items left\n"
                                                   "       1 references (L H) to h\n"
                                                   "\n\n 3 resources in the inventory\n");
}
