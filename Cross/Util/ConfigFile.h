#pragma once

// ConfigFile: sectioned text files of "[section]" headers and "key=value" lines, held in memory as two levels
// of ordered maps. Names of sections and keys ignore case (letters A to Z); they come out in lower case, in
// byte order. The order of the file, its comments and blank lines are not kept.
//
// There is one current section, in which keys are read and written. After a load it is the first of the file;
// the section with the empty name is where a failed move ends.
//
// Paths are real ones, not aliased. Lines end with CR LF; of a line longer than 1,023 bytes each 1,023 bytes
// count as a line. Malformed lines are skipped, and of two equal keys in a section the first one stands.
//
// Threads: one; SetSection is const and yet moves the object. Lifetime: texts passed in are copied; texts
// given out last until the object changes.

#include "Cross/engine/core/Export.h"

#include <map>
#include <memory_resource>
#include <string>
#include <string_view>

class ByteStream;

class CROSS_UTIL_API ConfigFile {
public:
    // Empty, then Load of the name; null loads nothing.
    explicit ConfigFile(char const * filename = nullptr);
    ConfigFile(ConfigFile const &) = delete;
    ConfigFile & operator=(ConfigFile const &) = delete;

    // Replace all content by that of a file (a UTF-8 or a wide path) or of the rest of a stream. False, with
    // the object empty, when it cannot be opened or has no section header. A null filename changes nothing
    // and gives what IsLoaded gives.
    bool Load(char const * filename);
    bool Load(char16_t const * filename);
    bool Load(ByteStream * stream);

    // Whether the last load found a section.
    bool IsLoaded() const { return loaded; }

    // The last path given to Load, also one that failed; "" when it was no valid UTF-8.
    char16_t const * GetFilename() const { return filename.c_str(); }

    // Writes all content in the order of the maps; null means the path of the last Load. False, and the
    // reason in the trace, when it cannot be written; a file that stood there stays then.
    bool Save(char16_t const * path) const;

    unsigned int GetSectionCount() const { return static_cast<unsigned int>(sections.size()); }

    // In byte order; "" beyond the last.
    char const * GetSectionAt(unsigned int index) const;

    // Name of the current section, which may be of none that exists.
    char const * GetSection() const { return currentSection.c_str(); }

    // Moves to a section. Into `previous`, unless it is null or its size 0, goes the name of the section
    // before, cut to fit. False for a null name and one of 256 characters or more, which stay where they are,
    // and for an unknown one, which moves to the section with the empty name. Nothing is created.
    bool SetSection(char const * section, char * previous, unsigned int previousSize) const;

    // Of the current section, in byte order: 0 and null when it does not exist; "" beyond the last.
    unsigned int GetKeyCount() const;
    char const * GetKeyAt(unsigned int index) const;

    // The value of a key, of which 255 characters count. False for a null or empty key, a null `value` or a
    // size of 0, which write nothing; false with an empty text for an unknown key and for a value that does
    // not fit with its terminator.
    bool GetString(char const * key, char * value, unsigned int size) const;

    // The same for values of at most 2,047 characters; on every failure the text is empty.
    bool GetString(char const * key, std::string & value) const;

    // A decimal number: blanks, a sign and digits, at most 31 characters in all; an empty value is 0. Numbers
    // beyond 32 bits give the nearest. False, with 0, for anything else; with `value` untouched for a null or
    // empty key.
    bool GetInt(char const * key, int & value) const;

    // Set a key of the current section, which is created if need be. False, and nothing has changed, for a
    // null or empty key, a null value, and for '=', ';' or a CR LF in either, which a file could not hold.
    // What is taken may still not come back from one: blanks around either go, a key that begins with '['
    // reads as a header or not at all, and key and value have 1,022 characters in a line.
    bool SetString(char const * key, char const * value);
    bool SetInt(char const * key, int value);

    // False when there is no such key. A section that loses its last key stays.
    bool Remove(char const * key);

private:
    struct ByteOrder {
        using is_transparent = void;

        bool operator()(std::string_view left, std::string_view right) const { return left < right; }
    };

    using Section = std::pmr::map<std::pmr::string, std::pmr::string, ByteOrder>;

    void readLines(ByteStream & stream);
    Section const * current() const;
    std::pmr::string const * find(char const * key) const;

    std::u16string filename;
    bool loaded = false;
    mutable std::string currentSection;
    std::pmr::unsynchronized_pool_resource arena; // of all content
    std::pmr::map<std::pmr::string, Section, ByteOrder> sections{&arena};
};
