#include "Cross/engine/filesystem/PathText.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

namespace {

struct PathBuffer {
    explicit PathBuffer(std::string const & path) {
        std::memset(text, '#', sizeof(text));
        std::memcpy(text, path.c_str(), path.size() + 1);
    }

    char text[c_maxPath];
};

struct SplitCase {
    char const * path;
    char const * parts[4];
};

constexpr SplitCase c_splitCases[] = {
    {"", {"", "", "", ""}},
    // an alias alone is its root
    {"DATA:", {"DATA:", "", "", ""}},
    // both kinds of slash, kept as they are
    {"DATA:\\art\\\\x/tank", {"DATA:", "\\art\\\\x/", "tank", ""}},
    // no alias behind a slash, and none of no letters
    {"art/DATA:x.a", {"", "art/", "DATA:x", ".a"}},
    {":x.a", {"", "", ":x", ".a"}},
    // only the first ':' ends an alias
    {"a:b:c.d", {"a:", "", "b:c", ".d"}},
    // the last point of the last component, unless it comes first there
    {"a.b/c.d.e", {"", "a.b/", "c.d", ".e"}},
    {"log:.txt", {"log:", "", ".txt", ""}},
    {"a/..txt", {"", "a/", ".", ".txt"}},
    {"name.", {"", "", "name", "."}},
};

TEST(PathText, SplitsIntoPartsThatRejoin) {
    for (SplitCase const & row : c_splitCases) {
        SCOPED_TRACE(row.path);
        char parts[4][c_maxPath];
        EXPECT_TRUE(fs::SplitPath(row.path, parts[0], parts[1], parts[2], parts[3]));
        std::string joined;
        for (int i = 0; i < 4; ++i) {
            EXPECT_STREQ(parts[i], row.parts[i]);
            joined += parts[i];
        }
        EXPECT_EQ(joined, row.path);

        PathBuffer remade("");
        EXPECT_TRUE(fs::MakePath(remade.text, parts[0], parts[1], parts[2], parts[3]));
        EXPECT_STREQ(remade.text, row.path);

        char bare[c_maxPath];
        EXPECT_EQ(fs::HasAlias(row.path), row.parts[0][0] != '\0');
        EXPECT_EQ(fs::RetrieveAlias(row.path, bare), row.parts[0][0] != '\0');
        EXPECT_EQ(std::string(bare) + (*bare ? ":" : ""), row.parts[0]);
        EXPECT_EQ(fs::RetrieveExtension(row.path, bare), std::strlen(row.parts[3]) > 1);
        EXPECT_STREQ(bare, row.parts[3] + (row.parts[3][0] == '.'));
    }
}

TEST(PathText, SetsReplacesAndTakesAwayAlsoInPlace) {
    PathBuffer path("tank");
    EXPECT_TRUE(fs::MakePath(path.text, "log", "art", path.text, "txt"));
    EXPECT_TRUE(fs::SetAlias(path.text, "DATA:") && fs::SetExtension(path.text, ".tga"));
    EXPECT_STREQ(path.text, "DATA:art/tank.tga");
    EXPECT_TRUE(fs::SetAlias(path.text, nullptr) && fs::SetExtension(path.text, ""));
    EXPECT_STREQ(path.text, "art/tank");
    EXPECT_TRUE(fs::SetExtension(path.text, "extension"));
    EXPECT_TRUE(fs::RetrieveExtension(path.text, path.text));
    EXPECT_TRUE(fs::SplitPath(path.text, nullptr, nullptr, path.text, nullptr));
    EXPECT_STREQ(path.text, "extension");
    fs::BracketConvert(nullptr);
    path = PathBuffer("/a//b\\/\\c.d/");
    fs::BracketConvert(path.text);
    EXPECT_STREQ(path.text, "\\a\\b\\c.d\\");
}

TEST(PathText, LongestPathIs259Characters) {
    std::string const longest(c_maxPath - 1, 'a');
    char name[c_maxPath];
    EXPECT_TRUE(fs::SplitPath(longest.c_str(), nullptr, nullptr, name, nullptr));
    EXPECT_EQ(name, longest);
    EXPECT_FALSE(fs::SplitPath((longest + 'a').c_str(), nullptr, nullptr, name, nullptr));
    EXPECT_STREQ(name, "");

    PathBuffer path("");
    EXPECT_TRUE(fs::MakePath(path.text, "", "", longest.c_str(), ""));
    EXPECT_FALSE(fs::MakePath(path.text, "", "", longest.c_str(), "x"));
    EXPECT_STREQ(path.text, "");
    EXPECT_FALSE(fs::RetrieveExtension(("a." + longest + 'a').c_str(), path.text));
    EXPECT_FALSE(fs::RetrieveAlias((longest + "a:b").c_str(), path.text));

    // what does not fit changes nothing
    PathBuffer full(longest.substr(2) + ".");
    EXPECT_TRUE(fs::SetExtension(full.text, "b"));
    std::string const before = full.text;
    EXPECT_FALSE(fs::SetExtension(full.text, "bc"));
    EXPECT_FALSE(fs::SetAlias(full.text, "d"));
    EXPECT_EQ(full.text, before);
}

} // namespace
