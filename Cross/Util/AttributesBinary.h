#pragma once

// AttributesBinary: reads attributes from a binary table.
//
// A key is the name hash of a field's exact spelling. The key forms convert nothing. The name forms convert
// from float only: a Float field reads as an int, and as a flag that tells whether the number is not 0. An
// Integer field reads as an int and nothing else.
//
// Pushing a table that is missing stands the cursor on an empty one, so the pop is due in any case; only the
// name form warns, since a key cannot be told by name.
//
// Threads and lifetime: the table stays the caller's and must outlive the reader; copies share its cursor.

#include "Cross/Util/AttributesInterface.h"

class BinaryConfig;

class CROSS_UTIL_API AttributesBinary : public AttributesInterface {
public:
    // Adds the table's CRC to the running one, which so starts as an identity of what is read.
    AttributesBinary(BinaryConfig & config, char const * debugName);

    bool AttributeExists(std::uint32_t key) const override;
    bool AttributeExists(char const * name) const override;
    bool GetNumber(std::uint32_t key, int & value) const override;
    bool GetNumber(std::uint32_t key, float & value) const override;

    // Reads through the virtual GetNumber(name, value), so a derived reader changes both at once.
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
    void TablePop() override;
    void TableRootPush() override;
    void TableRootPop() override;
    unsigned int GetCount() const override;
    std::uint32_t GetAt(unsigned int index) const override;

private:
    BinaryConfig * config;
};
