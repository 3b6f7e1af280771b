#include "samples/renderer/Pieces.h"

#include "samples/renderer/Camera.h"

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <cstdint>
#include <numbers>

namespace {

using Math::Vector3f;
using Outline = std::vector<Corner>;

constexpr float c_reach = 1e9f;        // what is farther has no useful place on the screen
constexpr float c_textReach = 1000.0f; // of the screen: a text beyond has no letter on it
constexpr float c_margin = 1.05f;      // of the screen, so that the ends of cut lines stay out of sight
constexpr float c_sliceRatio = 1.015f; // the depth of a slice's far end over that of its near end
constexpr float c_lineBias = 0.993f;   // lines on a surface are in front of it, by half a slice
constexpr float c_textBias = 0.986f;
constexpr unsigned int c_discCorners = 32;
constexpr float c_lineWidth = 1.5f; // in pixels
constexpr float c_textPixelsPerShadow = 13.0f;
constexpr float c_leastDisc = 2.0f; // radius in pixels

ImU32 packed(MathPrim::Colour colour) {
    return IM_COL32(colour.red, colour.green, colour.blue, colour.alpha);
}

bool inReach(Vector3f const & p) {
    return std::abs(p.x) < c_reach && std::abs(p.y) < c_reach && std::abs(p.z) < c_reach;
}

bool isInReach(Corner const & corner) {
    return inReach(corner.position) && std::isfinite(corner.place.x) && std::isfinite(corner.place.y);
}

Corner between(Corner const & a, Corner const & b, float part) {
    return {a.position + (b.position - a.position) * part,
            {a.place.x + (b.place.x - a.place.x) * part, a.place.y + (b.place.y - a.place.y) * part}};
}

// Copies the part of an outline where `distance` is not negative. Two corners are a line.
template <class Distance>
void copyInside(Outline const & from, Outline & to, Distance distance) {
    to.clear();
    for (std::size_t i = 0; i < from.size(); ++i) {
        Corner const & start = from[i];
        float const startDistance = distance(start.position);
        if (startDistance >= 0.0f)
            to.push_back(start);
        if (from.size() == 2 && i == 1)
            return;
        Corner const & end = from[(i + 1) % from.size()];
        float const endDistance = distance(end.position);
        if ((startDistance >= 0.0f) != (endDistance >= 0.0f))
            to.push_back(between(start, end, startDistance / (startDistance - endDistance)));
    }
}

} // namespace

void Pieces::AddArea(std::span<Vector3f const> corners, MathPrim::Colour colour) {
    addOutline(corners, {1.0f, Kind::Area, colour});
}

void Pieces::AddSurface(std::span<Corner const> corners, ImTextureID texture, MathPrim::Colour colour,
                        Side side) {
    outline.assign(corners.begin(), corners.end());
    addOutline(
        {side == Side::Back ? c_sliceRatio : 1.0f, texture ? Kind::Textured : Kind::Area, colour, texture});
}

void Pieces::AddLine(Vector3f const & start, Vector3f const & end, MathPrim::Colour colour) {
    Vector3f const ends[] = {start, end};
    addOutline(ends, {c_lineBias, Kind::Line, colour});
}

void Pieces::AddDisc(Vector3f const & centre, float radius, MathPrim::Colour colour) {
    float const y = std::max(std::abs(radius), c_leastDisc * 2.0f / screen.y * centre.z);
    float const x = y * screen.y / screen.x;
    Vector3f corners[c_discCorners];
    for (unsigned int i = 0; i < c_discCorners; ++i) {
        float const angle = 2.0f * std::numbers::pi_v<float> * static_cast<float>(i) / c_discCorners;
        corners[i] = centre + Vector3f{x * std::cos(angle), y * std::sin(angle), 0.0f};
    }
    addOutline(corners, {1.0f, Kind::Disc, colour});
}

void Pieces::AddText(Vector3f const & position, std::string const & text, Anchor anchor,
                     MathPrim::Colour colour) {
    float const off = std::max(std::abs(position.x), std::abs(position.y));
    if (!inReach(position) || position.z < Camera::c_near || off > c_textReach * position.z)
        return;
    pieces.push_back({position.z * c_textBias, Kind::Text, colour, nullptr, points.size(), 1, &text, anchor});
    addPoint({position, {}});
}

void Pieces::Paint(ImDrawList & list, float textSize) {
    if (order == Order::BackToFront)
        std::stable_sort(pieces.begin(), pieces.end(),
                         [](Piece const & a, Piece const & b) { return a.depth > b.depth; });
    for (Piece const & piece : pieces)
        paint(list, piece, textSize);
}

void Pieces::addOutline(std::span<Vector3f const> corners, Piece const & piece) {
    outline.clear();
    for (Vector3f const & corner : corners)
        outline.push_back({corner, {}});
    addOutline(piece);
}

void Pieces::addOutline(Piece const & piece) {
    if (!std::all_of(outline.begin(), outline.end(), isInReach))
        return;
    cutToScreen();
    addSlices(piece);
}

void Pieces::cutToScreen() {
    auto const keep = [this](auto distance) {
        copyInside(outline, cut, distance);
        outline.swap(cut);
    };
    keep([](Vector3f const & p) { return p.z - Camera::c_near; });
    keep([](Vector3f const & p) { return c_margin * p.z + p.x; });
    keep([](Vector3f const & p) { return c_margin * p.z - p.x; });
    keep([](Vector3f const & p) { return c_margin * p.z + p.y; });
    keep([](Vector3f const & p) { return c_margin * p.z - p.y; });
}

// The slices are the same for all shapes, so that parts of neighbouring areas meet at the same corners.
void Pieces::addSlices(Piece const & piece) {
    if (outline.empty())
        return;
    auto const [nearest, farthest] =
        std::minmax_element(outline.begin(), outline.end(),
                            [](Corner const & a, Corner const & b) { return a.position.z < b.position.z; });
    float const end = farthest->position.z;
    for (float slice = std::floor(std::log(nearest->position.z) / std::log(c_sliceRatio)) + 1.0f;; ++slice) {
        float const depth = std::pow(c_sliceRatio, slice);
        if (depth >= end)
            break;
        copyInside(outline, cut, [depth](Vector3f const & p) { return depth - p.z; });
        addPiece(cut, piece);
        copyInside(outline, cut, [depth](Vector3f const & p) { return p.z - depth; });
        outline.swap(cut);
    }
    addPiece(outline, piece);
}

void Pieces::addPiece(std::span<Corner const> corners, Piece piece) {
    if (corners.size() < (piece.kind == Kind::Line ? 2 : 3))
        return;
    float depth = 0.0f;
    piece.first = points.size();
    piece.count = corners.size();
    for (Corner const & corner : corners) {
        depth += corner.position.z / static_cast<float>(corners.size());
        addPoint(corner);
    }
    piece.depth *= depth;
    pieces.push_back(piece);
}

void Pieces::addPoint(Corner const & corner) {
    points.push_back(toPixels(corner.position));
    places.emplace_back(corner.place.x, corner.place.y);
}

ImVec2 Pieces::toPixels(Vector3f const & position) const {
    return {(0.5f + 0.5f * position.x / position.z) * screen.x,
            (0.5f - 0.5f * position.y / position.z) * screen.y};
}

void Pieces::paint(ImDrawList & list, Piece const & piece, float textSize) const {
    ImVec2 const * const corners = points.data() + piece.first;
    int const count = static_cast<int>(piece.count);
    switch (piece.kind) {
    case Kind::Area: // without soft edges, which would show where parts meet
        list.Flags &= ~ImDrawListFlags_AntiAliasedFill;
        list.AddConvexPolyFilled(corners, count, packed(piece.colour));
        break;
    case Kind::Textured:
        paintTextured(list, piece);
        break;
    case Kind::Disc:
        list.Flags |= ImDrawListFlags_AntiAliasedFill;
        list.AddConvexPolyFilled(corners, count, packed(piece.colour));
        break;
    case Kind::Line:
        list.AddPolyline(corners, count, packed(piece.colour), ImDrawFlags_None, c_lineWidth);
        break;
    case Kind::Text:
        paintText(list, piece, textSize);
        break;
    }
}

// As a fan of triangles.
void Pieces::paintTextured(ImDrawList & list, Piece const & piece) const {
    int const count = 3 * static_cast<int>(piece.count - 2);
    list.PushTextureID(piece.texture);
    list.PrimReserve(count, count);
    for (std::size_t corner = 2; corner < piece.count; ++corner)
        for (std::size_t const i : {piece.first, piece.first + corner - 1, piece.first + corner})
            list.PrimVtx(points[i], places[i], packed(piece.colour));
    list.PopTextureID();
}

// A shadow keeps a text readable over shapes of its own colour.
void Pieces::paintText(ImDrawList & list, Piece const & piece, float textSize) const {
    char const * const text = piece.text->data();
    char const * const end = text + piece.text->size();
    ImFont const * const font = ImGui::GetFont();
    ImVec2 place = points[piece.first];
    if (piece.anchor == Anchor::Below) {
        ImVec2 const size = font->CalcTextSizeA(textSize, FLT_MAX, 0.0f, text, end);
        place = {place.x - size.x / 2.0f, place.y - size.y};
    } else {
        place.y -= textSize / 2.0f;
    }
    MathPrim::Colour const shadow{0, 0, 0, static_cast<std::uint8_t>(piece.colour.alpha * 3 / 4)};
    float const offset = std::max(1.0f, std::floor(textSize / c_textPixelsPerShadow));
    list.AddText(font, textSize, {place.x + offset, place.y + offset}, packed(shadow), text, end);
    list.AddText(font, textSize, place, packed(piece.colour), text, end);
}
