#pragma once

// AttributesLua: reads attributes from the tables of a script.
//
// A key is the position of a field in the walk over the current table, so GetAt(i) is i. A key form looks up
// the field's name, of at most 255 bytes, and does what the name form does; without a field at that position
// the read is false and leaves a number or flag as it was, and a push is not made at all. All numbers of a
// script read both as float and as int; a number beyond the range of float becomes infinite.
//
// Entering a table that is not there makes an empty one in the script, as LuaConfig::PushTable does.
//
// Threads and lifetime: the script stays the caller's and must outlive the reader; copies share its cursor.

#include "Cross/Util/AttributesInterface.h"

class LuaConfig;

class CROSS_UTIL_API AttributesLua : public AttributesInterface {
public:
    // `config` is not null.
    AttributesLua(LuaConfig * config, char const * debugName);

    bool AttributeExists(std::uint32_t key) const override;
    bool AttributeExists(char const * name) const override;
    bool GetNumber(std::uint32_t key, int & value) const override;
    bool GetNumber(std::uint32_t key, float & value) const override;
    bool GetNumber(char const * name, float min, float max, float & value) const override;
    bool GetNumber(char const * name, float & value) const override;
    bool GetNumber(char const * name, int & value) const override;
    bool GetBool(std::uint32_t key, bool & value) const override;
    bool GetBool(char const * name, bool & value) const override;
    bool GetString(std::uint32_t key, char * buffer, unsigned int size) const override;
    bool GetString(char const * name, char * buffer, unsigned int size) const override;
    bool GetWString(std::uint32_t key, char16_t * buffer, unsigned int size) const override;
    bool GetWString(char const * name, char16_t * buffer, unsigned int size) const override;
    bool TableExists(std::uint32_t key) const override;
    bool TableExists(char const * name) const override;
    void TablePush(std::uint32_t key) override;
    void TablePush(char const * name) override;

    // Pops no more than was pushed through this object; root pushes do not count.
    void TablePop() override;
    void TableRootPush() override;
    void TableRootPop() override;
    unsigned int GetCount() const override;
    std::uint32_t GetAt(unsigned int index) const override;

private:
    LuaConfig * config;
    int tableDepth = 0;
};
