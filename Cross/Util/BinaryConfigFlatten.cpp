#include "Cross/Util/BinaryConfigFlatten.h"

#include "Cross/Util/BinaryConfigAccess.h"
#include "Cross/Util/BinaryConfigEntry.h"
#include "Cross/Util/BinaryConfigFormat.h"
#include "Cross/engine/core/SmallVector.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <numeric>
#include <stdexcept>
#include <utility>
#include <vector>

namespace BCInternal {

namespace {

using Entry = Access::Entry;

constexpr std::size_t c_noTable = std::numeric_limits<std::size_t>::max();
constexpr std::size_t c_rankSorted = 16;   // more fields are sorted faster by std::sort
constexpr std::size_t c_radixSorted = 256; // fewer fields are sorted faster by comparing

std::uint32_t wordOf(Entry const & entry) {
    std::uint32_t word;
    std::memcpy(&word, entry.Value(), sizeof(word));
    return word;
}

// Writes a tree depth first, with lists instead of recursion: tables may be nested deeper than the program's
// stack.
class Flattener {
public:
    // The image must have room for the bound of the builder.
    Flattener(char * image, bool swapsWords) : image(image), end(image), swapsWords(swapsWords) {}

    // Gives the size of the image.
    unsigned int WriteAll(Entry const & root) {
        openTable(root);
        while (current != c_noTable) {
            Table & table = tables[current];
            if (reinterpret_cast<char *>(table.nextRecord) == table.data)
                current = table.parent;
            else
                writeField(table);
        }
        return static_cast<unsigned int>(end - image);
    }

private:
    struct Table {
        Entry const * entry;
        FieldInfo * nextRecord;
        char * data; // where the records end
        std::size_t parent;
    };

    void openTable(Entry const & entry) {
        std::size_t const count = entry.children ? entry.children->InOrder().size() : 0;
        writeWord(static_cast<std::uint32_t>(count));
        auto * const records = reinterpret_cast<FieldInfo *>(end);
        for (std::size_t place = 0; place < count; ++place) {
            Entry const & child = *entry.children->InOrder()[place];
            records[place] = {child.key, child.type, static_cast<std::uint32_t>(place)};
        }
        if (entry.type != BCTypes::TableUnsorted)
            sortByKey(records, count);
        end += count * sizeof(FieldInfo);
        tables.push_back({&entry, records, end, current});
        current = tables.size() - 1;
    }

    void sortByKey(FieldInfo * records, std::size_t count) {
        if (count <= c_rankSorted)
            rankSort(records, count);
        else if (count < c_radixSorted)
            std::sort(records, records + count,
                      [](FieldInfo const & left, FieldInfo const & right) { return left.key < right.key; });
        else
            radixSort(records, count);
    }

    // Counts the smaller keys of each, which takes no branch that a processor could guess wrong.
    static void rankSort(FieldInfo * records, std::size_t count) {
        FieldInfo unsorted[c_rankSorted];
        std::copy_n(records, count, unsorted);
        for (std::size_t i = 0; i < count; ++i) {
            std::size_t rank = 0;
            for (std::size_t other = 0; other < count; ++other)
                rank += unsorted[other].key < unsorted[i].key;
            records[rank] = unsorted[i];
        }
    }

    // A pass per byte of the key, from the lowest, each of which keeps the order of the one before. Four
    // passes end where they began.
    void radixSort(FieldInfo * records, std::size_t count) {
        scratch.resize(count);
        FieldInfo * from = records;
        FieldInfo * to = scratch.data();
        for (unsigned int shift = 0; shift < 32; shift += 8) {
            auto const byteOf = [shift](FieldInfo const & record) { return record.key >> shift & 0xFF; };
            std::size_t places[257] = {};
            for (std::size_t i = 0; i < count; ++i)
                ++places[byteOf(from[i]) + 1];
            std::partial_sum(std::begin(places), std::end(places), std::begin(places));
            for (std::size_t i = 0; i < count; ++i)
                to[places[byteOf(from[i])]++] = from[i];
            std::swap(from, to);
        }
    }

    // Until here the offset of a record was the place of the field in the order of adding.
    void writeField(Table & table) {
        FieldInfo & record = *table.nextRecord++;
        Entry const & field = *table.entry->children->InOrder()[record.offset];
        align(AlignmentOf(field.type));
        record = {stored(field.key), BCTypes::FieldEntryType(stored(field.type)),
                  stored(static_cast<std::uint32_t>(end - table.data))};
        writeValue(field);
    }

    void align(unsigned int alignment) {
        while ((end - image) % alignment != 0)
            *end++ = 0;
    }

    void writeValue(Entry const & field) {
        switch (field.type) {
        case BCTypes::Float:
        case BCTypes::Integer:
            writeWord(wordOf(field));
            break;
        case BCTypes::Bool:
        case BCTypes::String:
        case BCTypes::WString:
            end = std::copy_n(field.Value(), field.valueSize, end);
            break;
        case BCTypes::Table:
        case BCTypes::TableUnsorted:
            openTable(field);
            break;
        }
    }

    void writeWord(std::uint32_t word) {
        word = stored(word);
        std::memcpy(end, &word, sizeof(word));
        end += sizeof(word);
    }

    std::uint32_t stored(std::uint32_t word) const { return swapsWords ? SwapBytes(word) : word; }

    char * image;
    char * end;
    bool swapsWords;
    ast::smallvector<Table, 16> tables; // in the order of opening
    std::size_t current = c_noTable;
    std::vector<FieldInfo> scratch; // of sorting
};

} // namespace

void Flatten(BinaryConfigCreator const & creator, PlatformType platform, FlatImage & image) {
    std::uint64_t const bound = Access::ImageBound(creator);
    if (bound > std::numeric_limits<unsigned int>::max())
        throw std::length_error("BinaryConfigCreator: an image of 4 GiB");
    image.bytes.reset(new char[bound]);
    image.size = Flattener(image.bytes.get(), platform > 1).WriteAll(Access::Root(creator));
}

} // namespace BCInternal
