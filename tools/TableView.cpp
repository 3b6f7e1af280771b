#include "tools/TableView.h"

#include "tools/InputFile.h"
#include "tools/NumberText.h"
#include "tools/Quote.h"
#include "tools/tablesource/TableSource.h"

#include "Cross/engine/core/Text.h"

#include <cmath>
#include <cstring>
#include <ostream>
#include <string_view>

namespace {

// Values stand unaligned in the image where their type allows it.
template <class T>
T load(char const * bytes) {
    T value;
    std::memcpy(&value, bytes, sizeof(value));
    return value;
}

std::u16string loadWide(char const * bytes) {
    std::u16string text;
    for (auto unit = load<char16_t>(bytes); unit != 0; unit = load<char16_t>(bytes += sizeof(unit)))
        text += unit;
    return text;
}

char const * typeName(BCTypes::FieldEntryType type) {
    switch (type) {
    case BCTypes::Float:
        return "Float";
    case BCTypes::Integer:
        return "Integer";
    case BCTypes::Bool:
        return "Bool";
    case BCTypes::String:
        return "String";
    case BCTypes::WString:
        return "WString";
    case BCTypes::Table:
        return "Table";
    case BCTypes::TableUnsorted:
        return "TableUnsorted";
    }
    return "unknown";
}

std::string countText(std::size_t count) { return CountText(count, "field", "fields"); }

std::string valueText(TableField const & field) {
    switch (field.type) {
    case BCTypes::Float: {
        auto const value = load<float>(field.value);
        // Two NaNs may differ.
        return std::isnan(value) ? "nan (" + KeyText(load<std::uint32_t>(field.value)) + ")"
                                 : FloatText(value);
    }
    case BCTypes::Integer:
        return std::to_string(load<std::int32_t>(field.value));
    case BCTypes::Bool:
        return field.value[0] != 0 ? "true" : "false";
    case BCTypes::String:
        return Quote(std::string_view(field.value));
    case BCTypes::WString:
        return Quote(loadWide(field.value));
    case BCTypes::Table:
    case BCTypes::TableUnsorted:
        break;
    }
    return "of " + countText(load<std::uint32_t>(field.value));
}

std::string jsonValue(TableField const & field) {
    switch (field.type) {
    case BCTypes::Float: {
        auto const value = load<float>(field.value);
        return std::isfinite(value) ? FloatText(value) : Quote(FloatText(value));
    }
    case BCTypes::String:
        return QuoteJson(std::string_view(field.value));
    case BCTypes::WString:
        return QuoteJson(loadWide(field.value));
    default:
        return valueText(field);
    }
}

std::size_t countFields(BinaryConfig & config) {
    std::vector<TableField> const fields = FieldsOf(config);
    std::size_t count = fields.size();
    for (TableField const & field : fields) {
        if (!field.IsTable())
            continue;
        config.TablePush(field.key);
        count += countFields(config);
        config.TablePop();
    }
    return count;
}

void printFields(BinaryConfig & config, NameList const & names, std::string const & indent,
                 std::ostream & out) {
    for (TableField const & field : FieldsOf(config)) {
        out << indent << names.Label(field.key) << ": " << FieldText(field) << '\n';
        if (!field.IsTable())
            continue;
        config.TablePush(field.key);
        printFields(config, names, indent + "    ", out);
        config.TablePop();
    }
}

void printJsonFields(BinaryConfig & config, NameList const & names, std::string const & indent,
                     std::ostream & out);

void printJsonField(TableField const & field, BinaryConfig & config, NameList const & names,
                    std::string const & indent, std::ostream & out) {
    out << indent << R"({"key": ")" << KeyText(field.key) << '"';
    if (std::string const * const name = names.Find(field.key))
        out << R"(, "name": )" << QuoteJson(*name);
    out << R"(, "type": ")" << typeName(field.type) << '"';
    if (field.IsTable()) {
        config.TablePush(field.key);
        out << R"(, "fields": )";
        printJsonFields(config, names, indent, out);
        config.TablePop();
    } else {
        out << R"(, "value": )" << jsonValue(field);
    }
    out << '}';
}

void printJsonFields(BinaryConfig & config, NameList const & names, std::string const & indent,
                     std::ostream & out) {
    out << '[';
    char const * separator = "\n";
    for (TableField const & field : FieldsOf(config)) {
        out << std::exchange(separator, ",\n");
        printJsonField(field, config, names, indent + "  ", out);
    }
    out << '\n' << indent << ']';
}

} // namespace

bool NameList::Load(std::string const & path, std::vector<std::string> & findings) {
    ByteStreamProxy const stream = OpenForReading(path, findings);
    if (!stream)
        return false;
    std::string text(stream->GetLen(), '\0');
    if (stream->Read(text.data(), stream->GetLen()) != text.size()) {
        findings.push_back(path + ": cannot be read");
        return false;
    }
    for (std::size_t begin = 0; begin < text.size();) {
        std::size_t const end = std::min(text.find('\n', begin), text.size());
        bool const hasReturn = end > begin && text[end - 1] == '\r';
        add(text.substr(begin, end - begin - (hasReturn ? 1 : 0)));
        begin = end + 1;
    }
    return true;
}

void NameList::add(std::string const & name) {
    if (name.empty())
        return;
    auto const [entry, isNew] = names.emplace(NameHash(name.data(), name.size()), name);
    if (!isNew && entry->second != name)
        entry->second.clear();
}

std::string const * NameList::Find(std::uint32_t key) const {
    auto const entry = names.find(key);
    return entry == names.end() || entry->second.empty() ? nullptr : &entry->second;
}

std::string NameList::Label(std::uint32_t key) const {
    std::string const * const name = Find(key);
    return name ? TableSource::EscapeName(*name) : KeyText(key);
}

std::string KeyText(std::uint32_t key) {
    std::string digits;
    text::Printf(digits, "0x%08X", key);
    return digits;
}

std::vector<TableField> FieldsOf(BinaryConfig const & config) {
    std::vector<BCInternal::FieldInfo const *> infos;
    config.GetFieldInfos(infos);
    std::vector<TableField> fields;
    for (BCInternal::FieldInfo const * const info : infos) {
        // The data area of a table begins behind its last field.
        auto const data = reinterpret_cast<char const *>(infos.back() + 1);
        fields.push_back({info->key, info->type, data + info->offset});
    }
    return fields;
}

std::string FieldText(TableField const & field) {
    return typeName(field.type) + std::string(" ") + valueText(field);
}

std::string Summary(BinaryConfig & config) {
    return countText(countFields(config)) + ", " + std::to_string(config.GetBinaryConfigDataSize()) +
           " bytes, crc " + KeyText(config.GetCRC());
}

void PrintTree(BinaryConfig & config, NameList const & names, std::ostream & out) {
    printFields(config, names, "", out);
}

void PrintJson(BinaryConfig & config, NameList const & names, std::string const & file, std::ostream & out) {
    out << R"({"verdict": "good", "file": )" << QuoteJson(file) << R"(, "bytes": )"
        << config.GetBinaryConfigDataSize() << R"(, "crc": ")" << KeyText(config.GetCRC())
        << R"(", "fields": )";
    printJsonFields(config, names, "", out);
    out << "}\n";
}
