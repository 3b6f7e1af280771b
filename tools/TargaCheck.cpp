#include "tools/TargaCheck.h"

#include "tools/NumberText.h"

#include "Cross/engine/core/Text.h"
#include "Cross/engine/filesystem/ByteStream.h"

#include <algorithm>
#include <cstdarg>
#include <cstdint>
#include <iterator>
#include <limits>
#include <stdexcept>

namespace {

using Byte = unsigned char;

constexpr unsigned int c_headerSize = 18;
constexpr unsigned int c_plain = 2, c_packed = 10;
constexpr unsigned int c_mostPixels = std::numeric_limits<std::uint32_t>::max() / 4;

enum Descriptor : unsigned int {
    DE_ALPHA_BITS = 0x0F,
    DE_RIGHT_FIRST = 0x10,
    DE_TOP_FIRST = 0x20,
    DE_INTERLEAVED = 0xC0
};

// The end of files of the format's second version; tables that loading does not need may stand in front.
constexpr char c_footer[] = "TRUEVISION-XFILE.";

std::string idMeaning(unsigned int value) {
    return value == 0 ? "no ID field" : "bytes of the ID field, which is skipped";
}

std::string zeroMeaning(unsigned int value) { return value == 0 ? "as loading needs it" : "must be 0"; }

std::string typeMeaning(unsigned int value) {
    switch (value) {
    case 0:
        return "no image; must be 2 or 10";
    case 1:
        return "colours from a map; must be 2 or 10";
    case c_plain:
        return "true colour, plain";
    case 3:
        return "shades of grey; must be 2 or 10";
    case 9:
        return "colours from a map, run-length encoded; must be 2 or 10";
    case c_packed:
        return "true colour, run-length encoded: loading is slower, and traced";
    case 11:
        return "shades of grey, run-length encoded; must be 2 or 10";
    default:
        return "unknown; must be 2 or 10";
    }
}

std::string ignoredMeaning(unsigned int) { return "not looked at"; }

std::string sideMeaning(unsigned int value) { return value == 0 ? "must not be 0" : "pixels"; }

std::string bitsMeaning(unsigned int value) {
    switch (value) {
    case 24:
        return "blue, green, red; alpha becomes 255";
    case 32:
        return "blue, green, red, alpha";
    default:
        return "must be 24 or 32";
    }
}

std::string descriptorMeaning(unsigned int value) {
    std::string meaning =
        (value & DE_TOP_FIRST) != 0 ? "top row first: loading swaps the rows" : "bottom row first";
    meaning += "; " + std::to_string(value & DE_ALPHA_BITS) + " alpha bits, not looked at";
    if ((value & DE_RIGHT_FIRST) != 0)
        meaning += "; right to left, not looked at";
    if ((value & DE_INTERLEAVED) != 0)
        meaning += "; interleaved rows, not looked at";
    return meaning;
}

struct FieldKind {
    unsigned int offset, size;
    char const * name;
    std::string (*meaning)(unsigned int value);
};

enum FieldIndex {
    FI_ID_LENGTH,
    FI_MAP_TYPE,
    FI_IMAGE_TYPE,
    FI_MAP_BEGIN,
    FI_MAP_LENGTH,
    FI_MAP_ENTRY_SIZE,
    FI_X_ORIGIN,
    FI_Y_ORIGIN,
    FI_WIDTH,
    FI_HEIGHT,
    FI_BITS_PER_PIXEL,
    FI_DESCRIPTOR
};

constexpr FieldKind c_fields[] = {
    {0, 1, "ID length", idMeaning},
    {1, 1, "colour map type", zeroMeaning},
    {2, 1, "image type", typeMeaning},
    {3, 2, "first colour map entry", zeroMeaning},
    {5, 2, "colour map length", zeroMeaning},
    {7, 1, "colour map entry size", ignoredMeaning},
    {8, 2, "x origin", zeroMeaning},
    {10, 2, "y origin", zeroMeaning},
    {12, 2, "width", sideMeaning},
    {14, 2, "height", sideMeaning},
    {16, 1, "bits per pixel", bitsMeaning},
    {17, 1, "descriptor", descriptorMeaning},
};

// Bytes that are looked at one by one or passed over.
class ByteWalk {
public:
    explicit ByteWalk(ByteStream & stream)
        : stream(stream), position(stream.GetPos()), end(stream.GetLen()) {}

    unsigned int Position() const { return position; }

    unsigned int Left() const { return end - position; }

    // REQUIRES: a byte is left.
    Byte Next() {
        if (position - bufferBegin >= filled)
            refill();
        return buffer[position++ - bufferBegin];
    }

    void Skip(unsigned int size) { position += std::min(size, Left()); }

private:
    void refill() {
        stream.SetPos(position);
        bufferBegin = position;
        filled = stream.Read(buffer, sizeof(buffer));
        if (filled == 0)
            throw std::runtime_error(std::string(stream.GetStreamName()) + ": cannot be read");
    }

    ByteStream & stream;
    unsigned int position, end;
    unsigned int bufferBegin = 0, filled = 0;
    Byte buffer[4096];
};

class TargaWalk {
public:
    explicit TargaWalk(ByteStream & stream) : bytes(stream) {}

    TargaReport Run() {
        if (bytes.Left() < c_headerSize) {
            find(bytes.Position() + bytes.Left(), true, "only %u of the %u bytes of the header are there",
                 bytes.Left(), c_headerSize);
            return report;
        }
        readFields();
        checkFields();
        checkIdField();
        checkSize();
        if (report.Loads())
            checkPixels();
        return report;
    }

private:
    unsigned int value(FieldIndex field) const { return report.fields[field].value; }

    void readFields() {
        for (FieldKind const & kind : c_fields) {
            unsigned int value = bytes.Next();
            if (kind.size == 2)
                value |= static_cast<unsigned int>(bytes.Next()) << 8;
            report.fields.push_back({kind.offset, kind.size, kind.name, value, kind.meaning(value)});
        }
        report.width = value(FI_WIDTH);
        report.height = value(FI_HEIGHT);
        report.bitsPerPixel = value(FI_BITS_PER_PIXEL);
        report.isPacked = value(FI_IMAGE_TYPE) == c_packed;
        report.topFirst = (value(FI_DESCRIPTOR) & DE_TOP_FIRST) != 0;
    }

    void checkFields() {
        for (FieldIndex const field : {FI_MAP_TYPE, FI_MAP_BEGIN, FI_MAP_LENGTH, FI_X_ORIGIN, FI_Y_ORIGIN})
            require(field, value(field) == 0);
        require(FI_IMAGE_TYPE, value(FI_IMAGE_TYPE) == c_plain || report.isPacked);
        require(FI_WIDTH, report.width > 0);
        require(FI_HEIGHT, report.height > 0);
        require(FI_BITS_PER_PIXEL, report.bitsPerPixel == 24 || report.bitsPerPixel == 32);
        unsigned int const place = c_fields[FI_DESCRIPTOR].offset;
        if ((value(FI_DESCRIPTOR) & DE_RIGHT_FIRST) != 0)
            find(place, false, "the rows run from right to left, but load from left to right");
        if ((value(FI_DESCRIPTOR) & DE_INTERLEAVED) != 0)
            find(place, false, "the rows are interleaved, but load in the order of the file");
    }

    void require(FieldIndex field, bool isSo) {
        TargaReport::Field const & read = report.fields[field];
        if (!isSo)
            find(read.offset, true, "%s is %u: %s", read.name, read.value, read.meaning.c_str());
    }

    void checkIdField() {
        unsigned int const length = value(FI_ID_LENGTH);
        if (bytes.Left() < length)
            find(bytes.Position() + bytes.Left(), true, "only %u of the %u bytes of the ID field are there",
                 bytes.Left(), length);
        bytes.Skip(length);
    }

    void checkSize() {
        if (std::uint64_t{report.width} * report.height > c_mostPixels)
            find(c_fields[FI_WIDTH].offset, true, "%u x %u pixels take 4 GiB of memory or more", report.width,
                 report.height);
    }

    void checkPixels() {
        bool const areThere = report.isPacked ? checkPackets() : checkPlain();
        unsigned int const end = bytes.Position(), rest = bytes.Left();
        if (areThere && rest > 0 && !hasFooter())
            find(end, false, "%s behind the pixels", CountText(rest, "byte follows", "bytes follow").c_str());
    }

    bool checkPlain() {
        std::uint64_t const size = std::uint64_t{report.width} * report.height * (report.bitsPerPixel / 8);
        bool const areThere = bytes.Left() >= size;
        if (!areThere)
            find(bytes.Position() + bytes.Left(), true, "only %u of the %llu bytes of the pixels are there",
                 bytes.Left(), static_cast<unsigned long long>(size));
        bytes.Skip(static_cast<unsigned int>(std::min<std::uint64_t>(size, bytes.Left())));
        return areThere;
    }

    bool checkPackets() {
        for (unsigned int left = report.width * report.height; left > 0;) {
            unsigned int const begin = bytes.Position();
            unsigned int const length = bytes.Left() > 0 ? readPacket(left) : 0;
            if (length == 0) {
                find(begin, true, "the pixels end early, %s missing", CountText(left, "is", "are").c_str());
                return false;
            }
            if (length > left)
                find(begin, false, "the last packet reaches %s beyond the image, which loading cuts",
                     CountText(length - left, "pixel", "pixels").c_str());
            left -= std::min(length, left);
        }
        return true;
    }

    // Gives the number of pixels in the packet, 0 when those of the `needed` ones are not all there.
    unsigned int readPacket(unsigned int needed) {
        Byte const packet = bytes.Next();
        unsigned int const length = (packet & 0x7Fu) + 1;
        unsigned int const stored = (packet & 0x80) != 0 ? 1 : length;
        unsigned int const pixelSize = report.bitsPerPixel / 8;
        if (bytes.Left() < std::min(stored, needed) * pixelSize)
            return 0;
        bytes.Skip(stored * pixelSize);
        return length;
    }

    bool hasFooter() {
        if (bytes.Left() < sizeof(c_footer))
            return false;
        bytes.Skip(bytes.Left() - static_cast<unsigned int>(sizeof(c_footer)));
        return std::all_of(std::begin(c_footer), std::end(c_footer),
                           [this](char character) { return bytes.Next() == static_cast<Byte>(character); });
    }

    void find(unsigned int offset, bool isFatal, char const * format, ...) CROSS_PRINTF_FORMAT(4, 5) {
        std::string reason;
        std::va_list arguments;
        va_start(arguments, format);
        text::VPrintf(reason, format, arguments);
        va_end(arguments);
        report.findings.push_back({offset, isFatal, reason});
    }

    ByteWalk bytes;
    TargaReport report;
};

} // namespace

bool TargaReport::Loads() const {
    return std::none_of(findings.begin(), findings.end(),
                        [](Finding const & finding) { return finding.isFatal; });
}

std::string TargaReport::Summary() const {
    return std::to_string(width) + " x " + std::to_string(height) + " pixels of " +
           std::to_string(bitsPerPixel) + " bits, " + (isPacked ? "run-length encoded, " : "plain, ") +
           (topFirst ? "top row first" : "bottom row first");
}

std::vector<std::string> TargaReport::Lines(std::string const & file, bool fatalOnly) const {
    std::vector<std::string> lines;
    for (Finding const & finding : findings)
        if (finding.isFatal || !fatalOnly)
            lines.push_back(file + ": offset " + std::to_string(finding.offset) + ": " + finding.reason);
    return lines;
}

TargaReport CheckTarga(ByteStream & stream) { return TargaWalk(stream).Run(); }
