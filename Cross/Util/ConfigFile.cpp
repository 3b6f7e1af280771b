#include "Cross/Util/ConfigFile.h"

#include "Cross/Util/ConfigFileLines.h"
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
#include <tuple>
#include <utility>

namespace {

using configlines::c_lineEnd;
using configlines::c_longestName;

constexpr std::size_t c_longestText = 2047;
constexpr std::size_t c_longestNumber = 31;

// A name in lower case, as it is stored and looked up. Of what callers give only the first characters count.
class LowerCased {
public:
    explicit LowerCased(std::string_view name) : size(name.size()) {
        std::transform(name.begin(), name.end(), text.begin(), [](char c) { return text::ToLower(c); });
    }

    static LowerCased Key(char const * key) {
        return LowerCased(std::string_view(key, strnlen(key, c_longestName)));
    }

    operator std::string_view() const { return {text.data(), size}; }

private:
    std::array<char, configlines::c_longestLine> text;
    std::size_t size;
};

// What a line of a file cannot hold in a key or a value.
bool isUnwritable(std::string_view text) {
    return text.find_first_of("=;") != std::string_view::npos ||
           text.find(c_lineEnd) != std::string_view::npos;
}

bool isMissing(char const * key) { return !key || !*key; }

// Adds an entry; one that stands already stays.
template <class Map>
auto & insertOnce(Map & map, std::string_view name, auto &&... value) {
    auto const place = map.lower_bound(name);
    if (place != map.end() && place->first == name)
        return place->second;
    return map
        .emplace_hint(place, std::piecewise_construct, std::forward_as_tuple(name),
                      std::forward_as_tuple(value...))
        ->second;
}

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
    arena.release();
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
    // More than the stream takes at once counts as a short write.
    if (stream->Write(content.data(), static_cast<unsigned int>(content.size())) == content.size() &&
        stream->Flush())
        return true;
    stream->Discard();
    dbTimeStampedTracefAux("Couldn't write config file %s", shown.c_str());
    return false;
}

char const * ConfigFile::GetSectionAt(unsigned int index) const {
    return index < sections.size() ? std::next(sections.begin(), index)->first.c_str() : "";
}

bool ConfigFile::SetSection(char const * section, char * previous, unsigned int previousSize) const {
    std::string const wanted = section ? section : ""; // `previous` may be where it stands
    if (previous)
        text::CopyCut(previous, previousSize, currentSection.c_str());
    if (!section || wanted.size() > c_longestName)
        return false;
    LowerCased const name(wanted);
    bool const exists = sections.contains(name);
    currentSection = exists ? std::string_view(name) : std::string_view();
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
    std::pmr::string const * const stored = find(key); // `value` may be where the key stands
    value[0] = 0;
    if (!stored || stored->size() >= size)
        return false;
    std::memcpy(value, stored->c_str(), stored->size() + 1);
    return true;
}

bool ConfigFile::GetString(char const * key, std::string & value) const {
    std::pmr::string const * const stored = isMissing(key) ? nullptr : find(key);
    bool const fits = stored && stored->size() <= c_longestText;
    value = fits ? std::string_view(*stored) : std::string_view();
    return fits;
}

bool ConfigFile::GetInt(char const * key, int & value) const {
    if (isMissing(key))
        return false;
    value = 0;
    std::pmr::string const * const stored = find(key);
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
    insertOnce(insertOnce(sections, currentSection), LowerCased::Key(key)) = value;
    return true;
}

bool ConfigFile::SetInt(char const * key, int value) { return SetString(key, std::to_string(value).c_str()); }

bool ConfigFile::Remove(char const * key) {
    auto const section = sections.find(currentSection);
    if (isMissing(key) || section == sections.end())
        return false;
    auto const entry = section->second.find(LowerCased::Key(key));
    if (entry == section->second.end())
        return false;
    section->second.erase(entry);
    return true;
}

void ConfigFile::readLines(ByteStream & stream) {
    configlines::Reader reader(stream);
    Section * section = nullptr;
    for (std::string_view text; reader.Next(text);) {
        configlines::Line const line = configlines::Parse(text);
        if (line.kind == configlines::Kind::header) {
            LowerCased const name(line.name);
            if (!section)
                currentSection = name;
            section = &insertOnce(sections, name);
        } else if (line.kind == configlines::Kind::entry && section) {
            insertOnce(*section, LowerCased(line.name), line.value);
        }
    }
    loaded = section != nullptr;
}

ConfigFile::Section const * ConfigFile::current() const {
    auto const found = sections.find(currentSection);
    return found == sections.end() ? nullptr : &found->second;
}

std::pmr::string const * ConfigFile::find(char const * key) const {
    Section const * const section = current();
    if (!section)
        return nullptr;
    auto const found = section->find(LowerCased::Key(key));
    return found == section->end() ? nullptr : &found->second;
}
