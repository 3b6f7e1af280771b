#include "Cross/Util/BinaryConfigFormat.h"
#include "Cross/Util/BinaryConfigIO.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <vector>

namespace BinaryConfigIO {

namespace {

using BCInternal::AlignmentOf;
using BCInternal::c_countSize;
using BCInternal::FieldInfo;
using BCInternal::SwapBytes;

constexpr std::uint64_t c_fault = 0; // no value ends there

bool isTable(BCTypes::FieldEntryType type) {
    return type == BCTypes::Table || type == BCTypes::TableUnsorted;
}

// One pass over an image in stored order, with a stack of its own. Positions count from the start of the
// image. What is checked only moves forward, so each byte is looked at a bounded number of times however the
// offsets are made.
class Verifier {
public:
    Verifier(void const * image, unsigned int size) : image(static_cast<char const *>(image)), size(size) {}

    bool Run() {
        if (!image)
            return fail(0, "there is no image");
        bool sound = openTable(0, false);
        while (sound && !open.empty())
            sound = checkFields();
        if (sound && end != size)
            return fail(end, "bytes follow the last value");
        return sound;
    }

    VerifyError Error() const {
        if (isOfOtherByteOrder())
            return {0, "the image is stored for a platform of the other byte order"};
        return error;
    }

private:
    struct OpenTable {
        std::uint64_t nextRecord;
        std::uint64_t data; // where the records end
    };

    template <class T>
    T load(std::uint64_t position) const {
        T value;
        std::memcpy(&value, image + position, sizeof(value));
        return value;
    }

    bool fail(std::uint64_t offset, char const * reason) {
        error = {static_cast<unsigned int>(offset), reason};
        return false;
    }

    bool openTable(std::uint64_t position, bool unsorted) {
        if (open.size() > c_verifyDepth)
            return fail(position, "tables are nested too deeply");
        if (size - position < c_countSize)
            return fail(position, "a table begins too close to the end");
        std::uint64_t const count = load<std::uint32_t>(position);
        std::uint64_t const records = position + c_countSize;
        if (count > (size - records) / sizeof(FieldInfo))
            return fail(position, "a table has more fields than the image has room for");
        end = records + count * sizeof(FieldInfo);
        open.push_back({records, end});
        return unsorted ? checkKeysDiffer(records) : checkKeysAscend(records);
    }

    bool checkKeysAscend(std::uint64_t records) {
        for (std::uint64_t record = records; record + sizeof(FieldInfo) < end; record += sizeof(FieldInfo)) {
            if (load<std::uint32_t>(record) >= load<std::uint32_t>(record + sizeof(FieldInfo)))
                return fail(record + sizeof(FieldInfo), "the keys of a sorted table do not ascend");
        }
        return true;
    }

    bool checkKeysDiffer(std::uint64_t records) {
        keys.clear();
        for (std::uint64_t record = records; record < end; record += sizeof(FieldInfo))
            keys.push_back(load<std::uint32_t>(record));
        std::sort(keys.begin(), keys.end());
        if (std::adjacent_find(keys.begin(), keys.end()) != keys.end())
            return fail(records, "a table has two fields of one key");
        return true;
    }

    // Checks the fields of the innermost table up to a nested one, which it opens; after the last it closes
    // the table.
    bool checkFields() {
        std::uint64_t const data = open.back().data;
        std::uint64_t position = end;
        for (std::uint64_t record = open.back().nextRecord; record != data; record += sizeof(FieldInfo)) {
            auto const type = load<BCTypes::FieldEntryType>(record + offsetof(FieldInfo, type));
            std::uint64_t const value = data + load<std::uint32_t>(record + offsetof(FieldInfo, offset));
            // Most fields are numbers, one behind the other.
            if (type <= BCTypes::Integer && value == position && value % 4 == 0 && size - value >= 4) {
                position = value + 4;
                continue;
            }
            if (!checkPlace(record, type, position, value))
                return false;
            if (isTable(type)) {
                open.back().nextRecord = record + sizeof(FieldInfo);
                return openTable(value, type == BCTypes::TableUnsorted);
            }
            position = endOfValue(value, type);
            if (position == c_fault)
                return false;
        }
        end = position;
        open.pop_back();
        return true;
    }

    // Whether a value may begin there when the one in front of it ends at `position`.
    bool checkPlace(std::uint64_t record, BCTypes::FieldEntryType type, std::uint64_t position,
                    std::uint64_t value) {
        unsigned int const alignment = AlignmentOf(type);
        if (alignment == 0)
            return fail(record + offsetof(FieldInfo, type), "a field is of no known type");
        if (value < position)
            return fail(record + offsetof(FieldInfo, offset),
                        "a value begins before the end of the one in front of it");
        if (value >= size)
            return fail(record + offsetof(FieldInfo, offset), "a value begins beyond the end of the image");
        if ((value & (alignment - 1)) != 0)
            return fail(record + offsetof(FieldInfo, offset), "a value is not aligned");
        for (; position < value; ++position) {
            if (image[position] != 0)
                return fail(position, "a byte between two values is not zero");
        }
        return true;
    }

    std::uint64_t endOfValue(std::uint64_t value, BCTypes::FieldEntryType type) {
        switch (type) {
        case BCTypes::Bool:
            return static_cast<unsigned char>(image[value]) <= 1 ? value + 1
                                                                 : fault(value, "a bool is neither 0 nor 1");
        case BCTypes::String:
            return endOfText(value);
        case BCTypes::WString:
            return endOfWideText(value);
        default:
            return size - value >= 4 ? value + 4
                                     : fault(value, "a number is cut off by the end of the image");
        }
    }

    std::uint64_t endOfText(std::uint64_t text) {
        void const * const terminator = std::memchr(image + text, 0, size - text);
        if (!terminator)
            return fault(text, "a text has no terminator");
        return static_cast<std::uint64_t>(static_cast<char const *>(terminator) - image) + 1;
    }

    std::uint64_t endOfWideText(std::uint64_t text) {
        for (std::uint64_t unit = text; size - unit >= 2; unit += 2) {
            if (load<char16_t>(unit) == 0)
                return unit + 2;
        }
        return fault(text, "a wide text has no terminator");
    }

    std::uint64_t fault(std::uint64_t offset, char const * reason) {
        fail(offset, reason);
        return c_fault;
    }

    // Looks at the root alone: its count fits the image and its types are known only when their bytes are
    // swapped.
    bool isOfOtherByteOrder() const {
        if (!image || size < c_countSize)
            return false;
        std::uint64_t const count = SwapBytes(load<std::uint32_t>(0));
        if (count == 0 || count > (size - c_countSize) / sizeof(FieldInfo))
            return false;
        for (std::uint64_t record = c_countSize; record < c_countSize + count * sizeof(FieldInfo);
             record += sizeof(FieldInfo)) {
            std::uint32_t const type = SwapBytes(load<FieldInfo>(record).type);
            if (AlignmentOf(static_cast<BCTypes::FieldEntryType>(type)) == 0)
                return false;
        }
        return true;
    }

    char const * image;
    std::uint64_t size;
    std::uint64_t end = 0;       // of what was checked
    std::vector<OpenTable> open; // innermost last
    std::vector<std::uint32_t> keys;
    VerifyError error;
};

} // namespace

bool Verify(void const * image, unsigned int size, VerifyError * error) {
    Verifier verifier(image, size);
    bool const sound = verifier.Run();
    if (!sound && error)
        *error = verifier.Error();
    return sound;
}

} // namespace BinaryConfigIO
