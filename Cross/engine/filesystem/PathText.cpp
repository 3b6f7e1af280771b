#include "Cross/engine/filesystem/PathText.h"

#include <string>
#include <string_view>

namespace {

constexpr std::string_view c_slashes = "/\\";

bool isSlash(char c) { return c_slashes.find(c) != std::string_view::npos; }

std::string_view orEmpty(char const * text) { return text ? std::string_view(text) : std::string_view(); }

// A path taken apart; the views lie in it and cover it without a gap.
struct Parts {
    std::string_view alias;     // with its ':'
    std::string_view directory; // with its last slash
    std::string_view name;
    std::string_view extension; // with its point
};

std::size_t aliasLength(std::string_view path) {
    std::size_t const end = path.find_first_of(":/\\");
    bool const found = end != std::string_view::npos && end > 0 && path[end] == ':';
    return found ? end + 1 : 0;
}

Parts takeApart(std::string_view path) {
    Parts parts;
    parts.alias = path.substr(0, aliasLength(path));
    path.remove_prefix(parts.alias.size());

    std::size_t const lastSlash = path.find_last_of(c_slashes);
    parts.directory = path.substr(0, lastSlash == std::string_view::npos ? 0 : lastSlash + 1);
    path.remove_prefix(parts.directory.size());

    std::size_t const point = path.rfind('.');
    bool const hasExtension = point != std::string_view::npos && point > 0;
    parts.name = path.substr(0, hasExtension ? point : path.size());
    parts.extension = path.substr(parts.name.size());
    return parts;
}

// False, and an empty text, when it does not fit. A null buffer takes anything.
bool store(char * buffer, std::string_view text) {
    bool const fits = text.size() < c_maxPath;
    std::size_t const length = fits ? text.size() : 0;
    if (buffer) {
        std::char_traits<char>::move(buffer, text.data(), length); // `text` may lie in the buffer
        buffer[length] = '\0';
    }
    return fits;
}

// For operations that leave the path alone when the result does not fit.
bool replace(char (&path)[c_maxPath], std::string const & text) {
    bool const fits = text.size() < c_maxPath;
    if (fits)
        store(path, text);
    return fits;
}

void appendAlias(std::string & path, std::string_view alias) {
    path += alias;
    if (!alias.empty() && alias.back() != ':')
        path += ':';
}

void appendExtension(std::string & path, std::string_view extension) {
    if (!extension.empty() && extension.front() != '.')
        path += '.';
    path += extension;
}

} // namespace

namespace fs {

bool MakePath(char (&path)[c_maxPath], char const * alias, char const * directory, char const * name,
              char const * extension) {
    std::string joined;
    appendAlias(joined, orEmpty(alias));
    joined += orEmpty(directory);
    std::string file(orEmpty(name));
    appendExtension(file, orEmpty(extension));
    if (!orEmpty(directory).empty() && !file.empty() && !isSlash(joined.back()))
        joined += '/';
    return store(path, joined + file);
}

bool SplitPath(char const * path, char * alias, char * directory, char * name, char * extension) {
    std::string const whole(orEmpty(path)); // a part's buffer may be the path itself
    bool const fits = whole.size() < c_maxPath;
    Parts const parts = fits ? takeApart(whole) : Parts();
    store(alias, parts.alias);
    store(directory, parts.directory);
    store(name, parts.name);
    store(extension, parts.extension);
    return fits;
}

bool HasAlias(char const * path) { return aliasLength(orEmpty(path)) > 0; }

bool RetrieveAlias(char const * path, char (&alias)[c_maxPath]) {
    std::string_view found = takeApart(orEmpty(path)).alias;
    found.remove_suffix(found.empty() ? 0 : 1);
    return store(alias, found) && !found.empty();
}

bool RetrieveExtension(char const * path, char (&extension)[c_maxPath]) {
    std::string_view found = takeApart(orEmpty(path)).extension;
    found.remove_prefix(found.empty() ? 0 : 1);
    return store(extension, found) && !found.empty();
}

bool SetAlias(char (&path)[c_maxPath], char const * alias) {
    std::string changed;
    appendAlias(changed, orEmpty(alias));
    changed += std::string_view(path).substr(aliasLength(path));
    return replace(path, changed);
}

bool SetExtension(char (&path)[c_maxPath], char const * extension) {
    std::string_view const whole(path);
    std::string changed(whole.substr(0, whole.size() - takeApart(whole).extension.size()));
    appendExtension(changed, orEmpty(extension));
    return replace(path, changed);
}

void BracketConvert(char * path) {
    if (!path)
        return;
    char * end = path;
    for (char const * next = path; *next; ++next) {
        bool const repeats = isSlash(*next) && end > path && end[-1] == '\\';
        if (!repeats)
            *end++ = isSlash(*next) ? '\\' : *next;
    }
    *end = '\0';
}

} // namespace fs
