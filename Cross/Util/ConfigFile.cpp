#include "Cross/Util/ConfigFile.h"

#include "Cross/engine/core/Text.h"
#include "Cross/engine/core/Utf.h"
#include "Cross/engine/diagnostics/Trace.h"
#include "Cross/engine/filesystem/ByteStream.h"
#include "Cross/engine/filesystem/FilePathHDRaw.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <limits>
#include <utility>

namespace {

constexpr std::size_t c_longestLine = 1023;
constexpr std::size_t c_longestName = 255; // of a key or a section, as callers give it
constexpr std::size_t c_longestText = 2047;
constexpr std::size_t c_longestNumber = 31;
constexpr std::string_view c_lineEnd = "\r\n";

std::string lowerCased(std::string_view text) {
    std::string lower(text);
    std::transform(lower.begin(), lower.end(), lower.begin(), [](char c) { return text::ToLower(c); });
    return lower;
}

// A key as it is looked up.
std::string keyOf(char const * key) { return lowerCased(std::string_view(key).substr(0, c_longestName)); }

bool isBlank(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

std::string_view trimmed(std::string_view text) {
    while (!text.empty() && isBlank(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && isBlank(text.back()))
        text.remove_suffix(1);
    return text;
}

// What a line of a file cannot hold in a key or a value.
bool isUnwritable(std::string_view text) {
    return text.find_first_of("=;") != std::string_view::npos ||
           text.find(c_lineEnd) != std::string_view::npos;
}

bool isMissing(char const * key) { return !key || !*key; }

// The lines of a stream, each at most c_longestLine bytes, without their ends.
class LineReader {
public:
    explicit LineReader(ByteStream & stream) : stream(stream) {}

    bool Next(std::string_view & line) {
        if (end - begin < c_longestLine)
            refill();
        std::string_view const window(buffer.data() + begin, std::min(end - begin, c_longestLine));
        std::size_t const length = std::min(window.find(c_lineEnd), window.size());
        line = window.substr(0, length);
        begin += std::min(length + c_lineEnd.size(), window.size());
        return !window.empty();
    }

private:
    void refill() {
        std::memmove(buffer.data(), buffer.data() + begin, end - begin);
        end -= std::exchange(begin, 0);
        unsigned int count = 1;
        for (; count > 0 && end < buffer.size(); end += count)
            count = stream.Read(buffer.data() + end, static_cast<unsigned int>(buffer.size() - end));
    }

    ByteStream & stream;
    std::array<char, 16 * 1024> buffer;
    std::size_t begin = 0;
    std::size_t end = 0;
};

} // namespace

ConfigFile::ConfigFile(char const * filename) { Load(filename); }

bool ConfigFile::Load(char const * path) {
    if (!path)
        return loaded;
    std::u16string wide;
    utf::ToUtf16Strict(path, wide);
    return Load(wide.c_str());
}

bool ConfigFile::Load(char16_t const * path) {
    if (!path)
        return loaded;
    filename = path;
    ByteStreamProxy const stream(FilePathHDRaw::UnaliasedFileOpen(filename.c_str(), c_streamRead, false));
    return Load(stream.Get());
}

bool ConfigFile::Load(ByteStream * stream) {
    sections.clear();
    currentSection.clear();
    loaded = false;
    if (stream)
        readLines(*stream);
    return loaded;
}

bool ConfigFile::Save(char16_t const * path) const {
    std::u16string const target = path ? path : filename;
    std::string const shown = utf::ToUtf8(target);
    ByteStreamProxy const stream(FilePathHDRaw::UnaliasedFileOpen(target.c_str(), c_streamWrite, false));
    if (!stream) {
        dbTimeStampedTracefAux("Couldn't open config file %s for writing", shown.c_str());
        return false;
    }
    std::string content;
    for (auto const & [name, section] : sections) {
        content.append("[").append(name).append("]").append(c_lineEnd);
        for (auto const & [key, value] : section)
            content.append(key).append("=").append(value).append(c_lineEnd);
    }
    content.append(c_lineEnd);
    auto const size = static_cast<unsigned int>(content.size());
    if (size == content.size() && stream->Write(content.data(), size) == size && stream->Flush())
        return true;
    stream->Discard();
    dbTimeStampedTracefAux("Couldn't write config file %s", shown.c_str());
    return false;
}

char const * ConfigFile::GetSectionAt(unsigned int index) const {
    return index < sections.size() ? std::next(sections.begin(), index)->first.c_str() : "";
}

bool ConfigFile::SetSection(char const * section, char * previous, unsigned int previousSize) const {
    std::string const wanted = lowerCased(section ? section : ""); // `previous` may be where it stands
    if (previous)
        text::CopyCut(previous, previousSize, currentSection.c_str());
    if (!section || wanted.size() > c_longestName)
        return false;
    bool const exists = sections.contains(wanted);
    currentSection = exists ? wanted : "";
    return exists;
}

unsigned int ConfigFile::GetKeyCount() const {
    Section const * const section = current();
    return section ? static_cast<unsigned int>(section->size()) : 0;
}

char const * ConfigFile::GetKeyAt(unsigned int index) const {
    Section const * const section = current();
    if (!section)
        return nullptr;
    return index < section->size() ? std::next(section->begin(), index)->first.c_str() : "";
}

bool ConfigFile::GetString(char const * key, char * value, unsigned int size) const {
    if (isMissing(key) || !value || size == 0)
        return false;
    std::string const * const stored = find(key); // `value` may be where the key stands
    value[0] = 0;
    if (!stored || stored->size() >= size)
        return false;
    std::memcpy(value, stored->c_str(), stored->size() + 1);
    return true;
}

bool ConfigFile::GetString(char const * key, std::string & value) const {
    std::string const * const stored = isMissing(key) ? nullptr : find(key);
    bool const fits = stored && stored->size() <= c_longestText;
    value = fits ? *stored : std::string();
    return fits;
}

bool ConfigFile::GetInt(char const * key, int & value) const {
    if (isMissing(key))
        return false;
    value = 0;
    std::string const * const stored = find(key);
    if (!stored || stored->size() > c_longestNumber)
        return false;
    char * end = nullptr;
    std::int64_t const number = std::strtoll(stored->c_str(), &end, 10);
    if (end != stored->c_str() + stored->size())
        return false;
    value = static_cast<int>(
        std::clamp<std::int64_t>(number, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()));
    return true;
}

bool ConfigFile::SetString(char const * key, char const * value) {
    if (isMissing(key) || !value || isUnwritable(key) || isUnwritable(value))
        return false;
    sections[currentSection][keyOf(key)] = value;
    return true;
}

bool ConfigFile::SetInt(char const * key, int value) { return SetString(key, std::to_string(value).c_str()); }

bool ConfigFile::Remove(char const * key) {
    auto const section = sections.find(currentSection);
    return !isMissing(key) && section != sections.end() && section->second.erase(keyOf(key)) > 0;
}

void ConfigFile::readLines(ByteStream & stream) {
    LineReader reader(stream);
    Section * section = nullptr;
    std::string firstSection;
    for (std::string_view line; reader.Next(line);)
        parseLine(trimmed(line), section, firstSection);
    loaded = section != nullptr;
    currentSection = firstSection;
}

// `section` receives the keys, null before the first header, whose name goes to `firstSection`.
void ConfigFile::parseLine(std::string_view line, Section *& section, std::string & firstSection) {
    if (line.empty() || line.front() == ';')
        return;
    if (line.front() == '[') {
        if (line.back() != ']')
            return;
        std::string const name = lowerCased(trimmed(line.substr(1, line.size() - 2)));
        if (!section)
            firstSection = name;
        section = &sections[name];
        return;
    }
    std::size_t const equals = line.find('=');
    if (section && equals != 0 && equals != std::string_view::npos)
        section->emplace(lowerCased(trimmed(line.substr(0, equals))), trimmed(line.substr(equals + 1)));
}

ConfigFile::Section const * ConfigFile::current() const {
    auto const found = sections.find(currentSection);
    return found == sections.end() ? nullptr : &found->second;
}

std::string const * ConfigFile::find(char const * key) const {
    Section const * const section = current();
    if (!section)
        return nullptr;
    auto const found = section->find(keyOf(key));
    return found == section->end() ? nullptr : &found->second;
}
