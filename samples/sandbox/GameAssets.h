#pragma once

// The two kinds of assets of the sample game. A unit names its weapons, so loading one asks for others.

#include "samples/inventory/Inventory.h"

#include <map>
#include <string>
#include <vector>

// What the kinds saw, in the order in which it happened: the evidence of the inventory's promises.
struct LoadJournal {
    std::map<std::string, int> loads; // by "kind name"
    unsigned int loadsAfterPostLoad = 0;
    unsigned int postLoads = 0;
    unsigned int reloads = 0;
};

struct Weapon : Inv::NamedResource {
    std::string title;
    int damage = 0;
    float range = 0.0f; // metres
};

struct Unit : Inv::NamedResource {
    std::string title;
    int health = 0;
    float speed = 0.0f; // metres per second
    float reach = 0.0f; // metres, of its farthest weapon; known once everything is loaded
    std::vector<inventory::Handle<Weapon>> weapons;
};

// Assets by the name of their table, "weapons/laser", read from GENERIC:weapons/laser.attr. The journal
// outlives the kind.
class WeaponKind : public inventory::Kind<Weapon> {
public:
    explicit WeaponKind(LoadJournal & journal);

    char const * GetBinName() const override;
    bool CanReload() const override;
    bool CanDeferLoading() const override;
    void PrepareToLoad(char const * name) override;
    Inv::NamedResource * Load(char const * name) const override;
    Inv::NamedResource * Reload(Inv::NamedResource * data) const override;
    void PostLoad(Inv::NamedResource * data) override;

private:
    LoadJournal & journal;
};

class UnitKind : public inventory::Kind<Unit> {
public:
    // `weapons` outlives the kind.
    UnitKind(LoadJournal & journal, WeaponKind const & weapons);

    char const * GetBinName() const override;
    bool CanReload() const override;
    bool CanDeferLoading() const override;
    void PrepareToLoad(char const * name) override;
    Inv::NamedResource * Load(char const * name) const override;
    Inv::NamedResource * Reload(Inv::NamedResource * data) const override;
    void PostLoad(Inv::NamedResource * data) override;

private:
    LoadJournal & journal;
    WeaponKind const & weapons;
};
