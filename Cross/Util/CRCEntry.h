#pragma once

// The entries of a CRCBlock. They are constructed in place in the block's buffer, one behind the other, and
// move as bytes when it grows: an entry holds no pointer into itself, owns nothing, and its destructor never
// runs. It is valid only in the process that made it.
//
// Names of values and groups are keys of a dictionary of their own, keyedCRCEntry::s_dictionary.
//
// Threads: one at a time; the print depth is shared by all blocks of the process.

#include "Cross/Util/Dictionary.h"
#include "Cross/Util/FourLetterID.h"
#include "Cross/Util/LogFile.h"
#include "Cross/engine/core/Export.h"
#include "Cross/engine/core/FixedString.h"
#include "Cross/engine/core/Math.h"

#include <cstdint>

class CROSS_UTIL_API CRCEntry {
public:
    // Writes the entry's line or lines. The one here writes nothing.
    virtual void Print(LogFile & log) const;

    // The size of the whole entry in bytes: the next one begins behind it.
    virtual unsigned int SizeOf() const = 0;

    // Writes two blanks for each group that is open.
    static void Indent(LogFile & log);

protected:
    static int s_indent; // groups that are open in the print, below 0 when more were closed than opened
};

// An entry with a name.
class CROSS_UTIL_API keyedCRCEntry : public CRCEntry {
public:
    // The name and ": ", without a line end.
    void Print(LogFile & log) const override;

    // The names of all entries of the process, case-sensitive: s_dictionary.GetKey("pos").
    static Dictionary s_dictionary;

protected:
    explicit keyedCRCEntry(Dictionary::Key const & key) : key(key) {}

private:
    Dictionary::Key key;
};

// Opens a group: its name, a line "{", and everything behind it stands two blanks further right.
class CROSS_UTIL_API pushCRCEntry : public keyedCRCEntry {
public:
    explicit pushCRCEntry(Dictionary::Key const & key) : keyedCRCEntry(key) {}

    pushCRCEntry(pushCRCEntry const &) = default;
    pushCRCEntry & operator=(pushCRCEntry const &) = default;

    void Print(LogFile & log) const override;
    unsigned int SizeOf() const override;
    virtual ~pushCRCEntry();
};

// Closes the group that was opened last, with a line "}".
class CROSS_UTIL_API popCRCEntry : public CRCEntry {
public:
    popCRCEntry() = default;
    popCRCEntry(popCRCEntry const &) = default;
    popCRCEntry & operator=(popCRCEntry const &) = default;

    void Print(LogFile & log) const override;
    unsigned int SizeOf() const override;
    virtual ~popCRCEntry();
};

// A line of text, at most 63 characters; longer text is cut.
class CROSS_UTIL_API commentCRCEntry : public CRCEntry {
public:
    explicit commentCRCEntry(char const * text) : text(text) {}

    commentCRCEntry(commentCRCEntry const &) = default;
    commentCRCEntry & operator=(commentCRCEntry const &) = default;

    void Print(LogFile & log) const override;
    unsigned int SizeOf() const override;
    virtual ~commentCRCEntry();

private:
    fixedstring<63, tarnstring_trait<char>> text;
};

// Write a value behind its name, with the line end. Floats show as a decimal and as their bit pattern, so two
// lines differ as soon as one bit does; the words of 32 bits show as signed numbers.
CROSS_UTIL_API void valueCRCEntryPrint(LogFile & log, bool value);
CROSS_UTIL_API void valueCRCEntryPrint(LogFile & log, std::uint8_t value);
CROSS_UTIL_API void valueCRCEntryPrint(LogFile & log, std::uint16_t value);
CROSS_UTIL_API void valueCRCEntryPrint(LogFile & log, std::int32_t value);
CROSS_UTIL_API void valueCRCEntryPrint(LogFile & log, std::uint32_t value);
CROSS_UTIL_API void valueCRCEntryPrint(LogFile & log, std::uint64_t value);
CROSS_UTIL_API void valueCRCEntryPrint(LogFile & log, float value);
CROSS_UTIL_API void valueCRCEntryPrint(LogFile & log, Math::Vector2f const & value);
CROSS_UTIL_API void valueCRCEntryPrint(LogFile & log, Math::Vector3f const & value);
CROSS_UTIL_API void valueCRCEntryPrint(LogFile & log, Math::Matrix3f const & value);
CROSS_UTIL_API void valueCRCEntryPrint(LogFile & log, Math::Matrix43f const & value);
CROSS_UTIL_API void valueCRCEntryPrint(LogFile & log, FourLetterID const & value);
CROSS_UTIL_API void valueCRCEntryPrint(LogFile & log, fixedstring<63, tarnstring_trait<char>> const & value);
CROSS_UTIL_API void valueCRCEntryPrint(LogFile & log, fixedstring<255, tarnstring_trait<char>> const & value);
