#pragma once

// LuaConfig: one Lua 5.1 state with a table cursor, so that settings and attributes are read and written
// field by field.
//
// The cursor is the Lua stack itself: the globals lie at its bottom, PushTable pushes a table, PopTable takes
// it off, and every operation that takes a field name works on the table on top (on the globals when the top
// is no table). Callers who push a table through the raw state therefore direct these operations to it.
//
// Field names: canonical digits up to 2^53 ("7", not "007") reach the number key of that value; a set goes to
// the key that exists, else to the number key. A null name counts as "". Access is raw: metatables of script
// tables are not asked.
//
// Failures: a set, clear or push that Lua has no memory for is traced and changes nothing; nothing that Lua
// raises leaves these operations. What C++ allocates here throws std::bad_alloc, a new state included.
//
// Threads: a state belongs to one thread at a time. Lifetime: names and iterators are copies and stay valid;
// the raw state lives as long as the object.

#include "Cross/engine/core/Export.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

struct lua_State;

class CROSS_ENGINE_API LuaConfig {
public:
    // Kind of a value. LT_NONE: no such field, or a value of another kind, such as a function.
    enum LuaType : unsigned int { LT_NONE = 0, LT_BOOLEAN = 1, LT_NUMBER = 2, LT_STRING = 3, LT_TABLE = 4 };

    // A walk over the fields of one table, taken as a snapshot of its names: whole-number keys from 0
    // ascending, then text keys in byte order; other keys, which no name reaches, are left out, as is in the
    // globals what the constructor put there. The kind is looked up when the walk gets there, so a field that
    // went meanwhile has LT_NONE. The table stays alive as long as the iterator, which must not outlive the
    // state.
    class CROSS_ENGINE_API Iterator {
    public:
        Iterator();
        Iterator(Iterator const & source);
        Iterator & operator=(Iterator const & source);
        ~Iterator();

        // Two iterators differ when just one of them is at its end.
        bool operator!=(Iterator const & other) const;
        Iterator & operator++();

        // Name of the present field, which every operation of the cursor accepts for it; "" at the end. Valid
        // until the iterator moves or goes.
        char const * GetName() const;
        LuaType GetType() const;

        // The present field's value: what the getters of the state give for its name in the walked table, and
        // faster. False, with `value` untouched, at the end as well.
        bool GetNumber(double & value) const;
        bool GetString(std::string & value) const;

    private:
        friend class LuaConfig;
        struct Walk;

        bool isAtEnd() const;
        template <class Read>
        auto readField(Read read) const;

        std::shared_ptr<Walk> walk;
        std::size_t position = 0;
    };

    // A new state. The name is for messages; null counts as "". `flag` true makes a script state: Lua's
    // standard libraries, whose loaders find files by FilePath. False makes a data state, for files of
    // values: its globals are empty; behind them scripts see the base library, string, table and math,
    // without what loads code, reaches environments or steers the collector, and with patterns of at most
    // 1,000 characters. Neither runs bytecode.
    LuaConfig(char const * name, bool flag);
    LuaConfig(LuaConfig const &) = delete;
    LuaConfig & operator=(LuaConfig const &) = delete;
    ~LuaConfig();

    char const * GetName() const;

    // The raw state. Whoever changes the stack puts it back, and leaves eight free slots when calling
    // operations of this class.
    lua_State * GetState();

    // Runs script text; true on success. `flag` true traces Lua's message on failure. The cursor is as
    // before.
    bool RunString(char const * text, bool flag);

    LuaType GetType(char const * name);

    // Enters a field. A missing one becomes a new table at once. On a value that is no table the cursor
    // enters a new table, which takes the value's place at the first set in it or below it.
    void PushTable(char const * name);
    void PushTable(unsigned int index);
    void PushTableGlobals();

    // Leaves the table entered last. Never leaves the globals at the bottom. There is room for some 8,000
    // tables on the way down: a push beyond that leaves the cursor where it is, is traced once, and takes one
    // pop, like any other.
    void PopTable();

    // The number of fields that a walk visits, and their names in its order. AtEntry cuts the name to fit and
    // gives false past the end or at size 0, with the buffer untouched. Both work on one snapshot, taken at
    // the first of these calls on a table, and after a set, clear, push, pop, run or GetState.
    unsigned int CountEntry();
    bool AtEntry(unsigned int index, char * name, unsigned int size);

    Iterator IterateBegin();
    Iterator IterateEnd();

    // The getters are strict: no number reads as a text, nor the other way round. False, with `value`
    // untouched, when the field is missing or of another kind. The buffer form cuts to fit, ends the text,
    // and writes nothing at size 0.
    bool GetNumber(char const * name, double & value);
    bool GetBoolean(char const * name, bool & value);
    bool GetString(char const * name, char * buffer, unsigned int size);
    bool GetString(char const * name, std::string & value);

    void SetNumber(char const * name, double value);

    // A null text counts as "".
    void SetString(char const * name, char const * text);

    void ClearVariable(char const * name);

private:
    friend class LuaConfigSave;

    struct Data;
    std::unique_ptr<Data> data;
};

// The same on the current table with other value types. The getters give false, with the output untouched,
// when the field is missing or of another kind.
CROSS_ENGINE_API bool LCGetBool(LuaConfig & config, char const * name, bool & value);
CROSS_ENGINE_API bool LCGetFloat(LuaConfig & config, char const * name, float & value);
CROSS_ENGINE_API void LCSetFloat(LuaConfig & config, char const * name, float value);

// A number as unsigned 32 bits: a fraction is cut, a value that does not fit gives false.
CROSS_ENGINE_API bool LCGetULong(LuaConfig & config, char const * name, std::uint32_t & value);
CROSS_ENGINE_API void LCSetULong(LuaConfig & config, char const * name, std::uint32_t value);

CROSS_ENGINE_API bool LCGetString(LuaConfig & config, char const * name, std::string & value);

// A UTF-8 text as UTF-16, cut to `size` - 1 units, never between the two of one character, and ended with 0;
// bad UTF-8 becomes U+FFFD. Size 0 gives false.
CROSS_ENGINE_API bool LCGetWString(LuaConfig & config, char const * name, char16_t * buffer,
                                   unsigned int size);
