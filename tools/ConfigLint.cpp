#include "tools/ConfigLint.h"

#include "Cross/Util/ConfigFileLines.h"
#include "tools/Quote.h"

#include <algorithm>
#include <map>
#include <optional>
#include <utility>

namespace {

using configlines::Kind;

std::string lowerCased(std::string_view text) {
    std::string lower(text);
    for (char & letter : lower)
        letter = text::ToLower(letter);
    return lower;
}

class Lint {
public:
    explicit Lint(ByteStream & stream) : reader(stream) {}

    ConfigReport Run() {
        for (std::string_view text; reader.Next(text);)
            takePiece(text);
        report.sections = sections.size();
        if (sections.empty())
            find("there is no section header: the file does not load");
        return std::move(report);
    }

private:
    void find(std::string reason) { report.findings.push_back({lineNumber, std::move(reason)}); }

    void takePiece(std::string_view text) {
        if (isRest(text))
            find("is cut at 1023 bytes: the rest counts as the next line");
        std::string_view const line = configlines::Trimmed(text);
        auto const blanks = static_cast<std::size_t>(line.data() - text.data());
        countLineFeeds(text.substr(0, blanks));
        if (line.find('\n') != std::string_view::npos)
            find("ends with LF alone: the next line counts as part of it");
        if (lineNumber == 1 && line.starts_with("\xEF\xBB\xBF"))
            find("begins with a byte order mark, which counts as text of the line");
        take(configlines::Parse(line));
        countLineFeeds(text.substr(blanks));
        lineNumber += reader.IsEnded() ? 1 : 0;
        openEnd = reader.IsEnded() ? std::nullopt : std::optional(text.back());
    }

    // Whether the piece goes on with the line before it, and not just with the end of that line.
    bool isRest(std::string_view text) const {
        bool const isLineEnd = text.empty() || (openEnd == '\r' && text.front() == '\n');
        return openEnd.has_value() && !isLineEnd;
    }

    void countLineFeeds(std::string_view text) {
        lineNumber += static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n'));
    }

    void take(configlines::Line const & line) {
        if (line.kind == Kind::header)
            takeHeader(lowerCased(line.name));
        else if (line.kind == Kind::entry)
            takeEntry(lowerCased(line.name));
        else if (line.kind == Kind::malformed)
            find("is dropped: neither [section], key=value nor a comment");
    }

    void takeHeader(std::string const & name) {
        findLongName(name);
        section = &sections[name];
    }

    void takeEntry(std::string const & key) {
        if (!section) {
            find("is dropped: the key " + Quote(key) + " stands in front of the first header");
            return;
        }
        auto const [place, isNew] = section->emplace(key, lineNumber);
        if (!isNew) {
            find("is dropped: the key " + Quote(key) + " stands in line " + std::to_string(place->second));
            return;
        }
        findLongName(key);
        ++report.entries;
    }

    void findLongName(std::string const & name) {
        if (name.size() > configlines::c_longestName)
            find("has a name of more than 255 characters, which no program can ask for");
    }

    configlines::Reader reader;
    ConfigReport report;
    std::size_t lineNumber = 1;
    std::optional<char> openEnd; // last byte of the piece before, when its line has no end yet
    std::map<std::string, std::map<std::string, std::size_t>> sections; // keys with their lines
    std::map<std::string, std::size_t> * section = nullptr;
};

} // namespace

ConfigReport LintConfig(ByteStream & stream) { return Lint(stream).Run(); }
