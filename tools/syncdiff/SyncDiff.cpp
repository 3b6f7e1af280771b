#include "tools/syncdiff/SyncDiff.h"

#include "Cross/engine/core/Text.h"
#include "tools/LineReader.h"

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <string_view>

namespace {

constexpr std::size_t c_longestLine = 16 * 1024;
constexpr std::size_t c_deepestGroup = 10'000;
constexpr std::string_view c_total = "Total CRC: [ ";
constexpr std::string_view c_frame = "frame: [ ";
constexpr std::string_view c_value = ": [ ";
constexpr std::string_view c_valueEnd = " ]";

std::string_view withoutIndent(std::string_view line) {
    return line.substr(std::min(line.find_first_not_of(' '), line.size()));
}

// What stands between the brackets. REQUIRES: isValue(line).
std::string_view valueOf(std::string_view line) {
    std::string_view const value = line.substr(line.find(c_value) + c_value.size());
    return value.ends_with(c_valueEnd) ? value.substr(0, value.size() - c_valueEnd.size()) : value;
}

// The name in front of a value or a group; empty for a line that has none.
std::string_view nameOf(std::string_view line) {
    std::string_view const text = withoutIndent(line);
    return text.substr(0, std::min(text.find(": "), text.size()));
}

bool isValue(std::string_view line) { return line.find(c_value) != std::string_view::npos; }

bool isTotal(std::string_view line) { return line.starts_with(c_total); }

bool opensGroup(std::string_view line) { return line.ends_with('{') && withoutIndent(line) == "{"; }

bool closesGroup(std::string_view line) { return line.ends_with('}') && withoutIndent(line) == "}"; }

// The lines of a printed block.
class BlockReader : public LineReader {
public:
    explicit BlockReader(ByteStream & stream)
        : LineReader(stream, c_longestLine, "the line is longer than a printed block has") {}

    // Goes on to the next line, or again to the one that was put back. False at the end.
    bool Next() {
        if (isPutBack) {
            isPutBack = false;
            return true;
        }
        if (!LineReader::Next())
            return false;
        keepFollowing();
        return true;
    }

    void PutBack() { isPutBack = true; }

    SyncLine Copy() const { return {Number(), std::string(Line())}; }

    // Copies the next few lines as they come.
    void KeepFollowing(std::vector<std::string> & lines) { following = &lines; }

private:
    void keepFollowing() {
        if (!following)
            return;
        following->emplace_back(Line());
        if (following->size() == c_syncContext)
            following = nullptr;
    }

    bool isPutBack = false;
    std::vector<std::string> * following = nullptr;
};

class Comparison {
public:
    Comparison(ByteStream & first, ByteStream & second) : first(first), second(second) {}

    SyncReport Run() {
        demandBlock(first);
        demandBlock(second);
        for (;;) {
            bool const hasFirst = first.Next();
            bool const hasSecond = second.Next();
            if (!hasFirst && !hasSecond)
                break;
            if (hasFirst && hasSecond && first.Line() == second.Line())
                follow(first.Line());
            else if (hasFirst && hasSecond && isTotal(first.Line()) && isTotal(second.Line()))
                compareTotals();
            else if (!differ(hasFirst, hasSecond))
                break;
        }
        if (!report.linesDiffer)
            report.lines = lines;
        return std::move(report);
    }

private:
    // A group that is open in both texts.
    struct Group {
        std::string name;
        bool differs = false;
    };

    static void demandBlock(BlockReader & reader) {
        if (!reader.Next() || !isTotal(reader.Line()))
            reader.Fail("this is no printed sync block");
        reader.PutBack();
    }

    // A line that both texts have.
    void follow(std::string_view line) {
        if (opensGroup(line))
            open();
        else if (closesGroup(line))
            close();
        else if (isTotal(line))
            beginBlock();
        else if (!report.linesDiffer && withoutIndent(line).starts_with(c_frame))
            report.frame = valueOf(line);
        latest[lines++ % c_syncContext] = line;
    }

    void open() {
        if (groups.size() > c_deepestGroup)
            first.Fail("groups are nested too deep");
        groups.push_back({lines == 0 ? "" : std::string(nameOf(latest[(lines - 1) % c_syncContext]))});
    }

    // A printed block may close more groups than it opened.
    void close() {
        if (groups.size() > 1)
            groups.pop_back();
    }

    void beginBlock() { groups.assign(1, {}); }

    void compareTotals() {
        if (report.totals[0].empty())
            report.totals = {std::string(valueOf(first.Line())), std::string(valueOf(second.Line()))};
        beginBlock();
    }

    // Gives false when there is nothing left to compare.
    bool differ(bool hasFirst, bool hasSecond) {
        if (!report.linesDiffer)
            reportFirst(hasFirst, hasSecond);
        else if (!groups.back().differs)
            ++report.laterGroups;
        groups.back().differs = true;
        if (!hasFirst || !hasSecond)
            return false;
        if (!isSameValue()) {
            skipGroup(first);
            skipGroup(second);
            close();
        }
        return true;
    }

    bool isSameValue() const {
        return isValue(first.Line()) && isValue(second.Line()) &&
               nameOf(first.Line()) == nameOf(second.Line());
    }

    void reportFirst(bool hasFirst, bool hasSecond) {
        report.linesDiffer = true;
        report.lines = lines;
        for (std::size_t back = std::min<std::uint64_t>(lines, c_syncContext); back > 0; --back)
            report.before.push_back(latest[(lines - back) % c_syncContext]);
        if (hasFirst)
            report.difference[0] = first.Copy();
        if (hasSecond)
            report.difference[1] = second.Copy();
        report.path = path(hasFirst && hasSecond && isSameValue() ? nameOf(first.Line()) : "");
        first.KeepFollowing(report.after[0]);
        second.KeepFollowing(report.after[1]);
    }

    std::string path(std::string_view name) const {
        std::string path;
        for (std::size_t depth = 1; depth < groups.size(); ++depth)
            path += (depth > 1 ? "/" : "") + groups[depth].name;
        if (!path.empty() && !name.empty())
            path += '/';
        return path.append(name);
    }

    // Reads on to the end of the group in which the present line stands, or to the next block.
    static void skipGroup(BlockReader & reader) {
        std::uint64_t depth = 1;
        do {
            if (isTotal(reader.Line()))
                return reader.PutBack();
            if (opensGroup(reader.Line()))
                ++depth;
            else if (closesGroup(reader.Line()) && --depth == 0)
                return;
        } while (reader.Next());
    }

    BlockReader first;
    BlockReader second;
    SyncReport report;
    std::vector<Group> groups{1};                  // the block itself, and what is open in it
    std::array<std::string, c_syncContext> latest; // the last lines that agreed, in a ring
    std::uint64_t lines = 0;
};

// The bit patterns that stand behind the floating-point numbers of a line.
std::vector<std::uint32_t> floatBits(std::string_view line) {
    std::vector<std::uint32_t> bits;
    for (std::size_t place = line.find(" <"); place != std::string_view::npos;
         place = line.find(" <", place + 2)) {
        std::string_view const before = line.substr(0, place);
        std::uint32_t pattern = 0;
        auto const [end, error] =
            std::from_chars(line.data() + place + 2, line.data() + line.size(), pattern, 16);
        bool const isWhole = error == std::errc() && end != line.data() + line.size() && *end == '>';
        if (isWhole && !before.ends_with("true") && !before.ends_with("false"))
            bits.push_back(pattern);
    }
    return bits;
}

bool isNaN(std::uint32_t bits) { return (bits & 0x7FFFFFFF) > 0x7F800000; }

// The place of a number in the row of all of them; both zeroes have the same.
std::int64_t rankOf(std::uint32_t bits) {
    auto const magnitude = static_cast<std::int64_t>(bits & 0x7FFFFFFF);
    return bits >> 31 ? -magnitude : magnitude;
}

std::string distance(std::uint32_t first, std::uint32_t second) {
    if (isNaN(first) || isNaN(second))
        return "not a number";
    long long const units = std::llabs(rankOf(first) - rankOf(second));
    std::string text;
    text::Printf(text, "%lld %s in the last place", units, units == 1 ? "unit" : "units");
    return text;
}

} // namespace

SyncReport DiffSync(ByteStream & first, ByteStream & second) { return Comparison(first, second).Run(); }

std::vector<std::string> SyncDistances(std::string const & first, std::string const & second) {
    std::vector<std::uint32_t> const firstBits = floatBits(first);
    std::vector<std::uint32_t> const secondBits = floatBits(second);
    std::vector<std::string> distances;
    if (firstBits.size() != secondBits.size())
        return distances;
    for (std::size_t i = 0; i < firstBits.size(); ++i)
        if (firstBits[i] != secondBits[i])
            distances.push_back("number " + std::to_string(i + 1) + ": " +
                                distance(firstBits[i], secondBits[i]));
    return distances;
}
