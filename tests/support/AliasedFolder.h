#pragma once

#include "Cross/engine/filesystem/FilePath.h"
#include "tests/support/TemporaryFolder.h"

// A temporary folder to which an alias leads while it lives.
class AliasedFolder : public TemporaryFolder {
public:
    explicit AliasedFolder(char const * alias) : alias(alias) { FilePath::SetAlias(alias, Path().c_str()); }

    ~AliasedFolder() { FilePath::RemoveAlias(alias); }

private:
    char const * alias;
};
