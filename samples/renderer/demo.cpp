// Draws pictures of what the renderer can show into the folder that is given, or the present one: every
// shape, textured meshes, the list of render statistics, and graphs.

#include "Cross/Util/RenderStats.h"
#include "Cross/Util/StatGraph.h"
#include "samples/debugdraw/GraphSink.h"
#include "samples/renderer/Renderer.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>
#include <utility>

namespace {

using Math::Vector3f;
using MathPrim::Colour;

constexpr int c_width = 960, c_height = 540;
constexpr Colour c_label = Colour::FromWord(0xFFE8EEF2);

char const * const c_scene = "Scene";

template <class Shape>
void draw(Shape const & shape) {
    DebugRender::Draw(shape, c_scene);
}

Colour colour(std::uint32_t word) { return Colour::FromWord(word); }

void drawGround() {
    draw(DebugRender::Plane3D{{0, -0.02f, 0}, {0, 1, 0}, 40, colour(0xFF20282E)});
    for (float at = -20; at <= 20; at += 2) {
        draw(DebugRender::Line{{at, 0, -20}, {at, 0, 20}, colour(0xFF38444E)});
        draw(DebugRender::Line{{-20, 0, at}, {20, 0, at}, colour(0xFF38444E)});
    }
}

// The n-th of twelve places, in three rows from far to near.
Vector3f placeOf(unsigned int number) {
    return {-9.0f + 6.0f * static_cast<float>(number % 4), 0.0f,
            6.5f - 7.0f * static_cast<float>(number / 4)};
}

// An octahedron that stands on its point.
MathPrim::Mesh gem() {
    MathPrim::Mesh mesh;
    mesh.vertices = {{0, 0, 0},        {1.2f, 1.4f, 0},  {0, 1.4f, 1.2f},
                     {-1.2f, 1.4f, 0}, {0, 1.4f, -1.2f}, {0, 2.8f, 0}};
    mesh.indices = {0, 1, 2, 0, 2, 3, 0, 3, 4, 0, 4, 1, 5, 2, 1, 5, 3, 2, 5, 4, 3, 5, 1, 4};
    return mesh;
}

DebugRender::Cube cubeAt(Vector3f const & place, Colour colour) {
    constexpr float c_signs[8][3] = {{1, 1, 1},  {1, 1, -1},  {1, -1, -1},  {1, -1, 1},
                                     {-1, 1, 1}, {-1, 1, -1}, {-1, -1, -1}, {-1, -1, 1}};
    DebugRender::Cube cube{{}, colour, 0};
    for (unsigned int i = 0; i < 8; ++i)
        cube.corners[i] = place + Vector3f{c_signs[i][0], 1.2f + c_signs[i][1], c_signs[i][2]};
    return cube;
}

// One exhibit of each shape in the scene, under its name.
class Exhibition {
public:
    template <class Shape>
    void Show(char const * name, Shape const & shape) {
        draw(shape);
        draw(DebugRender::Text3D{Place() + Vector3f{0, 3.1f, 0}, name, c_label});
        ++number;
    }

    Vector3f Place() const { return placeOf(number); }

    Vector3f Over(float height) const { return Place() + Vector3f{0, height, 0}; }

private:
    unsigned int number = 0;
};

void drawSceneShapes() {
    MathPrim::Mesh const mesh = gem();
    Exhibition hall;
    hall.Show("Plane3D", DebugRender::Plane3D{hall.Over(1.4f), {0.5f, 0.6f, -1}, 2.4f, colour(0xFF3E7CB8)});
    hall.Show("Mesh", DebugRender::Mesh{&mesh,
                                        {{{0.9f, 0, 0.44f}, {0, 1, 0}, {-0.44f, 0, 0.9f}, hall.Place()}},
                                        colour(0xFF46B46E)});
    hall.Show("Text3D", DebugRender::Text3D{hall.Over(1.2f), "a text\nin the scene", colour(0xFFFFD030)});
    hall.Show("Sphere", DebugRender::Sphere{hall.Over(1.3f), 1.3f, colour(0xFFE0605A)});
    hall.Show("Circle3D", DebugRender::Circle3D{hall.Over(1.4f), {1, 1, -1}, 1.3f, colour(0xFFB48CF0)});
    hall.Show("Circle", DebugRender::Circle{hall.Over(0.1f), 1.6f, colour(0xFF5CD0D8)});
    hall.Show("Cube", cubeAt(hall.Place(), colour(0xFF6090FF)));
    hall.Show("Tri", DebugRender::Tri{{hall.Over(2.6f), hall.Place() + Vector3f{1.4f, 0.2f, 0.5f},
                                       hall.Place() + Vector3f{-1.4f, 0.2f, -0.5f}},
                                      colour(0xB0F09040)});
    hall.Show("Line", DebugRender::Line{hall.Place() + Vector3f{-1.4f, 0.2f, 0},
                                        hall.Place() + Vector3f{1.4f, 2.4f, 0}, colour(0xFFFFFFFF)});
    hall.Show("Point", DebugRender::Point{hall.Over(1.3f), 0.7f, colour(0xFFFF70A0)});
    hall.Show("OvalOutline", DebugRender::OvalOutline{
                                 hall.Over(1.3f), {1.6f, 0.4f, 0}, {-0.2f, 0.9f, 0}, colour(0xFF9CE050)});
    hall.Show("RectOutline", DebugRender::RectOutline{
                                 hall.Over(1.3f), {1.5f, 0.2f, 0}, {-0.1f, 0.9f, 0.3f}, colour(0xFFF0C060)});
}

void drawScreenShapes() {
    draw(DebugRender::Text2D{{0.02f, 0.04f},
                             "Text2D: text on the screen. It starts at its position, and the middle of the\n"
                             "first line is level with it. Lines end where the text says; the letters of\n"
                             "Latin-1 are there: \u00c4\u00d6\u00dc \u00e4\u00f6\u00fc \u00df "
                             "\u00e9\u00e8\u00ea \u00f1 \u00bd \u00b0 \u00b1.",
                             c_label});
    draw(DebugRender::Text2D{{0.62f, 0.96f}, "Tri2D", c_label});
    draw(DebugRender::Tri2D{{{0.37f, -0.96f}, {0.45f, -0.96f}, {0.41f, -0.84f}}, colour(0xFF46B46E)});
    draw(DebugRender::Text2D{{0.745f, 0.96f}, "Line2D", c_label});
    draw(DebugRender::Line2D{{0.63f, -0.96f}, {0.71f, -0.84f}, colour(0xFFFFD030)});
    draw(DebugRender::Text2D{{0.87f, 0.96f}, "Point2D", c_label});
    draw(DebugRender::Point2D{{0.91f, -0.91f}, 0.1f, colour(0xFFE0605A)});
}

void drawEveryShape() {
    drawGround();
    drawSceneShapes();
    drawScreenShapes();
}

void announce(char const * model, unsigned int instances, unsigned int calls, unsigned int tris) {
    RenderStats & stats = *RenderStats::Instance();
    for (unsigned int i = 0; i < instances; ++i)
        if (RenderStats::StatEntry * const entry = stats.AddModelStat(model)) {
            entry->renderCalls = calls;
            entry->shaderChanges = calls / 2 + 1;
            entry->tris = tris;
        }
}

void drawTable() {
    RenderStats & stats = *RenderStats::Instance();
    stats.Enable(true);
    stats.SetSortMode(RenderStats::SortTris);
    announce("models/units/light_tank.mesh", 34, 2, 412);
    announce("models/units/heavy_tank.mesh", 12, 4, 1630);
    announce("models/units/shadow_blob.mesh", 46, 1, 2);
    announce("models/world/oak_tree.mesh", 210, 1, 96);
    announce("models/world/barracks_with_a_long_name_that_tells_all_about_it.mesh", 3, 6, 123456);
    stats.UpdateAndDraw(0.0f);
}

// Fills channels with curves that tell them apart: smooth, in steps, with peaks above a set scale and gaps.
void feedGraphs() {
    for (char const * const name :
         {"frame time", "alive", "peaks", "gaps", "swings", "a channel with a long name"}) {
        StatGraph::ChannelCreate(name);
        StatGraph::ChannelEnable(name, true);
    }
    for (unsigned int i = 0; i < StatGraph::c_ringSize; ++i) {
        float const at = static_cast<float>(i);
        StatGraph::ChannelSubmit("frame time", 16.6f + 3.0f * std::sin(at * 0.35f));
        StatGraph::ChannelSubmit("alive", 240.0f - std::floor(at / 6.0f) * 23.0f);
        StatGraph::ChannelSubmit("peaks", i % 12 == 7 ? 9.5f : 1.0f + 0.02f * at);
        StatGraph::ChannelSubmit("gaps", i % 9 == 4 ? std::nanf("") : 5.0f + 3.0f * std::cos(at * 0.2f));
        StatGraph::ChannelSubmit("swings", 8.0f * std::sin(at * 0.5f));
        StatGraph::ChannelSubmit("a channel with a long name", 0.1234f * at);
    }
    StatGraph::ChannelSetMax("peaks", 5.0f);
    StatGraph::SetVisible(true);
}

// Of an island that reaches from -1 to 1 along both axes: above 0 for land, up to about 1.
float heightAt(float x, float z) {
    float const peak = 1.15f * std::exp(-6.0f * ((x - 0.15f) * (x - 0.15f) + (z - 0.2f) * (z - 0.2f)));
    float const hill = 0.55f * std::exp(-9.0f * ((x + 0.4f) * (x + 0.4f) + (z + 0.3f) * (z + 0.3f)));
    float const waves = 0.05f * std::sin(9.0f * x + 2.0f * z) * std::cos(8.0f * z - 3.0f * x);
    return peak + hill + waves - 0.16f;
}

Colour groundAt(float height) {
    struct Belt {
        float top;
        Colour colour;
    };

    constexpr Belt c_belts[] = {
        {-0.08f, Colour::FromWord(0xFF1F4E79)}, {0.0f, Colour::FromWord(0xFF2F7FA8)},
        {0.05f, Colour::FromWord(0xFFD8C690)},  {0.22f, Colour::FromWord(0xFF6FA050)},
        {0.45f, Colour::FromWord(0xFF3F7040)},  {0.72f, Colour::FromWord(0xFF80786C)}};
    for (Belt const & belt : c_belts)
        if (height < belt.top)
            return belt.colour;
    return colour(0xFFF0F4F8);
}

std::shared_ptr<Texture const> islandMap() {
    constexpr unsigned int c_side = 256;
    Texture::Image map;
    map.Resize(c_side, c_side);
    auto const at = [](unsigned int pixel) {
        return (static_cast<float>(pixel) + 0.5f) * 2.0f / c_side - 1.0f;
    };
    for (unsigned int row = 0; row < c_side; ++row)
        for (unsigned int column = 0; column < c_side; ++column)
            map.data[row * c_side + column] = groundAt(heightAt(at(column), at(row)));
    return Texture::Of(map);
}

// A block of sea with the land on it, the sides down to y = -0.3.
MathPrim::Mesh island() {
    constexpr unsigned int c_steps = 40, c_row = c_steps + 3;
    MathPrim::Mesh mesh;
    for (unsigned int row = 0; row < c_row; ++row)
        for (unsigned int column = 0; column < c_row; ++column) {
            auto const at = [](unsigned int step) {
                return static_cast<float>(std::clamp(step, 1u, c_steps + 1) - 1) * 2.0f / c_steps - 1.0f;
            };
            bool const foot = row == 0 || column == 0 || row == c_row - 1 || column == c_row - 1;
            float const x = at(column), z = at(row);
            mesh.vertices.push_back({x, foot ? -0.3f : std::max(0.0f, heightAt(x, z)), z});
        }
    for (unsigned int row = 0; row + 1 < c_row; ++row)
        for (unsigned int column = 0; column + 1 < c_row; ++column) {
            unsigned int const corner = row * c_row + column;
            for (unsigned int const index :
                 {corner, corner + c_row, corner + c_row + 1, corner, corner + c_row + 1, corner + 1})
                mesh.indices.push_back(static_cast<std::uint16_t>(index));
        }
    return mesh;
}

void drawIslands(Renderer & renderer) {
    drawGround();
    MathPrim::Mesh const mesh = island();
    std::shared_ptr<Texture const> const map = islandMap();
    renderer.DrawTextured(mesh, {{{8, 0, 0}, {0, 4, 0}, {0, 0, 8}, {-3, 1.2f, -1}}}, map, c_scene);
    renderer.DrawTextured(mesh, {{{0, 0, 3}, {0, 3, 0}, {-3, 0, 0}, {11, 0.9f, -3}}}, map, c_scene);
    Vector3f const summit{-1.8f, 5.2f, 0.6f};
    draw(DebugRender::Line{summit, summit + Vector3f{0, 1.6f, 0}, c_label});
    draw(
        DebugRender::Text3D{summit + Vector3f{0, 1.7f, 0}, "a texture laid over a mesh from above", c_label});
    draw(DebugRender::Sphere{{-6.2f, 2.6f, -3.4f}, 1.3f, colour(0xFFE0605A)});
    draw(DebugRender::Text3D{{11, 3.8f, -3}, "the same, turned", c_label});
}

// Draws one frame by itself and saves it.
class Painter {
public:
    Painter(Renderer & renderer, std::string folder) : renderer(renderer), folder(std::move(folder)) {}

    template <class Draw>
    void Save(char const * name, Draw draw) {
        renderer.Begin();
        draw();
        DebugRender::Display();
        renderer.End();
        std::string reason;
        std::string const path = folder + "/" + name;
        if (renderer.SavePng(path.c_str(), reason)) {
            std::printf("%s\n", path.c_str());
        } else {
            std::fprintf(stderr, "%s\n", reason.c_str());
            failed = true;
        }
    }

    bool Failed() const { return failed; }

private:
    Renderer & renderer;
    std::string folder;
    bool failed = false;
};

} // namespace

int main(int argc, char ** argv) {
    std::string reason;
    std::unique_ptr<Renderer> const renderer = Renderer::OpenOffscreen(c_width, c_height, reason);
    if (!renderer) {
        std::fprintf(stderr, "%s\n", reason.c_str());
        return 1;
    }
    renderer->camera.LookAt({0, 15, -19}, {0, 0.4f, -1});
    DebugRender::Register(renderer.get());
    GraphSink graphs;
    Painter painter(*renderer, argc > 1 ? argv[1] : ".");
    painter.Save("shapes.png", drawEveryShape);
    painter.Save("textured.png", [&] { drawIslands(*renderer); });
    painter.Save("renderstats.png", [] {
        drawGround();
        drawTable();
    });
    RenderStats::Instance()->Enable(false);
    StatGraph::Register(&graphs);
    painter.Save("graphs.png", [] {
        drawGround();
        drawSceneShapes();
        feedGraphs();
        StatGraph::Update();
    });
    StatGraph::Unregister(&graphs);
    DebugRender::Unregister(renderer.get());
    return painter.Failed() ? 1 : 0;
}
