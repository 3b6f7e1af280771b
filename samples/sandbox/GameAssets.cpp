#include "samples/sandbox/GameAssets.h"

#include "Cross/Util/AttributesBinary.h"
#include "Cross/Util/BinaryConfig.h"
#include "Cross/Util/BinaryConfigIO.h"
#include "Cross/engine/core/Utf.h"
#include "Cross/engine/filesystem/LoadScheduler.h"

#include <algorithm>
#include <memory>
#include <utility>

namespace {

constexpr unsigned int c_textSize = 256;

std::string tablePath(char const * name) { return std::string("GENERIC:") + name + ".attr"; }

std::string readTitle(AttributesInterface const & attributes) {
    char16_t title[c_textSize];
    return attributes.GetWString("title", title, c_textSize) ? utf::ToUtf8(title) : std::string();
}

// The handles of all weapons that the open table of a unit names.
std::vector<inventory::Handle<Weapon>> readWeapons(AttributesInterface & attributes,
                                                   WeaponKind const & kind) {
    std::vector<inventory::Handle<Weapon>> weapons;
    attributes.TablePush("weapons");
    for (unsigned int i = 0; i < attributes.GetCount(); ++i) {
        char name[c_textSize];
        if (attributes.GetString(attributes.GetAt(i), name, c_textSize))
            weapons.push_back(kind.Get((std::string("weapons/") + name).c_str()));
    }
    attributes.TablePop();
    return weapons;
}

std::unique_ptr<Weapon> readWeapon(char const * name) {
    BinaryConfig table;
    if (!BinaryConfigIO::Load(tablePath(name).c_str(), table))
        return nullptr;
    AttributesBinary const attributes(table, name);
    auto weapon = std::make_unique<Weapon>();
    weapon->title = readTitle(attributes);
    attributes.GetNumber("damage", weapon->damage);
    attributes.GetNumber("range", weapon->range);
    return weapon;
}

std::unique_ptr<Unit> readUnit(char const * name, WeaponKind const & weapons) {
    BinaryConfig table;
    if (!BinaryConfigIO::Load(tablePath(name).c_str(), table))
        return nullptr;
    AttributesBinary attributes(table, name);
    auto unit = std::make_unique<Unit>();
    unit->title = readTitle(attributes);
    attributes.GetNumber("health", unit->health);
    attributes.GetNumber("speed", unit->speed);
    unit->weapons = readWeapons(attributes, weapons);
    return unit;
}

// Loads the weapons that are not there yet.
float reachOf(Unit const & unit) {
    float reach = 0.0f;
    for (inventory::Handle<Weapon> const & weapon : unit.weapons)
        if (weapon.Get())
            reach = std::max(reach, weapon->range);
    return reach;
}

void noteLoad(LoadJournal & journal, std::string const & key) {
    ++journal.loads[key];
    if (journal.postLoads > 0)
        ++journal.loadsAfterPostLoad;
}

// Hands new data over in place of the old, which ends here; nothing new leaves the old where it is.
Inv::NamedResource * replaceData(LoadJournal & journal, std::unique_ptr<Inv::NamedResource> fresh,
                                 Inv::NamedResource * old) {
    if (!fresh)
        return nullptr;
    ++journal.reloads;
    delete old;
    return fresh.release();
}

} // namespace

WeaponKind::WeaponKind(LoadJournal & journal) : journal(journal) {}

char const * WeaponKind::GetBinName() const { return "Weapon"; }

bool WeaponKind::CanReload() const { return true; }

bool WeaponKind::CanDeferLoading() const { return true; }

void WeaponKind::PrepareToLoad(char const * name) { LoadScheduler::AddFile(tablePath(name).c_str()); }

Inv::NamedResource * WeaponKind::Load(char const * name) const {
    noteLoad(journal, std::string("Weapon ") + name);
    return readWeapon(name).release();
}

Inv::NamedResource * WeaponKind::Reload(Inv::NamedResource * data) const {
    return replaceData(journal, readWeapon(data->GetName()), data);
}

void WeaponKind::PostLoad(Inv::NamedResource *) { ++journal.postLoads; }

UnitKind::UnitKind(LoadJournal & journal, WeaponKind const & weapons) : journal(journal), weapons(weapons) {}

char const * UnitKind::GetBinName() const { return "Unit"; }

bool UnitKind::CanReload() const { return true; }

bool UnitKind::CanDeferLoading() const { return true; }

void UnitKind::PrepareToLoad(char const * name) { LoadScheduler::AddFile(tablePath(name).c_str()); }

Inv::NamedResource * UnitKind::Load(char const * name) const {
    noteLoad(journal, std::string("Unit ") + name);
    return readUnit(name, weapons).release();
}

Inv::NamedResource * UnitKind::Reload(Inv::NamedResource * data) const {
    std::unique_ptr<Unit> fresh = readUnit(data->GetName(), weapons);
    if (fresh)
        fresh->reach = reachOf(*fresh); // no PostLoad follows a reload
    return replaceData(journal, std::move(fresh), data);
}

void UnitKind::PostLoad(Inv::NamedResource * data) {
    ++journal.postLoads;
    Unit & unit = static_cast<Unit &>(*data);
    unit.reach = reachOf(unit);
}
