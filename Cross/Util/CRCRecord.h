#pragma once

// Recording into a CRCBlock. Each call feeds the CRC, and with `keepEntry` also leaves an entry for Print.
// The CRC is the same either way, so a run may record without entries and print only a frame that differs.
//
//     static Dictionary::Key const c_pos = keyedCRCEntry::s_dictionary.GetKey("pos");
//     Record(block, c_pos, unit.pos);

#include "Cross/Util/CRCBlock.h"
#include "Cross/Util/CRCEntry.h"

#include <concepts>
#include <new>

// The values that can be recorded: each has a valueCRCEntryPrint, and bytes without gaps.
template <class T>
concept CRCValue = std::same_as<T, bool> || std::same_as<T, std::uint8_t> || std::same_as<T, std::uint16_t> ||
    std::same_as<T, std::int32_t> || std::same_as<T, std::uint32_t> || std::same_as<T, std::uint64_t> ||
    std::same_as<T, float> || std::same_as<T, Math::Vector2f> || std::same_as<T, Math::Vector3f> ||
    std::same_as<T, Math::Matrix3f> || std::same_as<T, Math::Matrix43f> || std::same_as<T, FourLetterID> ||
    std::same_as<T, fixedstring<63, tarnstring_trait<char>>> ||
    std::same_as<T, fixedstring<255, tarnstring_trait<char>>>;

// A value with its name.
template <CRCValue T>
class valueCRCEntry : public keyedCRCEntry {
public:
    valueCRCEntry(Dictionary::Key const & key, T const & value) : keyedCRCEntry(key), value(value) {}

    valueCRCEntry(valueCRCEntry const &) = default;
    valueCRCEntry & operator=(valueCRCEntry const &) = default;

    void Print(LogFile & log) const override {
        keyedCRCEntry::Print(log);
        valueCRCEntryPrint(log, value);
    }

    unsigned int SizeOf() const override { return sizeof(*this); }

    virtual ~valueCRCEntry() = default;

private:
    T value;
};

// Constructs an entry of any class in the block: AddEntry<commentCRCEntry>(block, "between moves").
template <std::derived_from<CRCEntry> Entry, class... Arguments>
void AddEntry(CRCBlock & block, Arguments const &... arguments) {
    static_assert(alignof(Entry) <= 8, "entries lie behind one another at multiples of 8 bytes");
    new (block.AllocateEntry(sizeof(Entry))) Entry(arguments...);
}

// Records a value under a name of keyedCRCEntry::s_dictionary. All bytes of the value count, for a fixed
// string those behind its end too, which are zeros. They count as they lie in memory: only machines of one
// byte order have one CRC.
template <class T>
void Record(CRCBlock & block, Dictionary::Key const & key, T const & value, bool keepEntry = true) {
    static_assert(CRCValue<T>, "this type has no text form in the sync log");
    block.AddToCRC(&value, sizeof(value));
    if (keepEntry)
        AddEntry<valueCRCEntry<T>>(block, key, value);
}

// Records a group while it lives. Groups leave entries only; they do not count in the CRC.
class CRCGroup {
public:
    CRCGroup(CRCBlock & block, Dictionary::Key const & key, bool keepEntry = true)
        : block(keepEntry ? &block : nullptr) {
        if (keepEntry)
            AddEntry<pushCRCEntry>(block, key);
    }

    CRCGroup(CRCGroup const &) = delete;
    CRCGroup & operator=(CRCGroup const &) = delete;

    ~CRCGroup() {
        if (block)
            AddEntry<popCRCEntry>(*block);
    }

private:
    CRCBlock * block;
};
