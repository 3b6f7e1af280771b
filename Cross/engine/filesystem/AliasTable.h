#pragma once

// The aliases of the process and the real directories behind them. Case of an alias is ignored. Threads: any.

#include <map>
#include <optional>
#include <shared_mutex>
#include <string>

class AliasTable {
public:
    static AliasTable & Instance();

    // False for an alias that no path could name, and for an empty directory. A relative directory is taken
    // from where the process stands now.
    bool Set(char const * alias, char const * realDirectory);

    bool Remove(char const * alias);

    // The directory, without a slash at its end but for the root itself; nothing for an unknown alias.
    std::optional<std::string> Find(std::string const & alias) const;

private:
    mutable std::shared_mutex mutex;
    std::map<std::string, std::string> directories; // by alias in lower case
};
