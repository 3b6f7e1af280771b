#include "Cross/Util/CRCEntry.h"

#include "Cross/engine/core/Text.h"
#include "Cross/engine/diagnostics/Letters.h"

#include <bit>
#include <string>

int CRCEntry::s_indent = 0;

Dictionary keyedCRCEntry::s_dictionary;

namespace {

std::string formatFloat(float value) {
    std::string formatted;
    text::Printf(formatted, "%.9e <%x>", static_cast<double>(value), std::bit_cast<std::uint32_t>(value));
    return formatted;
}

std::string formatVector(Math::Vector2f const & vector) {
    return "(" + formatFloat(vector.x) + ", " + formatFloat(vector.y) + ")";
}

std::string formatVector(Math::Vector3f const & vector) {
    return "(" + formatFloat(vector.x) + ", " + formatFloat(vector.y) + ", " + formatFloat(vector.z) + ")";
}

template <std::size_t N>
std::string formatRows(Math::Vector3f const (&rows)[N]) {
    std::string formatted;
    for (Math::Vector3f const & row : rows)
        formatted += (formatted.empty() ? "" : ", ") + formatVector(row);
    return formatted;
}

void printText(LogFile & log, char const * text) { log.printf("[ %s ]\n", text); }

void printInteger(LogFile & log, int value) { log.printf("[ %d ]\n", value); }

} // namespace

void CRCEntry::Print(LogFile &) const {}

void CRCEntry::Indent(LogFile & log) {
    for (int depth = 0; depth < s_indent; ++depth)
        log.puts("  ");
}

void keyedCRCEntry::Print(LogFile & log) const {
    char const * const name = s_dictionary.GetString(key);
    Indent(log);
    log.puts(name);
    log.puts(": ");
}

void pushCRCEntry::Print(LogFile & log) const {
    keyedCRCEntry::Print(log);
    log.puts("\n");
    Indent(log);
    log.puts("{\n");
    ++s_indent;
}

unsigned int pushCRCEntry::SizeOf() const { return sizeof(*this); }

pushCRCEntry::~pushCRCEntry() = default;

void popCRCEntry::Print(LogFile & log) const {
    --s_indent;
    Indent(log);
    log.puts("}\n");
}

unsigned int popCRCEntry::SizeOf() const { return sizeof(*this); }

popCRCEntry::~popCRCEntry() = default;

void commentCRCEntry::Print(LogFile & log) const {
    Indent(log);
    log.puts(text.c_str());
    log.puts("\n");
}

unsigned int commentCRCEntry::SizeOf() const { return sizeof(*this); }

commentCRCEntry::~commentCRCEntry() = default;

void valueCRCEntryPrint(LogFile & log, bool value) {
    log.printf("[ %s <%x> ]\n", value ? "true" : "false", value ? 1u : 0u);
}

void valueCRCEntryPrint(LogFile & log, std::uint8_t value) { printInteger(log, value); }

void valueCRCEntryPrint(LogFile & log, std::uint16_t value) { printInteger(log, value); }

void valueCRCEntryPrint(LogFile & log, std::int32_t value) { printInteger(log, value); }

void valueCRCEntryPrint(LogFile & log, std::uint32_t value) { printInteger(log, static_cast<int>(value)); }

void valueCRCEntryPrint(LogFile & log, std::uint64_t value) {
    log.printf("[ %llu ]\n", static_cast<unsigned long long>(value));
}

void valueCRCEntryPrint(LogFile & log, float value) { printText(log, formatFloat(value).c_str()); }

void valueCRCEntryPrint(LogFile & log, Math::Vector2f const & value) {
    printText(log, formatVector(value).c_str());
}

void valueCRCEntryPrint(LogFile & log, Math::Vector3f const & value) {
    printText(log, formatVector(value).c_str());
}

void valueCRCEntryPrint(LogFile & log, Math::Matrix3f const & value) {
    printText(log, formatRows(value.rows).c_str());
}

void valueCRCEntryPrint(LogFile & log, Math::Matrix43f const & value) {
    printText(log, formatRows(value.rows).c_str());
}

void valueCRCEntryPrint(LogFile & log, FourLetterID const & value) {
    char letters[5];
    dbDecode4Letters(letters, value.GetValue());
    printText(log, letters);
}

void valueCRCEntryPrint(LogFile & log, fixedstring<63, tarnstring_trait<char>> const & value) {
    printText(log, value.c_str());
}

void valueCRCEntryPrint(LogFile & log, fixedstring<255, tarnstring_trait<char>> const & value) {
    printText(log, value.c_str());
}
