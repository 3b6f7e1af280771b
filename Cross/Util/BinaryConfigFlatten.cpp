#include "Cross/Util/BinaryConfigFlatten.h"

#include "Cross/Util/BinaryConfigAccess.h"
#include "Cross/Util/BinaryConfigEntry.h"
#include "Cross/engine/filesystem/ByteStreamAdapter.h"
#include "Cross/engine/filesystem/EndianConvertor.h"
#include "Cross/engine/filesystem/RamStream.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <limits>
#include <stdexcept>
#include <vector>

namespace BCInternal {

namespace {

using Entry = Access::Entry;

static_assert(std::endian::native == std::endian::little,
              "wide text goes into an image as it lies in memory");

constexpr unsigned int c_firstAllocation = 0x1000;
constexpr std::size_t c_wordsPerField = 3;

template <class T>
T valueOf(Entry const & entry) {
    T value;
    std::memcpy(&value, entry.Value(), sizeof(value));
    return value;
}

// Walks the tree depth first, with a stack of its own: tables may be nested deeper than the program's stack.
// Every open table has its items on one stack and the words of its field records on another.
class Flattener {
public:
    explicit Flattener(ByteStreamAdapter & out) : out(out) {}

    void WriteAll(Entry const & root) {
        openTable(root);
        while (!open.empty()) {
            if (open.back().nextItem < items.size())
                writeField();
            else
                closeTable();
        }
    }

private:
    struct Item {
        std::uint32_t key;
        Entry const * entry;
    };

    struct OpenTable {
        std::size_t firstItem;
        std::size_t nextItem;
        unsigned int recordsPosition;
        unsigned int dataPosition;
    };

    // Writes the count and keeps room for the records, which are known only when the values are written.
    void openTable(Entry const & table) {
        std::size_t const firstItem = items.size();
        pushItems(table);
        std::size_t const count = items.size() - firstItem;
        if (count > std::numeric_limits<unsigned int>::max() / (c_wordsPerField * sizeof(std::uint32_t)))
            throw std::length_error("attribute table: too many fields");
        out.Write(static_cast<std::uint32_t>(count));
        unsigned int const recordsPosition = out.GetStreamPos();
        out.Write(records.data() + c_wordsPerField * firstItem,
                  static_cast<unsigned int>(c_wordsPerField * count));
        open.push_back({firstItem, firstItem, recordsPosition, out.GetStreamPos()});
    }

    void pushItems(Entry const & table) {
        auto const firstItem = static_cast<std::ptrdiff_t>(items.size());
        if (table.children) {
            for (Entry const * entry = table.children->First(); entry; entry = entry->nextSibling)
                items.push_back({entry->key, entry});
        }
        if (table.type != BCTypes::TableUnsorted)
            std::sort(items.begin() + firstItem, items.end(),
                      [](Item const & left, Item const & right) { return left.key < right.key; });
        records.resize(c_wordsPerField * items.size());
    }

    void closeTable() {
        OpenTable const table = open.back();
        unsigned int const end = out.GetStreamPos();
        out.SetStreamPos(table.recordsPosition);
        out.Write(records.data() + c_wordsPerField * table.firstItem,
                  static_cast<unsigned int>(records.size() - c_wordsPerField * table.firstItem));
        out.SetStreamPos(end);
        items.resize(table.firstItem);
        records.resize(c_wordsPerField * table.firstItem);
        open.pop_back();
    }

    void writeField() {
        OpenTable & table = open.back();
        std::size_t const index = table.nextItem++;
        Entry const & entry = *items[index].entry;
        align(alignmentOf(entry.type));
        std::uint32_t * const record = &records[c_wordsPerField * index];
        record[0] = entry.key;
        record[1] = entry.type;
        record[2] = out.GetStreamPos() - table.dataPosition;
        writeValue(entry);
    }

    static unsigned int alignmentOf(BCTypes::FieldEntryType type) {
        switch (type) {
        case BCTypes::Bool:
        case BCTypes::String:
            return 1;
        case BCTypes::WString:
            return 2;
        default:
            return 4;
        }
    }

    void align(unsigned int alignment) {
        static constexpr char c_zeros[4] = {};
        out.WriteBytes(c_zeros, -out.GetStreamPos() & (alignment - 1));
    }

    void writeValue(Entry const & entry) {
        switch (entry.type) {
        case BCTypes::Float:
            return out.Write(valueOf<float>(entry));
        case BCTypes::Integer:
            return out.Write(valueOf<std::int32_t>(entry));
        case BCTypes::Bool:
            return out.Write(valueOf<bool>(entry));
        case BCTypes::String:
        case BCTypes::WString:
            return out.WriteBytes(entry.Value(), entry.valueSize);
        case BCTypes::Table:
        case BCTypes::TableUnsorted:
            return openTable(entry);
        }
    }

    ByteStreamAdapter & out;
    std::vector<Item> items;
    std::vector<std::uint32_t> records;
    std::vector<OpenTable> open;
};

} // namespace

void Flatten(BinaryConfigCreator const & creator, PlatformType platform, RamStream & stream) {
    stream.Open(c_firstAllocation, c_streamWrite);
    EndianConvertor convertor(platform);
    ByteStreamAdapter out(&stream, nullptr);
    if (platform != 1)
        out.SetConverter(&convertor);
    Flattener(out).WriteAll(Access::Root(creator));
}

} // namespace BCInternal
