#pragma once

// AttributesInterface: one way to read named values, wherever they stand: in a binary table
// (AttributesBinary), a script (AttributesLua) or nowhere at all (AttributesEmpty). Code that reads through
// it works with all three.
//
// The reads work on a current table, which TablePush and TablePop move. Each read has a form that takes a
// name and one that takes a key. Keys come from GetAt of the same object: what a key is differs between the
// readers, and so does what the key forms convert. A null name counts as "".
//
// Reads give false when there is no such value or it is of another kind. Numbers, and the flag of the key
// form of GetBool, are then left as they were; the flag of the name form becomes false wherever there is any
// data; texts become empty. Texts are cut to fit.
//
// A number becomes an int by losing its fraction; what lies beyond the range of int becomes the nearest int,
// and NaN becomes 0.
//
// Threads and lifetime: a reader shares the cursor of the table or script it was made for, belongs to the
// same thread and must not outlive it.

#include "Cross/engine/core/Export.h"
#include "Cross/engine/core/FixedString.h"

#include <cstdint>

class CROSS_UTIL_API AttributesInterface {
public:
    // The name, cut to 256 characters, is for messages; null counts as "".
    explicit AttributesInterface(char const * debugName);
    AttributesInterface(AttributesInterface const &) = default;
    AttributesInterface & operator=(AttributesInterface const &) = default;

    // The virtual functions are called by position: their order stays.
    virtual ~AttributesInterface();

    // True for a number, flag or text; a table is no attribute.
    virtual bool AttributeExists(std::uint32_t key) const = 0;
    virtual bool AttributeExists(char const * name) const = 0;

    virtual bool GetNumber(std::uint32_t key, int & value) const = 0;
    virtual bool GetNumber(std::uint32_t key, float & value) const = 0;

    // A value outside of [min, max] becomes the bound it has passed, and the result is true all the same. NaN
    // stays.
    virtual bool GetNumber(char const * name, float min, float max, float & value) const = 0;
    virtual bool GetNumber(char const * name, float & value) const = 0;
    virtual bool GetNumber(char const * name, int & value) const = 0;

    virtual bool GetBool(std::uint32_t key, bool & value) const = 0;
    virtual bool GetBool(char const * name, bool & value) const = 0;

    // `size` counts bytes, or units of wide text, and is at least 1.
    virtual bool GetString(std::uint32_t key, char * buffer, unsigned int size) const = 0;
    virtual bool GetString(char const * name, char * buffer, unsigned int size) const = 0;
    virtual bool GetWString(std::uint32_t key, char16_t * buffer, unsigned int size) const = 0;
    virtual bool GetWString(char const * name, char16_t * buffer, unsigned int size) const = 0;

    virtual bool TableExists(std::uint32_t key) const = 0;
    virtual bool TableExists(char const * name) const = 0;

    // Enters a table of the current one. Ask TableExists first: pushing a table that is missing by name
    // raises a warning of the category "PBGM", and all reads fail until the TablePop that belongs to it.
    virtual void TablePush(std::uint32_t key) = 0;
    virtual void TablePush(char const * name) = 0;
    virtual void TablePop() = 0;

    // Starts again at the outermost table, until TableRootPop leads back to where the reader stood.
    virtual void TableRootPush() = 0;
    virtual void TableRootPop() = 0;

    // Number of fields of the current table, tables included, and the key of the one at `index`, which is
    // below that number.
    virtual unsigned int GetCount() const = 0;
    virtual std::uint32_t GetAt(unsigned int index) const = 0;

    // Both give the name from construction.
    char const * GetDebugName() const;
    char const * GetRelativeName() const;

    // A running zlib CRC of the values that were added, each as its four bytes in memory. Reads add nothing.
    std::uint32_t GetCRC() const;
    void AddCRCVal(std::uint32_t value);

private:
    std::uint32_t crc = 0;
    std::uint32_t crcBytes = 0; // number of bytes in `crc`
    fixedstring<256, tarnstring_trait<char>> debugName;
};
