// The inventory beside plain containers that do the same work.

#include "Cross/Util/InvUtil.h"
#include "Cross/Util/NameHash.h"
#include "Cross/engine/core/Text.h"
#include "bench/Ratio.h"
#include "samples/inventory/Inventory.h"

#include <algorithm>
#include <map>
#include <memory>
#include <random>
#include <string>
#include <unordered_map>
#include <vector>

namespace {

using inventory::Front;

constexpr unsigned int c_draws = 4096;

struct Thing : Inv::NamedResource {};

class ThingKind : public inventory::Kind<Thing> {
public:
    char const * GetBinName() const override { return "Things"; }

    bool CanReload() const override { return false; }

    bool CanDeferLoading() const override { return deferred; }

    Inv::NamedResource * Load(char const * name) const override {
        benchmark::DoNotOptimize(name);
        return new Thing;
    }

    Inv::NamedResource * Reload(Inv::NamedResource *) const override { return nullptr; }

    bool deferred = false;
};

std::vector<std::string> makeNames(unsigned int count) {
    std::vector<std::string> names;
    for (unsigned int i = 0; i < count; ++i)
        names.push_back("DATA:Art/Units/Group" + std::to_string(i % 97) + "/Unit_" + std::to_string(i) +
                        ".dat");
    std::shuffle(names.begin(), names.end(), std::mt19937(7));
    return names;
}

std::string canonical(std::string const & name) {
    char out[260];
    InvUtil::TranslateResourceName(out, name.c_str(), true);
    return out;
}

std::vector<std::string> drawNames(std::vector<std::string> const & names) {
    std::mt19937 random(11);
    std::vector<std::string> drawn;
    for (unsigned int i = 0; i < c_draws; ++i)
        drawn.push_back(names[random() % names.size()]);
    return drawn;
}

void addLookUps(unsigned int count) {
    auto const names = makeNames(count);
    auto const drawn = drawNames(names);
    auto const ours = [=](benchmark::State & state) {
        ThingKind kind;
        Inv::Setup(false);
        for (std::string const & name : names)
            kind.Get(name.c_str());
        unsigned int i = 0;
        for (auto _ : state) {
            Inv::Resource * resource = nullptr;
            Front::GetResource(&resource, drawn[i++ % c_draws].c_str(), &kind, false);
            benchmark::DoNotOptimize(resource);
        }
        Inv::Shutdown();
    };
    auto const peer = [=](benchmark::State & state) {
        std::unordered_map<std::string, void *> map;
        for (std::string const & name : names)
            map.emplace(canonical(name), &map);
        unsigned int i = 0;
        for (auto _ : state) {
            char out[260];
            InvUtil::TranslateResourceName(out, drawn[i++ % c_draws].c_str(), true);
            benchmark::DoNotOptimize(map.find(out));
        }
    };
    bench::AddPair("GetResource of a stored name among " + std::to_string(count), 2.0, ours, peer);
}

void addPump() {
    constexpr unsigned int c_count = 10000;
    auto const names = makeNames(c_count);
    auto const ours = [=](benchmark::State & state) {
        ThingKind kind;
        kind.deferred = true;
        Inv::Setup(true);
        for (auto _ : state) {
            state.PauseTiming();
            Front::Remove(&kind);
            for (std::string const & name : names)
                kind.Get(name.c_str());
            state.ResumeTiming();
            while (Front::LoadResources(c_count) != 0) {}
        }
        Inv::Shutdown();
    };
    auto const peer = [=](benchmark::State & state) {
        ThingKind const kind;
        for (auto _ : state) {
            state.PauseTiming();
            std::vector<std::string> sorted;
            for (std::string const & name : names)
                sorted.push_back(canonical(name));
            // the order in which the inventory's index holds them
            std::sort(sorted.begin(), sorted.end(), [](std::string const & left, std::string const & right) {
                return NameHashLower(left.c_str()) < NameHashLower(right.c_str());
            });
            std::vector<std::pair<Inv::Resource *, Inv::NamedResource *>> attached;
            for (unsigned int i = 0; i < c_count; ++i)
                attached.emplace_back(new Inv::Resource, nullptr);
            state.ResumeTiming();
            std::sort(sorted.begin(), sorted.end(), [](std::string const & left, std::string const & right) {
                return text::CompareNoCase(left.c_str(), right.c_str()) < 0;
            });
            for (unsigned int i = 0; i < c_count; ++i) {
                attached[i].second = kind.Load(sorted[i].c_str());
                attached[i].first->SetData(attached[i].second);
            }
            state.PauseTiming();
            for (auto const & [resource, data] : attached) {
                delete data;
                Inv::Resource::Release(resource);
            }
            state.ResumeTiming();
        }
    };
    bench::AddPair("pumping 10000 deferred resources", 2.0, ours, peer);
}

void addFlush() {
    constexpr unsigned int c_count = 100000;
    auto const names = makeNames(c_count);
    auto const ours = [=](benchmark::State & state) {
        ThingKind kind;
        Inv::Setup(false);
        for (auto _ : state) {
            state.PauseTiming();
            for (std::string const & name : names)
                kind.Get(name.c_str());
            state.ResumeTiming();
            Front::Flush();
        }
        Inv::Shutdown();
    };
    auto const peer = [=](benchmark::State & state) {
        for (auto _ : state) {
            state.PauseTiming();
            std::multimap<std::uint32_t, Inv::NamedResource *> map;
            for (std::string const & name : names) {
                std::string const stored = canonical(name);
                Thing * const thing = new Thing;
                thing->SetName(stored.c_str());
                map.emplace(NameHashLower(stored.c_str()), thing);
            }
            state.ResumeTiming();
            for (auto entry = map.begin(); entry != map.end();) {
                delete entry->second;
                entry = map.erase(entry);
            }
        }
    };
    bench::AddPair("flushing 100000 unheld resources", 1.5, ours, peer);
}

} // namespace

int main(int argc, char ** argv) {
    addLookUps(1000);
    addLookUps(100000);
    addPump();
    addFlush();
    return bench::Run(argc, argv);
}
