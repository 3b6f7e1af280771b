#pragma once

// Pieces: what is to be painted, cut into parts that are thin in depth, so that painting them from back to
// front looks right without a depth buffer. Positions have x and y from -1 to 1 over the screen, y up, once
// they are divided by z, the depth; what lies on the screen itself has the depth 1.
//
// What is outside the screen is cut away; what has a coordinate that is not finite, or beyond 1e9, is left
// out. Texts are borrowed until they are painted.

#include "Cross/engine/core/Math.h"
#include "Cross/engine/core/MathPrim.h"
#include "samples/renderer/Vectors.h"

#include <cstddef>
#include <span>
#include <string>
#include <vector>

#include <imgui.h>

class Pieces {
public:
    enum class Order { BackToFront, AsAdded };

    // For a screen of that size in pixels.
    Pieces(Order order, ImVec2 screen) : order(order), screen(screen) {}

    // A convex outline.
    void AddArea(std::span<Math::Vector3f const> corners, MathPrim::Colour colour);

    // A part of the surface of a body, with a convex outline. The back of the body lies a little behind its
    // front, where both meet. The colour dyes the texture; without one it is plain.
    enum class Side { Front, Back };
    void AddSurface(std::span<Corner const> corners, ImTextureID texture, MathPrim::Colour colour, Side side);

    void AddLine(Math::Vector3f const & start, Math::Vector3f const & end, MathPrim::Colour colour);

    // A round area, at least a few pixels wide; `radius` is in the unit of y.
    void AddDisc(Math::Vector3f const & centre, float radius, MathPrim::Colour colour);

    enum class Anchor {
        MiddleLeft, // the text starts at the position, level with the middle of the first line
        Below,      // the text stands over the position
    };

    void AddText(Math::Vector3f const & position, std::string const & text, Anchor anchor,
                 MathPrim::Colour colour);

    void Paint(ImDrawList & list, float textSize);

private:
    enum class Kind { Area, Textured, Line, Disc, Text };

    struct Piece {
        float depth;
        Kind kind;
        MathPrim::Colour colour;
        ImTextureID texture = nullptr;
        std::size_t first = 0, count = 0; // of `points` and `places`
        std::string const * text = nullptr;
        Anchor anchor = Anchor::MiddleLeft;
    };

    // `piece` tells what the parts of the outline have in common; its depth is their bias.
    void addOutline(std::span<Math::Vector3f const> corners, Piece const & piece);
    void addOutline(Piece const & piece);
    void cutToScreen();
    void addSlices(Piece const & piece);
    void addPiece(std::span<Corner const> corners, Piece piece);
    void addPoint(Corner const & corner);
    ImVec2 toPixels(Math::Vector3f const & position) const;
    void paint(ImDrawList & list, Piece const & piece, float textSize) const;
    void paintTextured(ImDrawList & list, Piece const & piece) const;
    void paintText(ImDrawList & list, Piece const & piece, float textSize) const;

    Order order;
    ImVec2 screen;
    std::vector<Piece> pieces;
    std::vector<ImVec2> points, places;
    std::vector<Corner> outline, cut; // of the shape that is being added
};
