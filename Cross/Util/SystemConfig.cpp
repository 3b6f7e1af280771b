#include "Cross/Util/SystemConfig.h"

#include "Cross/engine/core/Saturate.h"
#include "Cross/engine/diagnostics/Trace.h"
#include "Cross/engine/platform/Options.h"

#include <algorithm>

unsigned int const SystemConfig::NOT_SET = 0xFFFFFFFF;

namespace {

SystemConfig * s_instance = nullptr;

} // namespace

bool SystemConfig::Initialize() {
    if (!s_instance)
        s_instance = new SystemConfig;
    return true;
}

void SystemConfig::Shutdown() {
    delete s_instance;
    s_instance = nullptr;
}

bool SystemConfig::IsInitialized() { return s_instance != nullptr; }

SystemConfig * SystemConfig::Instance() { return s_instance; }

SystemConfig::SystemConfig() {
    constexpr char const * c_defaults = "sysconfig.lua";
    if (!Load(c_defaults, true))
        dbTimeStampedTracefAux("SystemConfig -- Could not load default configuration settings from '%s'.",
                               c_defaults);
}

SystemConfig::~SystemConfig() = default;

unsigned int SystemConfig::GetSetting(Dictionary::Key const & key) const {
    Setting const * const setting = find(key);
    if (!setting)
        return NOT_SET;
    if (!setting->overrideConsulted) {
        applyOption(*setting);
        setting->overrideConsulted = true;
    }
    return setting->value;
}

void SystemConfig::SetSetting(Dictionary::Key const & key, unsigned int value) {
    unsigned int const oldValue = store(key, value);
    notify(key, oldValue, value, false);
}

void SystemConfig::SetSetting(std::vector<std::pair<Dictionary::Key, unsigned int>> const & list) {
    struct Change {
        Dictionary::Key key;
        unsigned int oldValue, newValue;
    };

    std::vector<Change> changes;
    changes.reserve(list.size());
    for (auto const & [key, value] : list)
        changes.push_back({key, store(key, value), value});
    for (Change const & change : changes)
        notify(change.key, change.oldValue, change.newValue, false);
}

bool SystemConfig::InitWithDefault(Dictionary::Key const & key, unsigned int value) {
    Setting const * const setting = find(key);
    if (!setting)
        return false;
    setting->value = value;
    setting->overrideConsulted = false;
    applyOption(*setting);
    return true;
}

unsigned int SystemConfig::RegisterCallback(Callback * callback, std::vector<Dictionary::Key> const & keys) {
    if (!callback)
        return NOT_SET;
    callbacks.push_back({keys, callback, ++lastCallbackID});
    return lastCallbackID;
}

void SystemConfig::UnregisterCallback(unsigned int id) {
    std::erase_if(callbacks, [id](CallbackRecord const & record) { return record.id == id; });
}

unsigned int SystemConfig::GetEstimatedMemoryUsage(Dictionary::Key const & key, std::int32_t index) const {
    auto const found = memoryTable.find(key);
    auto const place = static_cast<std::uint32_t>(index);
    if (found == memoryTable.end() || place >= found->second.size())
        return 0;
    return kilobytesOf(found->second[place]);
}

unsigned int SystemConfig::kilobytesOf(float megabytes) {
    return SaturateTo<unsigned int>(static_cast<double>(megabytes) * 1024.0);
}

SystemConfig::Setting const * SystemConfig::find(Dictionary::Key key) const {
    auto const place = std::lower_bound(
        settings.begin(), settings.end(), key,
        [](Setting const & setting, Dictionary::Key wanted) { return setting.key < wanted; });
    return place != settings.end() && place->key == key ? &*place : nullptr;
}

void SystemConfig::insert(Setting const & setting) {
    auto const place =
        std::upper_bound(settings.begin(), settings.end(), setting.key,
                         [](Dictionary::Key key, Setting const & other) { return key < other.key; });
    settings.insert(place, setting);
}

void SystemConfig::applyOption(Setting const & setting) {
    char const * const name = Dictionary::Instance().GetString(setting.key);
    if (!Plat::Options::Exist(name))
        return;
    int number = 0;
    if (Plat::Options::Get(name, number))
        setting.value = static_cast<unsigned int>(number);
    else if (setting.valueType == VT_SWITCH)
        setting.value = 1;
}

// Stores a value for good and gives the old one.
unsigned int SystemConfig::store(Dictionary::Key key, unsigned int value) {
    Setting const * const setting = find(key);
    if (!setting) {
        insert({key, value, VT_UNDEFINED, true});
        return NOT_SET;
    }
    setting->overrideConsulted = true;
    return std::exchange(setting->value, value);
}

// A listener may change the list while it is called: each step finds the next one by its id, and those that
// came meanwhile are left out. The key is a copy, since the caller's may lie in what a listener changes.
void SystemConfig::notify(Dictionary::Key key, unsigned int oldValue, unsigned int newValue,
                          bool toAll) const {
    unsigned int const lastID = lastCallbackID;
    auto const next = [this](unsigned int id) {
        return std::upper_bound(
            callbacks.begin(), callbacks.end(), id,
            [](unsigned int called, CallbackRecord const & record) { return called < record.id; });
    };
    unsigned int id = 0;
    for (auto record = next(id); record != callbacks.end() && record->id <= lastID; record = next(id)) {
        id = record->id;
        auto const & keys = record->keys;
        if (toAll || keys.empty() || std::find(keys.begin(), keys.end(), key) != keys.end())
            record->callback->OnChanged(key, oldValue, newValue);
    }
}
