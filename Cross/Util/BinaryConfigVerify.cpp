#include "Cross/Util/BinaryConfigFlatten.h"
#include "Cross/Util/BinaryConfigIO.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <vector>

namespace BinaryConfigIO {

namespace {

using BCInternal::FieldInfo;
using BCInternal::SwapBytes;

constexpr std::uint64_t c_countSize = 4;

bool isKnown(std::uint32_t type) {
    return type <= BCTypes::WString || type == BCTypes::Table || type == BCTypes::TableUnsorted;
}

// One pass over an image in stored order, with a stack of its own. `end` is where the last value seen ends:
// it only moves forward, so each byte is looked at a bounded number of times however the offsets are made.
class Verifier {
public:
    Verifier(void const * image, unsigned int size) : image(static_cast<char const *>(image)), size(size) {}

    bool Run() {
        if (!image)
            return fail(0, "there is no image");
        if (!openTable(0, false))
            return false;
        while (!open.empty()) {
            OpenTable & table = open.back();
            if (table.nextRecord == table.data)
                open.pop_back();
            else if (!checkField(table))
                return false;
        }
        return end == size || fail(end, "bytes follow the last value");
    }

    VerifyError Error() const {
        return isOfOtherByteOrder()
                   ? VerifyError{0, "the image is stored for a platform of the other byte order"}
                   : error;
    }

private:
    // Positions count from the start of the image; the records end where the data area begins.
    struct OpenTable {
        std::uint64_t nextRecord;
        std::uint64_t data;
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
        return std::adjacent_find(keys.begin(), keys.end()) == keys.end() ||
               fail(records, "a table has two fields of one key");
    }

    bool checkField(OpenTable & table) {
        std::uint64_t const record = table.nextRecord;
        table.nextRecord += sizeof(FieldInfo);
        auto const field = load<FieldInfo>(record);
        std::uint64_t const value = table.data + field.offset;
        switch (field.type) {
        case BCTypes::Float:
        case BCTypes::Integer:
            return moveTo(value, 4, record) && checkWord();
        case BCTypes::Bool:
            return moveTo(value, 1, record) && checkBool();
        case BCTypes::String:
            return moveTo(value, 1, record) && checkText();
        case BCTypes::WString:
            return moveTo(value, 2, record) && checkWideText();
        case BCTypes::Table:
            return moveTo(value, 4, record) && openTable(value, false);
        case BCTypes::TableUnsorted:
            return moveTo(value, 4, record) && openTable(value, true);
        }
        return fail(record + offsetof(FieldInfo, type), "a field is of no known type");
    }

    // Moves `end` to where the value of the field with that record begins.
    bool moveTo(std::uint64_t value, unsigned int alignment, std::uint64_t record) {
        std::uint64_t const offsetPosition = record + offsetof(FieldInfo, offset);
        if (value < end)
            return fail(offsetPosition, "a value begins before the end of the one in front of it");
        if (value >= size)
            return fail(offsetPosition, "a value begins beyond the end of the image");
        if (value % alignment != 0)
            return fail(offsetPosition, "a value is not aligned");
        for (; end < value; ++end) {
            if (image[end] != 0)
                return fail(end, "a byte between values is not zero");
        }
        return true;
    }

    bool checkWord() {
        if (size - end < 4)
            return fail(end, "a number is cut off by the end of the image");
        end += 4;
        return true;
    }

    bool checkBool() {
        if (static_cast<unsigned char>(image[end]) > 1)
            return fail(end, "a bool is neither 0 nor 1");
        ++end;
        return true;
    }

    bool checkText() {
        void const * const terminator = std::memchr(image + end, 0, size - end);
        if (!terminator)
            return fail(end, "a text has no terminator");
        end = static_cast<std::uint64_t>(static_cast<char const *>(terminator) - image) + 1;
        return true;
    }

    bool checkWideText() {
        for (std::uint64_t unit = end; size - unit >= 2; unit += 2) {
            if (load<char16_t>(unit) == 0) {
                end = unit + 2;
                return true;
            }
        }
        return fail(end, "a wide text has no terminator");
    }

    // Looks at the root alone: its count fits the image, and its types are known, only when their bytes are
    // swapped.
    bool isOfOtherByteOrder() const {
        if (!image || size < c_countSize)
            return false;
        std::uint64_t const count = SwapBytes(load<std::uint32_t>(0));
        if (count == 0 || count > (size - c_countSize) / sizeof(FieldInfo))
            return false;
        for (std::uint64_t i = 0; i < count; ++i) {
            if (!isKnown(SwapBytes(
                    load<std::uint32_t>(c_countSize + i * sizeof(FieldInfo) + offsetof(FieldInfo, type)))))
                return false;
        }
        return true;
    }

    char const * image;
    std::uint64_t size;
    std::uint64_t end = 0;
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
