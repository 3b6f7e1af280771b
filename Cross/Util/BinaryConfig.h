#pragma once

// BinaryConfig: a tree of named values, read in place from one block of bytes, the image. Nothing is parsed
// and nothing is allocated per field; a lookup in a sorted table is one search over 12-byte records.
//
// A cursor tells which table is being read. Fields are addressed by key, the name hash of their exact
// spelling; the forms that take a name hash it and forward, and a null name counts as "". A literal key of 0
// is written 0u. The image holds no names, so a table can be enumerated by key and type only.
//
// Images come from BinaryConfigIO and are trusted: offsets and counts are not checked here. An image from
// outside goes through BinaryConfigIO::Verify first. docs/formats.md tells the bytes.
//
// Threads: one at a time. Lifetime: the object owns its image; field pointers and the image pointer are valid
// until the next image is set or the object goes.

#include "Cross/Util/NameHash.h"
#include "Cross/engine/core/Export.h"
#include "Cross/engine/core/FixedString.h"
#include "Cross/engine/core/ScopedArray.h"

#include <cstdint>
#include <deque>
#include <vector>

namespace BCTypes {

// Type of a field. The values are stored: none may change, and the gap is part of the format.
enum FieldEntryType : std::uint32_t {
    Float = 0,
    Integer = 1,
    Bool = 2,
    String = 3,
    WString = 4,
    Table = 100,        // fields in ascending order of key
    TableUnsorted = 101 // fields in the order in which the builder received them
};

} // namespace BCTypes

namespace BCInternal {

// A field as it stands in the image. `offset` counts bytes from the data area of the field's own table.
struct FieldInfo {
    std::uint32_t key;
    BCTypes::FieldEntryType type;
    std::uint32_t offset;
};

static_assert(sizeof(FieldInfo) == 12 && alignof(FieldInfo) == 4);

class Access; // what the rest of the library may do with a table; private

} // namespace BCInternal

class CROSS_UTIL_API BinaryConfig {
public:
    // Without an image: the cursor stands on the null table, in which every lookup fails.
    BinaryConfig();
    BinaryConfig(BinaryConfig const &) = delete;
    BinaryConfig & operator=(BinaryConfig const &) = delete;
    ~BinaryConfig();

    // Steps into a table of the current table, or onto the null table when there is none of that key. Each
    // push is balanced by one TablePop, whether the table existed or not.
    void TablePush(std::uint32_t key);
    void TablePush(char const * name);

    // Steps back to where the last TablePush came from; without one, nothing happens.
    void TablePop();

    // Opens a second cursor at the root, until the matching TableRootPop brings the present one back
    // untouched. A pop without a push does nothing.
    void TableRootPush();
    void TableRootPop();

    // A table is no attribute: exactly one of the two is true for a field of a known type.
    bool TableExists(std::uint32_t key) const;
    bool TableExists(char const * name) const;
    bool AttributeExists(std::uint32_t key) const;
    bool AttributeExists(char const * name) const;

    // True, with the value, when the current table has a field of that key and exactly that type: an Integer
    // does not read as a float, nor a Float as an int. Otherwise false, and `value` stays as it was.
    bool GetNumber(std::uint32_t key, int & value) const;
    bool GetNumber(char const * name, int & value) const;
    bool GetNumber(std::uint32_t key, float & value) const;
    bool GetNumber(char const * name, float & value) const;
    bool GetBool(std::uint32_t key, bool & value) const;
    bool GetBool(char const * name, bool & value) const;

    // Text of a String or WString field. `size` counts units of the buffer, at least 1: `buffer[0]` is
    // cleared before the lookup, so a failure leaves an empty text. On success the text is cut to size - 1
    // units, without notice, and the rest of the buffer is zero. A size of 0 still clears `buffer[0]`.
    bool GetString(std::uint32_t key, char * buffer, unsigned int size) const;
    bool GetString(char const * name, char * buffer, unsigned int size) const;
    bool GetWString(std::uint32_t key, char16_t * buffer, unsigned int size) const;
    bool GetWString(char const * name, char16_t * buffer, unsigned int size) const;

    // Fields of the current table; 0 in the null table.
    unsigned int GetCount() const;

    // Key and type of a field in stored order; `index` must be below GetCount().
    std::uint32_t GetAt(unsigned int index) const;
    BCTypes::FieldEntryType GetTypeFromIndex(unsigned int index) const;

    // Appends a pointer to each field of the current table, in stored order; what `fields` held stays.
    void GetFieldInfos(std::vector<BCInternal::FieldInfo const *> & fields) const;

    // CRC-32 of the image as it was stored with it or computed at its creation, an identity of the contents;
    // 0 before any image is set.
    std::uint32_t GetCRC() const { return crc; }

    // The image; null and 0 before any is set.
    void const * GetBinaryConfigData() const { return data.get(); }

    unsigned int GetBinaryConfigDataSize() const { return dataSize; }

    // Name of the stream the image came from, cut to 260 characters, or "InMemoryFile"; "" before any image
    // is set.
    char const * GetFilename() const { return filename.c_str(); }

private:
    friend class BCInternal::Access;

    // A view of one table. The null table, which stands for one that does not exist, has all pointers null.
    struct TableInfo {
        BCInternal::FieldInfo const * fieldsBegin = nullptr;
        BCInternal::FieldInfo const * fieldsEnd = nullptr;
        char const * data = nullptr; // the table's data area
        bool unsorted = false;
    };

    struct TableFrame {
        TableInfo current;
        std::vector<TableInfo> stack; // tables to return to, innermost last
    };

    BCInternal::FieldInfo const * FindField(std::uint32_t key) const;
    BCInternal::FieldInfo const * FindFieldInfo(TableInfo const & table, std::uint32_t key) const;

    // Where the value of a field of the current table begins; null unless there is one of exactly that type.
    char const * findValue(std::uint32_t key, BCTypes::FieldEntryType type) const;

    TableInfo & GetCurrTable() { return frames.back().current; }

    TableInfo const & GetCurrTable() const { return frames.back().current; }

    std::vector<TableInfo> & GetCurrTableStack() { return frames.back().stack; }

    std::vector<TableInfo> const & GetCurrTableStack() const { return frames.back().stack; }

    static TableInfo tableAt(char const * position, bool unsorted);
    void SetNullTable(TableInfo & table) const;

    // The null table when there is no image, or one whose root does not fit it: an image of the other byte
    // order.
    void SetRootTable(TableInfo & table) const;

    // Exchanges the image with the one in `holder` and sets the active cursor to its root. The cursor must
    // stand at the base: views that were saved earlier would point into the old image. `crc` is the caller's
    // to set.
    void SetData(ast::scoped_array<char> & holder, unsigned int size);
    void SetFilename(char const * name);

    std::uint32_t crc = 0;
    ast::scoped_array<char> data;
    unsigned int dataSize = 0;
    fixedstring<260, tarnstring_trait<char>> filename;
    std::deque<TableFrame> frames; // never empty; the last one is active
};
