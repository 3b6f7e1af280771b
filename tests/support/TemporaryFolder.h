#pragma once

#include <filesystem>
#include <string>
#include <string_view>

// A fresh folder that goes, with all that is in it, when the object does.
class TemporaryFolder {
public:
    TemporaryFolder();
    TemporaryFolder(TemporaryFolder const &) = delete;
    TemporaryFolder & operator=(TemporaryFolder const &) = delete;
    ~TemporaryFolder();

    std::filesystem::path const & Path() const { return folder; }

    // Real path of something in the folder, as text.
    std::string operator/(std::string_view relative) const { return (folder / relative).string(); }

    // Writes a whole file, with the folders above it; reads one, "" when there is none.
    void WriteFile(std::string_view relative, std::string_view content) const;
    std::string ReadFile(std::string_view relative) const;

    // Number of entries directly in the folder, for "no temporary file is left".
    std::size_t CountEntries() const;

    // Name of the one entry of the folder; "" when there is none or more than one.
    std::string OnlyEntry() const;

private:
    std::filesystem::path folder;
};
