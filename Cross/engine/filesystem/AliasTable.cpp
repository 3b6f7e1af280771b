#include "Cross/engine/filesystem/AliasTable.h"

#include "Cross/engine/core/Text.h"

#include <filesystem>
#include <mutex>
#include <string_view>

namespace {

std::string lowered(std::string alias) {
    text::ToLower(alias.data());
    return alias;
}

bool isAlias(std::string_view text) {
    return !text.empty() && text.find_first_of(":/\\") == std::string_view::npos;
}

std::string anchored(std::string directory) {
    if (directory.front() != '/') {
        std::error_code error;
        std::filesystem::path const absolute = std::filesystem::absolute(directory, error);
        if (!error)
            directory = absolute.lexically_normal().string();
    }
    while (directory.size() > 1 && directory.back() == '/')
        directory.pop_back();
    return directory;
}

} // namespace

AliasTable & AliasTable::Instance() {
    static AliasTable * const instance = new AliasTable;
    return *instance;
}

bool AliasTable::Set(char const * alias, char const * realDirectory) {
    if (!alias || !isAlias(alias) || !realDirectory || !*realDirectory)
        return false;
    std::string const directory = anchored(realDirectory);
    std::unique_lock const lock(mutex);
    directories[lowered(alias)] = directory;
    return true;
}

bool AliasTable::Remove(char const * alias) {
    if (!alias)
        return false;
    std::unique_lock const lock(mutex);
    return directories.erase(lowered(alias)) > 0;
}

std::optional<std::string> AliasTable::Find(std::string const & alias) const {
    std::string const key = lowered(alias);
    std::shared_lock const lock(mutex);
    auto const found = directories.find(key);
    if (found == directories.end())
        return std::nullopt;
    return found->second;
}
