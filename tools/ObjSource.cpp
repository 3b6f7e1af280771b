#include "tools/ObjSource.h"

#include "tools/PolygonCut.h"
#include "tools/Quote.h"

#include <tiny_obj_loader.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <istream>
#include <streambuf>
#include <unordered_map>

namespace {

constexpr std::size_t c_mostErrors = 20;
constexpr std::size_t c_longestWord = 40; // of a word in an error
constexpr double c_farthest = 1e18;       // sums and squares of coordinates stay finite
constexpr int c_mostCorners = 256;
constexpr std::size_t c_mostVertices = 65536; // that an index can tell apart

constexpr std::string_view c_readKeywords[] = {"v", "f", "o", "g"};
constexpr std::string_view c_ignoredKeywords[] = {
    "vn",     "vt",    "vp",       "s",        "l",   "p",  "usemtl",     "mtllib",   "usemap",
    "maplib", "bevel", "c_interp", "d_interp", "lod", "mg", "shadow_obj", "trace_obj"};

std::string shown(std::string_view word) { return Quote(word.substr(0, c_longestWord)); }

template <std::size_t count>
bool isOneOf(std::string_view word, std::string_view const (&words)[count]) {
    return std::find(std::begin(words), std::end(words), word) != std::end(words);
}

// Takes the next word off a line; "" at its end.
std::string_view takeWord(std::string_view & line) {
    line.remove_prefix(std::min(line.find_first_not_of(" \t"), line.size()));
    std::string_view const word = line.substr(0, line.find_first_of(" \t"));
    line.remove_prefix(word.size());
    return word;
}

template <class T>
bool parse(std::string_view word, T & value) {
    if (word.starts_with('+'))
        word.remove_prefix(1);
    std::from_chars_result const end = std::from_chars(word.data(), word.data() + word.size(), value);
    return end.ec == std::errc() && end.ptr == word.data() + word.size();
}

bool isCoordinate(std::string_view word) {
    double value = 0;
    return parse(word, value) && std::fabs(value) <= c_farthest;
}

// A number, and up to two more behind slashes, which may be left out.
bool isCorner(std::string_view word) {
    for (int part = 0; part < 3; ++part) {
        std::string_view const number = word.substr(0, word.find('/'));
        int value = 0;
        if ((part == 0 || !number.empty()) && !parse(number, value))
            return false;
        if (number.size() == word.size())
            return true;
        word.remove_prefix(number.size() + 1);
    }
    return false;
}

// The text as the loader reads it, line by line, so that each of its calls is known to be about this line.
// What the loader would take for something else than it is, is found here.
class ObjSource : private std::streambuf {
public:
    ObjSource(std::string const & file, std::string_view text, std::vector<std::string> & errors)
        : file(file), rest(text), errors(errors) {}

    std::vector<BasicMeshIO::MeshInfo> Run() {
        tinyobj::callback_t calls;
        calls.vertex_cb = [](void * self, float x, float y, float z, float) {
            static_cast<ObjSource *>(self)->vertices.push_back({x, y, z});
        };
        calls.index_cb = [](void * self, tinyobj::index_t * corners, int count) {
            static_cast<ObjSource *>(self)->addFace(corners, count);
        };
        calls.group_cb = [](void * self, char const ** names, int count) {
            static_cast<ObjSource *>(self)->startGroup(names, count);
        };
        calls.object_cb = [](void * self, char const * name) {
            static_cast<ObjSource *>(self)->startMesh(name);
        };
        std::istream stream(this);
        stream.exceptions(std::ios::badbit); // what is thrown below passes on
        tinyobj::LoadObjWithCallback(stream, calls, this, nullptr, nullptr, nullptr);
        if (errors.empty() && meshes.empty())
            errors.push_back(file + ": there are no faces in it");
        if (!errors.empty())
            meshes.clear();
        return std::move(meshes);
    }

private:
    int_type underflow() override {
        if (rest.empty() || errors.size() >= c_mostErrors)
            return traits_type::eof();
        ++line;
        std::size_t const content = std::min(rest.find_first_of("\r\n"), rest.size());
        bool const isPair = rest.substr(content).starts_with("\r\n");
        std::size_t const size = std::min(content + (isPair ? 2 : 1), rest.size());
        checkLine(rest.substr(0, content));
        char * const begin = const_cast<char *>(rest.data()); // only read
        setg(begin, begin, begin + size);
        rest.remove_prefix(size);
        return traits_type::to_int_type(*begin);
    }

    void checkLine(std::string_view text) {
        std::string_view const keyword = takeWord(text);
        if (keyword == "v")
            checkVertex(text);
        else if (keyword == "f")
            checkFace(text);
        else if (!keyword.empty() && keyword.front() != '#' && !isOneOf(keyword, c_readKeywords) &&
                 !isOneOf(keyword, c_ignoredKeywords))
            fail("the keyword " + shown(keyword) + " is not known");
    }

    void checkVertex(std::string_view text) {
        for (int i = 0; i < 3; ++i) {
            std::string_view const word = takeWord(text);
            if (!isCoordinate(word))
                return fail(shown(word) + " is no coordinate");
        }
    }

    void checkFace(std::string_view text) {
        int corners = 0;
        for (std::string_view word = takeWord(text); !word.empty(); word = takeWord(text), ++corners)
            if (!isCorner(word))
                return fail(shown(word) + " is no corner of a face");
        if (corners < 3 || corners > c_mostCorners)
            fail("a face has 3 to " + std::to_string(c_mostCorners) + " corners, not " +
                 std::to_string(corners));
    }

    void startGroup(char const ** names, int count) {
        std::string name;
        for (int i = 0; i < count; ++i)
            name += (i == 0 ? "" : " ") + std::string(names[i]);
        startMesh(name);
    }

    // A name without faces leaves no mesh.
    void startMesh(std::string newName) {
        name = std::move(newName);
        isStarted = false;
    }

    void addFace(tinyobj::index_t const * corners, int count) {
        if (isLineBad())
            return;
        std::vector<unsigned int> numbers;
        std::vector<Math::Vector3f> positions;
        for (int i = 0; i < count; ++i) {
            std::size_t const number = vertexNumber(corners[i].vertex_index);
            if (number >= vertices.size())
                return fail("the vertex " + std::to_string(corners[i].vertex_index) + " is none of the " +
                            std::to_string(vertices.size()) + " in front of the face");
            numbers.push_back(static_cast<unsigned int>(number));
            positions.push_back(vertices[number]);
        }
        auto const triangles = CutPolygon(positions);
        if (triangles.empty())
            return fail("the face crosses itself or has no area");
        for (auto const & triangle : triangles)
            for (unsigned int const corner : triangle)
                addCorner(numbers[corner]);
    }

    // Counts from 0; beyond all vertices where there is no such one.
    std::size_t vertexNumber(int index) const {
        std::int64_t const number =
            index < 0 ? static_cast<std::int64_t>(vertices.size()) + index : std::int64_t{index} - 1;
        return number < 0 ? vertices.size() : static_cast<std::size_t>(number);
    }

    void addCorner(unsigned int number) {
        if (!isStarted) {
            isStarted = true;
            meshes.push_back({{}, name});
            indexOf.clear();
        }
        MathPrim::Mesh & mesh = meshes.back().mesh;
        auto const [place, isNew] = indexOf.try_emplace(number, mesh.vertices.size());
        if (place->second >= c_mostVertices) {
            rest = {}; // the faces that follow would say the same
            return fail("the mesh " + Quote(name) + " has more than 65536 vertices");
        }
        if (isNew)
            mesh.vertices.push_back(vertices[number]);
        mesh.indices.push_back(static_cast<std::uint16_t>(place->second));
    }

    bool isLineBad() const { return lastBadLine == line; }

    // One reason a line.
    void fail(std::string const & reason) {
        if (!isLineBad())
            errors.push_back(file + ":" + std::to_string(line) + ": " + reason);
        lastBadLine = line;
    }

    std::string const & file;
    std::string_view rest;
    std::vector<std::string> & errors;
    std::size_t line = 0, lastBadLine = 0;
    std::vector<Math::Vector3f> vertices;
    std::string name;
    bool isStarted = false;                                // whether the last mesh has this name
    std::unordered_map<unsigned int, std::size_t> indexOf; // of a vertex of the file in the last mesh
    std::vector<BasicMeshIO::MeshInfo> meshes;
};

} // namespace

std::vector<BasicMeshIO::MeshInfo> ReadObj(std::string const & file, std::string_view text,
                                           std::vector<std::string> & errors) {
    return ObjSource(file, text, errors).Run();
}
