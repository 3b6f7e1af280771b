#include "samples/renderer/Renderer.h"

#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <SDL.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <functional>
#include <limits>
#include <memory>
#include <string>
#include <typeinfo>
#include <utility>
#include <vector>

namespace {

using Math::Vector3f;
using MathPrim::Colour;

// The camera stands ten units in front of the origin, so that 19.3 pixels are a unit there.
constexpr int c_width = 320, c_height = 180;
constexpr float c_nan = std::numeric_limits<float>::quiet_NaN();
constexpr float c_inf = std::numeric_limits<float>::infinity();
constexpr Colour c_green = Colour::FromWord(0xFF40C020), c_red = Colour::FromWord(0xFFE01030);
constexpr Colour c_blue = Colour::FromWord(0xFF2030F0), c_grey = Colour::FromWord(0xFF808080);

class RendererTest : public testing::Test {
protected:
    RendererTest() : renderer(Renderer::OpenOffscreen(c_width, c_height, reason)) {}

    void SetUp() override { ASSERT_TRUE(renderer) << reason; }

    // What one frame shows of what is drawn in it.
    Picture frame(std::function<void()> const & draw = [] {}) {
        EXPECT_TRUE(renderer->Begin());
        draw();
        renderer->Display();
        renderer->End();
        Picture picture;
        EXPECT_TRUE(renderer->TakePicture(picture, reason)) << reason;
        return picture;
    }

    template <class Shape>
    Picture frameOf(Shape const & shape) {
        return frame([&] { renderer->Draw(shape, "f"); });
    }

    template <class Shape>
    void draw(Shape const & shape, char const * name = "f") {
        renderer->Draw(shape, name);
    }

    // Whether anything was drawn on a pixel or beside it.
    bool marks(Picture const & picture, int x, int y) const {
        for (int i = 0; i < 9; ++i)
            if (picture.At(x - 1 + i % 3, y - 1 + i / 3) != renderer->background)
                return true;
        return false;
    }

    // Where anything was drawn, as left, top, right, bottom; all -1 for nowhere.
    std::vector<int> extent(Picture const & picture) const {
        std::vector<int> box(4, -1);
        for (int y = 0; y < c_height; ++y)
            for (int x = 0; x < c_width; ++x)
                if (picture.At(x, y) != renderer->background)
                    box = {box[0] < 0 ? x : std::min(box[0], x), box[1] < 0 ? y : box[1], std::max(box[2], x),
                           y};
        return box;
    }

    std::string reason;
    std::unique_ptr<Renderer> renderer;
};

DebugRender::Tri triangle(float x, float z, Colour colour) {
    return {{{x - 1, -1, z}, {x + 1, -1, z}, {x, 1.5f, z}}, colour};
}

DebugRender::Tri2D rightHalf(Colour colour) { return {{{0, -3}, {3, 0}, {0, 3}}, colour}; }

Math::Matrix43f movedBy(float x) { return {{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {x, 0, 0}}}; }

MathPrim::Mesh triangleMesh() { return {{{-1, -1, 0}, {1, -1, 0}, {0, 1.5f, 0}}, {0, 2, 1}, {}}; }

// A texture of two rows and columns, its pixels from the bottom left to the top right.
std::shared_ptr<Texture const> textureOf(std::vector<Colour> const & pixels) {
    Texture::Image image;
    image.Resize(2, 2);
    std::copy(pixels.begin(), pixels.end(), image.data);
    return Texture::Of(image);
}

// A box whose sides are 4, 2 and 4 long, with its top at y = 0, far from the origin of its own coordinates.
MathPrim::Mesh boxMesh() {
    MathPrim::Mesh mesh;
    for (int corner = 0; corner < 8; ++corner)
        mesh.vertices.push_back(
            {corner & 1 ? 102.0f : 98.0f, corner & 2 ? 0.0f : -2.0f, corner & 4 ? 52.0f : 48.0f});
    mesh.indices = {0, 2, 6, 0, 6, 4, 1, 5, 7, 1, 7, 3, 0, 1, 3, 0, 3, 2,
                    4, 6, 7, 4, 7, 5, 0, 4, 5, 0, 5, 1, 2, 3, 7, 2, 7, 6};
    return mesh;
}

constexpr Math::Matrix43f c_boxToOrigin{{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {-100, 0, -50}}};

DebugRender::Cube cube(float x) {
    DebugRender::Cube shape{{}, c_green, 0};
    for (int i = 0; i < 8; ++i)
        shape.corners[i] = {x + (i < 4 ? 1.0f : -1.0f), i % 4 < 2 ? 1.0f : -1.0f,
                            (i + 1) % 4 < 2 ? 1.0f : -1.0f};
    return shape;
}

struct Pixel {
    int x, y;
};

using Pixels = std::vector<Pixel>;

// Hands over each kind of shape, about the middle of the view and moved by x, with pixels that it marks and
// pixels that it leaves bare at x = 0.
template <class See>
void showEachShape(float x, See const & see) {
    using D = DebugRender;
    MathPrim::Mesh const mesh = triangleMesh();
    // filled: their middle, and their edges from both sides
    see(D::Plane3D{{x, 0, 0}, {0, 0, -1}, 2, c_green}, {{160, 90}, {142, 72}, {178, 108}},
        {{160, 66}, {184, 90}});
    see(D::Mesh{&mesh, movedBy(x), c_green}, {{160, 90}, {160, 63}, {143, 108}}, {{143, 72}, {160, 113}});
    see(triangle(x, 0, c_green), {{160, 90}, {160, 63}, {143, 108}}, {{143, 72}, {160, 113}});
    see(D::Point{{x, 0, 0}, 2, c_green}, {{160, 90}, {142, 90}, {160, 108}}, {{143, 73}, {184, 90}});
    see(D::Tri2D{{{x, 0}, {x + 0.5f, 0}, {x, 0.5f}}, c_green}, {{162, 88}, {200, 75}, {170, 55}},
        {{156, 88}, {162, 94}, {220, 55}});
    see(D::Point2D{{x, 0}, 0.4f, c_green}, {{160, 90}, {143, 90}, {160, 107}}, {{145, 75}, {182, 90}});
    // lines: hollow, in the plane that they are given, a circle level
    see(D::Line{{x - 2, 1, 0}, {x + 2, 1, 0}, c_green}, {{122, 71}, {160, 71}, {198, 71}},
        {{160, 67}, {118, 71}, {202, 71}});
    see(D::Circle{{x, -1, 0}, 2, c_green}, {{121, 109}, {199, 109}, {160, 106}, {160, 114}},
        {{160, 110}, {160, 90}});
    see(D::Circle3D{{x, 0, 0}, {0, 0, 3}, 2, c_green}, {{121, 90}, {199, 90}, {160, 51}, {160, 129}},
        {{160, 90}});
    see(D::Sphere{{x, 0, 0}, 2, c_green}, {{121, 90}, {160, 51}, {188, 62}, {160, 90}},
        {{150, 80}, {115, 90}});
    see(cube(x), {{139, 69}, {181, 111}, {142, 72}, {160, 69}}, {{160, 90}, {134, 90}});
    see(D::OvalOutline{{x, 0, 0}, {2, 0, 0}, {0, 1, 0}, c_green},
        {{121, 90}, {199, 90}, {160, 71}, {160, 109}}, {{160, 90}, {124, 73}});
    see(D::RectOutline{{x, 0, 0}, {2, 0, 0}, {0, 1, 0}, c_green},
        {{121, 90}, {121, 71}, {199, 109}, {160, 71}}, {{160, 90}});
    see(D::Line2D{{x, 0}, {x, 1}, c_green}, {{160, 88}, {160, 2}}, {{160, 94}, {154, 50}});
    // a text in the scene stands over its position, one on the screen is right of it and level with it
    see(D::Text3D{{x, 0, 0}, "HHH", c_green}, {{151, 84}, {168, 84}}, {{160, 94}, {144, 84}, {178, 84}});
    see(D::Text2D{{x + 0.5f, 0.5f}, "HHH", c_green}, {{163, 90}, {178, 90}},
        {{156, 90}, {186, 90}, {163, 79}, {163, 101}});
}

TEST_F(RendererTest, ShapesAppearWhereTheyAreSeen) {
    showEachShape(0.0f, [this](auto const & shape, Pixels const & marked, Pixels const & bare) {
        Picture const picture = frameOf(shape);
        for (Pixel const & pixel : marked)
            EXPECT_TRUE(marks(picture, pixel.x, pixel.y))
                << typeid(shape).name() << ' ' << pixel.x << ' ' << pixel.y;
        for (Pixel const & pixel : bare)
            EXPECT_FALSE(marks(picture, pixel.x, pixel.y))
                << typeid(shape).name() << ' ' << pixel.x << ' ' << pixel.y;
    });
}

TEST_F(RendererTest, WhatIsNotFiniteOrOutOfReachIsLeftOut) {
    Picture const empty = frame();
    for (float const x : {c_nan, c_inf, -c_inf, 1e30f, -3e38f})
        showEachShape(x, [&](auto const & shape, Pixels const &, Pixels const &) {
            EXPECT_EQ(frameOf(shape), empty) << typeid(shape).name() << ' ' << x;
        });
    // a size that is not a number
    EXPECT_EQ(frameOf(DebugRender::Sphere{{}, c_nan, c_green}), empty);
    EXPECT_EQ(frameOf(DebugRender::Point{{}, c_nan, c_green}), empty);
}

// Far beyond the screen there are no whole numbers of pixels left, but the part that is seen is right.
TEST_F(RendererTest, ShapesThatReachFarBeyondTheScreenAreCut) {
    Picture const picture = frameOf(DebugRender::Line{{-1e6f, 1, 0}, {1e6f, 1, 0}, c_green});
    EXPECT_EQ(extent(picture), (std::vector{0, 69, c_width - 1, 71}));
    // from behind the camera to the horizon
    Picture const ground = frameOf(DebugRender::Plane3D{{0, -1, 0}, {0, 1, 0}, 1e6f, c_green});
    EXPECT_EQ(extent(ground)[0], 0);
    EXPECT_NEAR(extent(ground)[1], 90, 2);
    for (int y = 92; y < c_height; ++y)
        for (int x = 0; x < c_width; ++x)
            ASSERT_EQ(ground.At(x, y), c_green) << x << ' ' << y;
}

TEST_F(RendererTest, ColoursAreExactAndBlended) {
    EXPECT_EQ(frameOf(triangle(0, 0, c_green)).At(160, 90), c_green);
    renderer->background = Colour::FromWord(0xFF000000);
    Colour const half = frameOf(triangle(0, 0, Colour::FromWord(0x80FF0080))).At(160, 90);
    EXPECT_NEAR(half.red, 128, 2);
    EXPECT_NEAR(half.blue, 64, 2);
    EXPECT_EQ(half.green, 0);
}

TEST_F(RendererTest, NearShapesCoverFarOnes) {
    std::shared_ptr<Texture const> const texture = textureOf({c_blue, c_blue, c_blue, c_blue});
    for (float const z : {-4.0f, 4.0f}) {
        Picture const picture = frame([&] {
            draw(triangle(0, z, c_green), "a");
            draw(triangle(0, 0, c_red), "b");
            renderer->DrawTextured(boxMesh(), c_boxToOrigin, texture, "b");
        });
        EXPECT_EQ(picture.At(160, 90) == c_green, z < 0) << z;
        EXPECT_EQ(picture.At(160, 95) == c_green, z < 0) << z;
        EXPECT_NE(picture.At(160, 95), renderer->background) << z;
    }
    // what stands on the ground, far off, before and behind the ground's middle
    for (float const z : {-3.0f, 40.0f}) {
        renderer->camera.LookAt({0, 5, -10}, {0, 1, z});
        Picture const picture = frame([&] {
            draw(DebugRender::Plane3D{{0, -1, 10}, {0, 1, 0}, 200, c_red});
            draw(triangle(0, z, c_green));
        });
        EXPECT_EQ(picture.At(160, 90), c_green) << z;
    }
}

TEST_F(RendererTest, FramesInFrontCoverNearerShapes) {
    renderer->SetAlwaysInFront("front", true);
    Picture const picture = frame([&] {
        draw(triangle(0, 5, c_green), "front");
        draw(rightHalf(c_green), "front");
        draw(triangle(0, -5, c_red));
        draw(rightHalf(c_red));
    });
    EXPECT_EQ(picture.At(158, 90), c_green);
    EXPECT_EQ(picture.At(300, 90), c_green);
}

TEST_F(RendererTest, WhatLiesOnTheScreenKeepsItsOrder) {
    Picture const picture = frame([&] {
        draw(DebugRender::Line2D{{0, 0}, {1, 0}, c_red});
        draw(DebugRender::Text2D{{0.6f, 0.4f}, "covered", c_red});
        draw(rightHalf(c_green));
    });
    EXPECT_EQ(picture, frameOf(rightHalf(c_green)));
}

// More corners than 16-bit indices can count.
TEST_F(RendererTest, ManyShapesAreAllDrawn) {
    Picture const picture = frame([&] {
        for (int i = 0; i < 20'000; ++i)
            draw(DebugRender::Line2D{{-0.5f, 0}, {-0.4f, 0}, c_red});
        draw(rightHalf(c_green));
    });
    EXPECT_EQ(extent(picture), (std::vector{80, 0, c_width - 1, c_height - 1}));
    EXPECT_EQ(picture.At(300, 90), c_green);
}

TEST_F(RendererTest, FramesAreEmptiedAfterTheyWereShown) {
    Picture const empty = frame();
    draw(triangle(0, 0, c_green), "kept");
    draw(rightHalf(c_red));
    renderer->SetAutoClear("kept", false);
    EXPECT_EQ(frame().At(300, 90), c_red);
    Picture const kept = frame();
    EXPECT_EQ(kept.At(160, 90), c_green);
    EXPECT_EQ(kept.At(300, 90), renderer->background);
    EXPECT_TRUE(renderer->GetDisplay("kept") && !renderer->GetAutoClear("kept"));
    EXPECT_FALSE(renderer->GetAlwaysInFront("kept"));
    std::vector<char const *> frames;
    renderer->List(frames);
    EXPECT_EQ(std::vector<std::string>(frames.begin(), frames.end()),
              (std::vector<std::string>{"kept", "f"}));

    // hidden frames are emptied too
    renderer->SetDisplay("kept", false);
    renderer->SetDisplay("f", false);
    draw(rightHalf(c_red));
    EXPECT_EQ(frame(), empty);
    renderer->SetDisplay("kept", true);
    renderer->SetDisplay("f", true);
    EXPECT_EQ(frame(), kept);
    renderer->Clear("kept");
    EXPECT_EQ(frame(), empty);
}

TEST_F(RendererTest, AFrameThatIsNotPaintedIsEmptiedAndLeavesTheLastPicture) {
    std::vector<int> const centre = extent(frameOf(DebugRender::Point2D{{0, 0}, 0.1f, c_red}));
    renderer->paints = false;
    EXPECT_EQ(extent(frameOf(DebugRender::Point2D{{0.5f, 0}, 0.1f, c_red})), centre);
    renderer->paints = true;
    EXPECT_EQ(extent(frame()), std::vector<int>(4, -1));
}

TEST_F(RendererTest, WhatIsLentIsCopied) {
    std::string text = "text";
    MathPrim::Mesh mesh = triangleMesh();
    auto const drawBoth = [&] {
        draw(DebugRender::Text2D{{0.1f, 0.1f}, text.c_str(), c_green});
        draw(DebugRender::Text3D{{0, 2, 0}, text.c_str(), c_green});
        draw(DebugRender::Mesh{&mesh, movedBy(0), c_green});
    };
    Picture const expected = frame(drawBoth);
    drawBoth();
    text = "gone";
    mesh.vertices = {};
    EXPECT_EQ(frame(), expected);
}

TEST_F(RendererTest, MeshesDropWhatHasNoTriangle) {
    Picture const empty = frame();
    MathPrim::Mesh mesh = triangleMesh();
    DebugRender::Mesh const shape{&mesh, movedBy(0), c_green};
    Picture const whole = frameOf(shape);
    mesh.indices.insert(mesh.indices.begin(), {0, 1, 3}); // no such vertex
    mesh.indices.push_back(0);                            // no triangle
    EXPECT_EQ(frameOf(shape), whole);
    mesh.indices.clear();
    EXPECT_EQ(frameOf(shape), empty);
    EXPECT_EQ(frameOf(DebugRender::Mesh{nullptr, movedBy(0), c_green}), empty);
}

// A text marks nothing outside of its measured size, but for its shadow, and no less than the letters fill.
TEST_F(RendererTest, TextsFillTheirMeasuredSize) {
    char const * const text = "Wide [text] jpq";
    int const width = static_cast<int>(renderer->GetTextWidth(text) * c_width + 0.5f);
    int const height = static_cast<int>(renderer->GetTextHeight() * c_height + 0.5f);
    EXPECT_EQ(width, 15 * 7);
    EXPECT_EQ(height, 13);
    std::vector<int> const box = extent(frameOf(DebugRender::Text2D{{0.25f, 0.5f}, text, c_green}));
    EXPECT_GE(box[0], c_width / 4);
    EXPECT_LE(box[2], c_width / 4 + width);
    EXPECT_GE(box[2] - box[0], width - 4);
    EXPECT_GE(box[1], c_height / 2 - height / 2 - 1);
    EXPECT_LE(box[3], c_height / 2 + height / 2 + 1);
    EXPECT_GE(box[3] - box[1], height - 4);
}

TEST_F(RendererTest, TextsMayBeNullHugeAndNoUtf8) {
    Picture const empty = frame();
    EXPECT_EQ(renderer->GetTextWidth(nullptr), 0.0f);
    EXPECT_EQ(frameOf(DebugRender::Text2D{{0.5f, 0.5f}, nullptr, c_green}), empty);
    EXPECT_EQ(frameOf(DebugRender::Text3D{{}, nullptr, c_green}), empty);
    std::string const huge(3'000'000, 'H');
    EXPECT_GT(renderer->GetTextWidth(huge.c_str()), 1.0f);
    Picture const picture = frame([&] {
        draw(DebugRender::Text2D{{0.5f, 0.5f}, huge.c_str(), c_green});
        draw(DebugRender::Text3D{{}, huge.c_str(), c_green});
    });
    EXPECT_TRUE(marks(picture, c_width - 3, 90));
    EXPECT_NE(frameOf(DebugRender::Text2D{{0.5f, 0.5f}, "\xFF\xC0", c_green}), empty);
}

TEST_F(RendererTest, TheSameIsDrawnEachTimeToTheByte) {
    TemporaryFolder const folder;
    std::unique_ptr<Renderer> const first = std::move(renderer);
    for (char const * const name : {"first.png", "second.png"}) {
        renderer = Renderer::OpenOffscreen(c_width, c_height, reason);
        frame([&] {
            showEachShape(0.1f, [this](auto const & shape, Pixels const &, Pixels const &) { draw(shape); });
            renderer->DrawTextured(boxMesh(), c_boxToOrigin, textureOf({c_red, c_green, c_blue, c_grey}),
                                   "f");
        });
        ASSERT_TRUE(renderer->SavePng((folder / name).c_str(), reason)) << reason;
    }
    EXPECT_EQ(folder.ReadFile("first.png").substr(0, 8), "\x89PNG\r\n\x1A\n");
    EXPECT_EQ(folder.ReadFile("first.png"), folder.ReadFile("second.png"));

    EXPECT_FALSE(renderer->SavePng((folder / "missing/picture.png").c_str(), reason));
    EXPECT_NE(reason.find("missing/picture.png"), std::string::npos) << reason;
}

TEST_F(RendererTest, TheCameraTurnsZoomsAndPicks) {
    Camera & camera = renderer->camera;
    camera.Orbit(1.5707964f, 0.0f); // to the right: the origin is seen from the east
    EXPECT_NEAR(camera.Position().x, 10.0f, 1e-4f);
    EXPECT_NEAR(camera.Position().z, 0.0f, 1e-4f);
    camera.Zoom(0.5f);
    EXPECT_NEAR(camera.Position().x, 5.0f, 1e-4f);
    camera.Zoom(-1.0f);
    camera.Zoom(c_nan);
    EXPECT_NEAR(camera.Position().x, 5.0f, 1e-4f);
    for (int i = 0; i < 10; ++i)
        camera.Orbit(0.0f, 1.0f);
    EXPECT_NEAR(camera.Position().y, 5.0f, 0.01f);
    EXPECT_EQ(frameOf(DebugRender::Point{{}, 1, c_green}).At(160, 90), c_green);

    // a ray through a pixel meets what is seen there
    camera.LookAt({3, 4, -5}, {0, 1, 2});
    float const aspect = static_cast<float>(c_width) / c_height;
    MathPrim::Rayf const ray = camera.RayThrough({0.4f, -0.3f}, aspect);
    Vector3f const seen = camera.ToScreen(ray.origin + ray.direction * 7.0f, aspect);
    EXPECT_NEAR(seen.x / seen.z, 0.4f, 1e-4f);
    EXPECT_NEAR(seen.y / seen.z, -0.3f, 1e-4f);
}

// The texture's colour, in the light that the face has.
void expectShaded(Colour shown, Colour colour, float light) {
    EXPECT_NEAR(shown.red, static_cast<float>(colour.red) * light, 2);
    EXPECT_NEAR(shown.green, static_cast<float>(colour.green) * light, 2);
    EXPECT_NEAR(shown.blue, static_cast<float>(colour.blue) * light, 2);
}

TEST_F(RendererTest, TexturesLieOverMeshesFromAbove) {
    constexpr float c_topLight = 0.923f, c_southLight = 0.867f;
    MathPrim::Mesh const box = boxMesh();
    std::shared_ptr<Texture const> texture = textureOf({c_red, c_green, c_blue, c_grey});
    auto const drawBox = [&] { renderer->DrawTextured(box, c_boxToOrigin, texture, "f"); };

    renderer->camera.LookAt({0, 12, -0.01f}, {0, 0, 0}); // straight down, with z ahead
    Picture const above = frame(drawBox);
    expectShaded(above.At(150, 100), c_red, c_topLight);
    expectShaded(above.At(170, 80), c_grey, c_topLight);

    // the southern side shows the bottom row
    renderer->camera.LookAt({0, -1, -12}, {0, -1, 0});
    Picture const south = frame(drawBox);
    expectShaded(south.At(150, 90), c_red, c_southLight);
    expectShaded(south.At(170, 90), c_green, c_southLight);

    // a picture that was loaded anew shows at once, also where it took the memory of the old one
    texture.reset();
    texture = textureOf({c_blue, c_grey, c_red, c_green});
    expectShaded(frame(drawBox).At(150, 90), c_blue, c_southLight);
}

// A wall laid down, many of whose parts have corners that fall together or make rectangles in pixels, and
// which stands on one row of the texture.
TEST_F(RendererTest, ATextureOfOneColourLooksLikeNone) {
    MathPrim::Mesh wall;
    for (int corner = 0; corner < 20 * 20; ++corner)
        wall.vertices.push_back({static_cast<float>(corner % 20), static_cast<float>(corner / 20), 0});
    for (int corner = 0; corner < 20 * 19; ++corner)
        if (corner % 20 < 19)
            for (int const next : {0, 20, 21, 0, 21, 1})
                wall.indices.push_back(static_cast<std::uint16_t>(corner + next));
    constexpr Colour c_colour = Colour::FromWord(0xFFFF00FF);
    std::shared_ptr<Texture const> const texture = textureOf({c_colour, c_colour, c_colour, c_colour});
    renderer->camera.LookAt({0, 15, -19}, {0, 0, 0});
    for (float x = -6.0f; x < 4.0f; x += 0.7f) {
        Math::Matrix43f const laid{{{0, 0, 0.25f}, {-0.25f, 0, 0}, {0, 1, 0}, {x + 5.0f, 0, -4}}};
        EXPECT_EQ(frame([&] { renderer->DrawTextured(wall, laid, texture, "f"); }),
                  frameOf(DebugRender::Mesh{&wall, laid, c_colour}))
            << x;
    }
}

TEST_F(RendererTest, WhatHasNoTextureOrPlaceIsNotDrawn) {
    Picture const empty = frame();
    MathPrim::Mesh mesh = boxMesh();
    std::shared_ptr<Texture const> const texture = textureOf({c_red, c_green, c_blue, c_grey});
    auto const frameWith = [&](Math::Matrix43f const & transform,
                               std::shared_ptr<Texture const> const & worn) {
        return frame([&] { renderer->DrawTextured(mesh, transform, worn, "f"); });
    };
    EXPECT_NE(frameWith(c_boxToOrigin, texture), empty);
    EXPECT_EQ(frameWith(c_boxToOrigin, Texture::Of({})), empty);
    for (float const bad : {c_nan, c_inf, 1e30f}) {
        EXPECT_EQ(frameWith(movedBy(bad), texture), empty) << bad;
        EXPECT_EQ(frameWith({{{bad, bad, bad}, {}, {}, {}}}, texture), empty) << bad;
        mesh.vertices[0].x = bad; // leaves out the faces that meet there
        EXPECT_NE(frameWith(c_boxToOrigin, texture), empty) << bad;
        mesh = boxMesh();
    }
    mesh.indices.clear();
    EXPECT_EQ(frameWith(c_boxToOrigin, texture), empty);
}

TEST_F(RendererTest, WithoutADisplayThereIsNoWindowButAReason) {
    for (char const * const way : {"DISPLAY", "WAYLAND_DISPLAY", "XDG_RUNTIME_DIR", "SDL_VIDEODRIVER"})
        unsetenv(way);
    for (char const * const driver : {static_cast<char const *>(nullptr), "none such"}) {
        SDL_SetHintWithPriority(SDL_HINT_VIDEODRIVER, driver, SDL_HINT_OVERRIDE);
        reason.clear();
        EXPECT_FALSE(Renderer::OpenWindow("test", c_width, c_height, reason));
        EXPECT_FALSE(reason.empty());
    }
}

TEST_F(RendererTest, WindowsDrawAndHandKeysOn) {
    SDL_SetHintWithPriority(SDL_HINT_VIDEODRIVER, "dummy", SDL_HINT_OVERRIDE);
    renderer = Renderer::OpenWindow("test", c_width, c_height, reason);
    ASSERT_TRUE(renderer) << reason;
    std::string keys;
    renderer->onKey = [&](char const * key, bool repeated) {
        keys.append(key).append(repeated ? "+ " : " ");
    };
    SDL_Event event{};
    event.type = SDL_KEYDOWN;
    event.key.keysym.sym = SDLK_UP;
    SDL_PushEvent(&event);
    event.key.repeat = 1;
    SDL_PushEvent(&event);
    Picture const picture = frameOf(triangle(0, 0, c_green));
    EXPECT_EQ(keys, "Up Up+ ");
    EXPECT_EQ(picture.At(160, 90), c_green);
    EXPECT_EQ(picture.At(140, 70), renderer->background);
    event.type = SDL_QUIT;
    SDL_PushEvent(&event);
    EXPECT_FALSE(renderer->Begin());
}

} // namespace
