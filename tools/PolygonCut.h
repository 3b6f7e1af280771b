#pragma once

// Polygons in space as triangles.

#include "Cross/engine/core/Math.h"

#include <array>
#include <vector>

// Cuts a polygon of three or more corners into triangles that look to the side that it does; they give the
// numbers of its corners. Empty when there are none, since it crosses itself or has no area. The time grows
// with the cube of the corners.
std::vector<std::array<unsigned int, 3>> CutPolygon(std::vector<Math::Vector3f> const & corners);
