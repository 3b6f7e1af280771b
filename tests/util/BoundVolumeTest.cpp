#include "Cross/Util/BoundVolume.h"
#include "tests/support/ActingProxy.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <random>
#include <sstream>
#include <type_traits>
#include <vector>

static_assert(std::is_trivially_copyable_v<BoundVolume> && std::is_standard_layout_v<BoundVolume>);
static_assert(sizeof(BoundVolume) == 80, "box, sphere, flag, and nothing virtual");

namespace {

using Math::Matrix3f;
using Math::Vector3f;
using MathPrim::OBBf;
using MathPrim::Rayf;
using MathPrim::Spheref;

constexpr float c_largest = 3.4028235e38f;
constexpr float c_nan = std::numeric_limits<float>::quiet_NaN();
constexpr Matrix3f c_identity = {{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}};
constexpr Matrix3f c_quarterTurn = {{{0, 1, 0}, {-1, 0, 0}, {0, 0, 1}}}; // x to y, y to -x
constexpr Matrix3f c_thirdTurn = {{{0, 1, 0}, {0, 0, 1}, {1, 0, 0}}};    // x to y, y to z, z to x
constexpr OBBf c_turnedBox = {{1, 2, 3}, {4, 2, 1}, c_thirdTurn};        // world x 0..2, y -2..6, z 1..5

BoundVolume volumeOf(OBBf const & box) {
    BoundVolume volume;
    volume.SetOBB(box);
    return volume;
}

BoundVolume volumeOf(Spheref const & sphere) {
    BoundVolume volume;
    volume.SetSphere(sphere);
    return volume;
}

BoundVolume built(std::vector<Vector3f> const & points) {
    BoundVolume volume;
    volume.Build(points.data(), static_cast<unsigned int>(points.size()));
    return volume;
}

template <class T>
bool sameBits(T const & left, T const & right) {
    return std::memcmp(&left, &right, sizeof(T)) == 0;
}

void expectSame(BoundVolume const & left, BoundVolume const & right) {
    EXPECT_EQ(left.IsValid(), right.IsValid());
    EXPECT_EQ(left.GetOBB(), right.GetOBB());
    EXPECT_EQ(left.GetSphere(), right.GetSphere());
}

// Point by point, as the range is defined.
void expectRange(BoundVolume const & volume, std::vector<Vector3f> const & points) {
    Vector3f min = {c_largest, c_largest, c_largest}, max = {-c_largest, -c_largest, -c_largest};
    for (Vector3f const & point : points)
        for (float Vector3f::*axis : {&Vector3f::x, &Vector3f::y, &Vector3f::z}) {
            min.*axis = point.*axis < min.*axis ? point.*axis : min.*axis;
            max.*axis = point.*axis > max.*axis ? point.*axis : max.*axis;
        }
    Vector3f const half = (max - min) * 0.5f;
    EXPECT_TRUE(volume.IsValid());
    EXPECT_TRUE(sameBits(volume.GetOBB(), OBBf{(min + max) * 0.5f, half, c_identity})) << points.size();
    EXPECT_TRUE(sameBits(volume.GetSphere(), Spheref{min + half, std::sqrt(Dot(half, half))}))
        << points.size();
}

} // namespace

TEST(BoundVolume, StartsAndClearsAsAPoint) {
    BoundVolume volume = volumeOf(c_turnedBox);
    volume.Clear();
    for (BoundVolume const & cleared : {BoundVolume(), volume, built({})}) {
        EXPECT_FALSE(cleared.IsValid());
        EXPECT_EQ(cleared.GetOBB(), (OBBf{{}, {}, c_identity}));
        EXPECT_EQ(cleared.GetSphere(), (Spheref{}));
        EXPECT_TRUE(cleared.Intersect(Vector3f{0, 0, 0})) << "tests do not ask for validity";
        EXPECT_FALSE(cleared.Intersect(Vector3f{0, 1e-20f, 0}));
    }
}

TEST(BoundVolume, BoxAndSphereFollowEachOther) {
    BoundVolume volume = volumeOf(OBBf{{1, 2, 3}, {2, 3, 6}, c_quarterTurn});
    EXPECT_TRUE(volume.IsValid());
    EXPECT_EQ(volume.GetOBB(), (OBBf{{1, 2, 3}, {2, 3, 6}, c_quarterTurn}));
    EXPECT_EQ(volume.GetSphere(), (Spheref{{1, 2, 3}, 7}));
    volume.SetSphere({{5, 6, 7}, 2});
    EXPECT_EQ(volume.GetOBB(), (OBBf{{5, 6, 7}, {2, 2, 2}, c_identity}));
    EXPECT_EQ(volume.GetSphere(), (Spheref{{5, 6, 7}, 2})) << "not the one around the cube";
}

// Every length around the four points that are taken at once, at every alignment of floats, with what plain
// comparisons leave out or keep: NaN, infinities, and zeros, of which the first keeps its sign.
TEST(BoundVolume, BuildTakesTheRangeBitForBit) {
    float const odd[] = {c_nan, 0.0f, -0.0f, c_largest, -c_largest, std::numeric_limits<float>::infinity()};
    std::mt19937 random(1);
    for (unsigned int count = 1; count < 40; ++count)
        for (unsigned int kind = 0; kind < 60; ++kind) {
            auto const pick = [&] {
                if (random() % 4 < kind % 5)
                    return odd[random() % (kind % 2 ? 6 : 3)];
                return static_cast<float>(random() % 2000) * (kind < 30 ? 0.1f : -0.1f);
            };
            std::vector<Vector3f> points(count);
            for (Vector3f & point : points)
                point = {pick(), pick(), pick()};
            expectRange(built(points), points);
        }
    for (float const same : {0.0f, -0.0f, c_nan, 7.0f})
        expectRange(built(std::vector<Vector3f>(9, {same, same, same})),
                    std::vector<Vector3f>(9, {same, same, same}));
}

TEST(BoundVolume, SumsAreAlongTheAxes) {
    BoundVolume const turned = volumeOf(c_turnedBox);
    BoundVolume volume = turned;
    EXPECT_EQ(&(volume += BoundVolume()), &volume);
    expectSame(volume, turned);
    BoundVolume copy;
    copy += turned;
    expectSame(copy, turned);
    volume += volume;
    EXPECT_EQ(volume.GetOBB(), (OBBf{{1, 2, 3}, {1, 4, 2}, c_identity}));
    EXPECT_EQ(volume.GetSphere(), (Spheref{{1, 2, 3}, std::sqrt(21.0f)}));
    volume += volumeOf(Spheref{{10, 2, 3}, 1});
    EXPECT_EQ(volume.GetOBB(), (OBBf{{5.5f, 2, 3}, {5.5f, 4, 2}, c_identity})) << "the box of the sphere";
    BoundVolume nothing;
    nothing += BoundVolume();
    EXPECT_FALSE(nothing.IsValid());
}

TEST(BoundVolume, ScaleTakesTheSphereAnew) {
    BoundVolume volume = volumeOf(OBBf{{1, 2, 3}, {2, 3, 6}, c_quarterTurn});
    volume.Scale(2);
    expectSame(volume, volumeOf(OBBf{{1, 2, 3}, {4, 6, 12}, c_quarterTurn}));
    EXPECT_EQ(volume.GetSphere().radius, 14);
    BoundVolume ball = volumeOf(Spheref{{1, 2, 3}, 5});
    ball.Scale(1);
    EXPECT_EQ(ball.GetSphere().radius, std::sqrt(75.0f)) << "half the diagonal of the cube";
    BoundVolume wide = built({{-2, 0, 0}, {16777215, 0, 0}});
    EXPECT_EQ(wide.GetSphere().center.x, 8388606) << "rounded otherwise than the box";
    wide.Scale(1);
    EXPECT_EQ(wide.GetSphere().center.x, 8388606.5f);
}

TEST(BoundVolume, TransformMovesBothCentres) {
    Math::Matrix43f const move = {{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {10, 20, 30}}};
    BoundVolume ball = volumeOf(Spheref{{1, 2, 3}, 5});
    ball.Transform(move);
    expectSame(ball, volumeOf(Spheref{{11, 22, 33}, 5}));

    Math::Matrix43f const turn = {
        {c_quarterTurn.rows[0], c_quarterTurn.rows[1], c_quarterTurn.rows[2], {10, 20, 30}}};
    BoundVolume box = volumeOf(c_turnedBox);
    box.Transform(turn);
    Matrix3f const bothTurns = {{{-1, 0, 0}, {0, 0, 1}, {0, 1, 0}}};
    expectSame(box, volumeOf(OBBf{{8, 21, 33}, {4, 2, 1}, bothTurns}));

    BoundVolume invalid;
    invalid.Transform(turn);
    invalid.Scale(c_nan);
    expectSame(invalid, BoundVolume());
}

TEST(BoundVolume, APointOnTheFaceIsInside) {
    BoundVolume const volume = volumeOf(c_turnedBox);
    for (Vector3f const & inside :
         {Vector3f{1, 2, 3}, Vector3f{0, -2, 1}, Vector3f{2, 6, 5}, Vector3f{c_nan, 2, 3}})
        EXPECT_TRUE(volume.Intersect(inside)) << inside.x << ' ' << inside.y << ' ' << inside.z;
    for (Vector3f const & outside : {Vector3f{2.001f, 2, 3}, Vector3f{-0.001f, 2, 3}, Vector3f{1, 6.001f, 3},
                                     Vector3f{1, -2.001f, 3}, Vector3f{1, 2, 5.001f}, Vector3f{1, 2, 0.999f}})
        EXPECT_FALSE(volume.Intersect(outside)) << outside.x << ' ' << outside.y << ' ' << outside.z;
}

TEST(BoundVolume, RaysEnterOrLeave) {
    struct Case {
        Rayf ray;
        bool hits;
        Vector3f hit;
    };

    Case const c_cases[] = {
        // from outside to the near face, along each axis and sign; the length of the direction does not count
        {{{-5, 2, 3}, {1, 0, 0}}, true, {0, 2, 3}},
        {{{1, -9, 3}, {0, 4, 0}}, true, {1, -2, 3}},
        {{{1, 2, 9}, {0, 0, -1}}, true, {1, 2, 5}},
        {{{-1, 2, 2}, {1, 0, 1}}, true, {0, 2, 3}},
        // from inside to the far face, from a face into the box to the other side
        {{{1, 2, 3}, {0, 1, 0}}, true, {1, 6, 3}},
        {{{0, 2, 3}, {1, 0, 0}}, true, {2, 2, 3}},
        // where the first of the slabs ends
        {{{1, 2, 3}, {1, 1, 0}}, true, {2, 3, 3}},
        // from a face away from the box: the face itself
        {{{2, 2, 3}, {1, 0, 0}}, true, {2, 2, 3}},
        // away from it, past it, and through one slab behind the other
        {{{-5, 2, 3}, {-1, 0, 0}}, false, {}},
        {{{-5, 7, 3}, {1, 0, 0}}, false, {}},
        {{{-5, 2, 3}, {1, 0, 1}}, false, {}},
        // parallel on the face counts, and a direction of at most 1e-6 is parallel
        {{{-5, 6, 3}, {1, 0, 0}}, true, {0, 6, 3}},
        {{{-5, 6.001f, 3}, {1, 0, 0}}, false, {}},
        {{{-5, 2, 3}, {1e-6f, 0, 0}}, false, {}},
        {{{-5, 2, 3}, {0x1p-19f, 0, 0}}, true, {0, 2, 3}},
        // no direction: nothing is cut, and 0 times the longest way stays
        {{{1, 2, 3}, {0, 0, 0}}, true, {1, 2, 3}},
    };
    BoundVolume const volume = volumeOf(c_turnedBox);
    for (Case const & test : c_cases) {
        Vector3f const before = {-77, -77, -77};
        Vector3f hit = before;
        EXPECT_EQ(volume.Intersect(test.ray, hit), test.hits) << &test - c_cases;
        EXPECT_EQ(hit, test.hits ? test.hit : before) << &test - c_cases;
    }
    Vector3f hit;
    EXPECT_TRUE(built({{0, 0, 0}, {2, 0, 2}}).Intersect({{1, 5, 1}, {0, -1, 0}}, hit)) << "a flat box";
    EXPECT_EQ(hit, (Vector3f{1, 0, 1}));
}

TEST(BoundVolume, SpheresTouch) {
    BoundVolume const volume = volumeOf(Spheref{{1, 2, 3}, 2});
    Vector3f point = {-77, -77, -77};
    EXPECT_FALSE(volume.Intersect(Spheref{{1, 2, 9.001f}, 4}, point));
    EXPECT_EQ(point, (Vector3f{-77, -77, -77}));
    EXPECT_FALSE(volume.Intersect(volumeOf(Spheref{{1, 2, 9.001f}, 4})));

    EXPECT_TRUE(volume.Intersect(volumeOf(Spheref{{1, 2, 9}, 4}))) << "in one point";
    EXPECT_TRUE(volume.Intersect(Spheref{{1, 2, 9}, 4}, point));
    EXPECT_EQ(point, (Vector3f{1, 2, -0.99999189f})) << "two steps of the fast root: 0.16666633 for 1 / 6";
    EXPECT_TRUE(volume.Intersect(Spheref{{1, 2, 3}, 0}, point));
    EXPECT_EQ(point, (Vector3f{1, 2, 3})) << "the same centre";
    EXPECT_TRUE(volume.Intersect(Spheref{{c_nan, 2, 3}, 0}, point)) << "no number is not greater";
}

TEST(BoundVolume, DisplayDrawsBoxAndSphere) {
    BoundVolume const volume = volumeOf(OBBf{{1, 2, 3}, {2, 3, 6}, c_quarterTurn});
    std::ostringstream out;
    ActingProxy<DebugRender::Cube> proxy(out);
    DebugRender::Register(&proxy);
    volume.Display();
    char const * const c_cube =
        R"({"call":"Draw","shape":"Cube","frame":"Global","corners":[[-2,4,9],[-2,4,-3],[4,4,-3],[4,4,9],)"
        R"([-2,0,9],[-2,0,-3],[4,0,-3],[4,0,9]],"colour":"0xFF0000FF","flag":0})";
    char const * const c_sphere =
        R"({"call":"Draw","shape":"Sphere","frame":"Global","centre":[1,2,3],"radius":7,"colour":"0xFFFF0000"})";
    EXPECT_EQ(out.str(), std::string(c_cube) + "\n" + c_sphere + "\n");

    out.str("");
    proxy.act = [&] { DebugRender::Unregister(&proxy); };
    volume.Display();
    EXPECT_EQ(out.str(), std::string(c_cube) + "\n") << "a proxy that left is not called again";
    volume.Display();
    EXPECT_EQ(DebugRender::s_pProxy, nullptr);
}
