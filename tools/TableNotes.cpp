#include "tools/TableNotes.h"

#include "tools/NumberText.h"
#include "tools/TableView.h"

#include "Cross/Util/BinaryConfigIO.h"

#include <cstring>

namespace {

// Walks a sound image from its first byte to its last: its values stand in the order of their fields.
class TableAnnotator {
public:
    TableAnnotator(std::string_view image, unsigned int offset,
                   std::function<void(ByteNote const &)> const & note)
        : image(image), offset(offset), note(note) {}

    void Run() { noteTable(""); }

private:
    struct Record {
        std::uint32_t key;
        BCTypes::FieldEntryType type;
        std::uint32_t offset;
    };

    template <class T>
    T load(std::size_t place) const {
        T value;
        std::memcpy(&value, image.data() + place, sizeof(value));
        return value;
    }

    void take(std::size_t size, std::string const & meaning) {
        note({offset + position, static_cast<unsigned int>(size), meaning});
        position += static_cast<unsigned int>(size);
    }

    void noteTable(std::string const & prefix) {
        auto const count = load<std::uint32_t>(position);
        take(sizeof(count), prefix + "table of " + CountText(count, "field", "fields"));
        unsigned int const records = position;
        auto const values = static_cast<unsigned int>(position + count * sizeof(Record));
        for (std::uint32_t i = 0; i < count; ++i) {
            auto const record = load<Record>(position);
            take(sizeof(record), "field " + KeyText(record.key) + ", its value at " +
                                     std::to_string(offset + values + record.offset));
        }
        for (std::uint32_t i = 0; i < count; ++i) {
            auto const record = load<Record>(records + i * sizeof(Record));
            noteValue(record, values + record.offset);
        }
    }

    void noteValue(Record const & record, unsigned int place) {
        if (place > position)
            take(place - position, "unused");
        std::string const prefix = KeyText(record.key) + ": ";
        TableField const field{record.key, record.type, image.data() + place};
        if (field.IsTable())
            noteTable(prefix);
        else
            take(sizeOf(field), prefix + FieldText(field));
    }

    static std::size_t sizeOf(TableField const & field) {
        switch (field.type) {
        case BCTypes::Bool:
            return 1;
        case BCTypes::String:
            return std::strlen(field.value) + 1;
        case BCTypes::WString: {
            char const * end = field.value;
            while (end[0] != 0 || end[1] != 0)
                end += sizeof(char16_t);
            return static_cast<std::size_t>(end - field.value) + sizeof(char16_t);
        }
        default:
            return 4;
        }
    }

    std::string_view image;
    unsigned int offset;
    std::function<void(ByteNote const &)> const & note;
    unsigned int position = 0; // in the image
};

} // namespace

void AnnotateTable(std::string_view image, unsigned int offset,
                   std::function<void(ByteNote const &)> const & note) {
    auto const size = static_cast<unsigned int>(image.size());
    BinaryConfigIO::VerifyError error;
    if (BinaryConfigIO::Verify(image.data(), size, &error))
        return TableAnnotator(image, offset, note).Run();
    note({offset, 0, "no sound table: at " + std::to_string(offset + error.offset) + ", " + error.reason});
    if (size > 0)
        note({offset, size, "image of an attribute table"});
}
