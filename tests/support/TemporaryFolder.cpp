#include "tests/support/TemporaryFolder.h"

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <stdexcept>

TemporaryFolder::TemporaryFolder() {
    std::string name = (std::filesystem::temp_directory_path() / "crossutil-test-XXXXXX").string();
    if (!mkdtemp(name.data()))
        throw std::runtime_error("no temporary folder: " + name);
    folder = name;
}

TemporaryFolder::~TemporaryFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(folder, ignored);
}

void TemporaryFolder::WriteFile(std::string_view relative, std::string_view content) const {
    std::filesystem::path const file = folder / relative;
    std::filesystem::create_directories(file.parent_path());
    std::ofstream out(file, std::ios::binary);
    out.write(content.data(), static_cast<std::streamsize>(content.size()));
    if (!out.flush())
        throw std::runtime_error("cannot write " + file.string());
}

std::string TemporaryFolder::ReadFile(std::string_view relative) const {
    std::ifstream in(folder / relative, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

std::size_t TemporaryFolder::CountEntries() const {
    auto const entries = std::filesystem::directory_iterator(folder);
    return static_cast<std::size_t>(std::distance(begin(entries), end(entries)));
}

std::string TemporaryFolder::OnlyEntry() const {
    return CountEntries() == 1 ? std::filesystem::directory_iterator(folder)->path().filename().string() : "";
}
