#pragma once

// SystemConfig: the numeric settings of the process, by name, with what each value of a setting costs in
// memory. The names come from the settings file, the application or scripts; the library reads none of them.
// A value comes from the file "sysconfig.lua", is overridden once by an option of that name on the command
// line, and then belongs to whoever sets it; listeners hear of every set and every load.
//
// Names are keys of Dictionary::Instance(), so they ignore case. Settings are never removed.
//
// Threads: one at a time; GetSetting writes too. Listeners are called on the thread that sets or loads.

#include "Cross/Util/Dictionary.h"
#include "Cross/engine/core/Export.h"

#include <cstdint>
#include <map>
#include <utility>
#include <vector>

class LuaConfig;

class CROSS_UTIL_API SystemConfig {
public:
    // What hears of changes. It is not owned and must be unregistered before it dies. While it is called it
    // may set, register and unregister; what it registers is not told of the change at hand.
    class CROSS_UTIL_API Callback {
    public:
        // A setting has a new value, which may equal the old one; NOT_SET is the old one of a new setting.
        // After a load: Key::INVALID and twice NOT_SET, any setting may have changed.
        virtual void OnChanged(Dictionary::Key const & key, unsigned int oldValue, unsigned int newValue) = 0;
        virtual ~Callback() = default;
    };

    // No value, and no callback.
    static unsigned int const NOT_SET;

    // Makes the instance and loads "sysconfig.lua", of the working folder, into it. Always true: without that
    // file the store is empty and the trace says so. Does nothing while there is an instance.
    static bool Initialize();
    static void Shutdown();
    static bool IsInitialized();

    // Null outside Initialize and Shutdown.
    static SystemConfig * Instance();

    // Member by member, the listeners and their numbers included.
    SystemConfig(SystemConfig const &) = default;
    SystemConfig & operator=(SystemConfig const &) = default;

    // The value, NOT_SET for an unknown key. The first read of a setting that nobody has set looks at the
    // command line: the number of an option of its name replaces the value, a bare option turns a switch on.
    unsigned int GetSetting(Dictionary::Key const & key) const;

    // Sets a value, which the command line then no longer overrides, and calls the listeners. An unknown
    // setting is created.
    void SetSetting(Dictionary::Key const & key, unsigned int value);

    // The same for all of a list, before the first listener is called.
    void SetSetting(std::vector<std::pair<Dictionary::Key, unsigned int>> const & list);

    // Gives a known setting a new default, which the command line overrides. No listener is called. False for
    // an unknown key.
    bool InitWithDefault(Dictionary::Key const & key, unsigned int value);

    // Adds a listener to the settings of `keys`, to all when there are none. The result is a number for
    // UnregisterCallback, never used again; NOT_SET for null.
    unsigned int RegisterCallback(Callback * callback, std::vector<Dictionary::Key> const & keys);

    // Ignores NOT_SET and unknown numbers.
    void UnregisterCallback(unsigned int id);

    // Kilobytes: of the application, of its graphics driver, and how far an estimate may go beyond.
    unsigned int GetEstimatedBaseMemoryUsage() const { return baseMemory; }

    unsigned int GetEstimatedD3D10MemoryUsage() const { return d3d10Memory; }

    unsigned int GetAllowableOverflow() const { return allowableOverflow; }

    // Kilobytes that the value `index` of a setting costs; 0 when the file told nothing of it.
    unsigned int GetEstimatedMemoryUsage(Dictionary::Key const & key, std::int32_t index) const;

    // Take over the settings of a file (an aliased or a real path), or of a state that has run one, and tell
    // every listener once. Settings that are known keep their kind and who may override them. False, with
    // nothing changed and nobody told, when the file cannot be read or run, which is traced, and when its
    // "version" is missing or below 1007, unless `ignoreVersion`.
    bool Load(char const * path, bool ignoreVersion);
    bool Load(LuaConfig & config, bool ignoreVersion);

    // Write the stored values; memory figures are not saved. False, with the reason in the trace and the old
    // file as it was, when the file cannot be written. A state gives true.
    bool Save(char const * path) const;
    bool Save(LuaConfig & config) const;

private:
    enum ValueType : unsigned int { VT_SWITCH = 1, VT_NUMBER = 2, VT_UNDEFINED = 3 };

    struct Setting {
        Dictionary::Key key;
        mutable unsigned int value;
        unsigned int valueType;
        mutable bool overrideConsulted;
    };

    struct CallbackRecord {
        std::vector<Dictionary::Key> keys; // none: all settings
        Callback * callback;
        unsigned int id;
    };

    SystemConfig();
    ~SystemConfig();

    static unsigned int kilobytesOf(float megabytes);

    Setting const * find(Dictionary::Key key) const;
    void insert(Setting const & setting);
    static void applyOption(Setting const & setting);
    unsigned int store(Dictionary::Key key, unsigned int value);
    void notify(Dictionary::Key key, unsigned int oldValue, unsigned int newValue, bool toAll) const;
    void loadSettings(LuaConfig & config);
    void loadSetting(LuaConfig & config);
    void loadMemoryUsed(LuaConfig & config, Dictionary::Key key);

    std::vector<Setting> settings;                             // ascending by key
    std::map<Dictionary::Key, std::vector<float>> memoryTable; // megabytes by value
    std::vector<CallbackRecord> callbacks;                     // ascending by id
    unsigned int lastCallbackID = 0;
    unsigned int baseMemory = 500 * 1024; // kilobytes
    unsigned int d3d10Memory = 32 * 1024;
    unsigned int allowableOverflow = 128 * 1024;
};
