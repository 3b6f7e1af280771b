#include "tools/PolygonCut.h"

#include <cmath>
#include <numeric>

using Math::Vector3f;

namespace {

using Triangle = std::array<unsigned int, 3>;

struct Point {
    double x, y;

    friend bool operator==(Point const &, Point const &) = default;
};

// Twice the area of a triangle; above 0 when it turns to the left.
double areaOf(Point const & a, Point const & b, Point const & c) {
    return (b.x - a.x) * (c.y - a.y) - (b.y - a.y) * (c.x - a.x);
}

// The polygon as seen along the axis of space that shows most of it, turning to the left. Empty when it has
// no area.
std::vector<Point> flatten(std::vector<Vector3f> const & corners) {
    double normal[3] = {};
    for (std::size_t i = 0; i < corners.size(); ++i) {
        Vector3f const & a = corners[i];
        Vector3f const & b = corners[(i + 1) % corners.size()];
        normal[0] += (double{a.y} - b.y) * (double{a.z} + b.z);
        normal[1] += (double{a.z} - b.z) * (double{a.x} + b.x);
        normal[2] += (double{a.x} - b.x) * (double{a.y} + b.y);
    }
    int axis = std::fabs(normal[1]) > std::fabs(normal[0]) ? 1 : 0;
    if (std::fabs(normal[2]) > std::fabs(normal[axis]))
        axis = 2;
    if (normal[axis] == 0)
        return {};
    std::vector<Point> points;
    for (Vector3f const & corner : corners) {
        double const values[3] = {corner.x, corner.y, corner.z};
        Point const point{values[(axis + 1) % 3], values[(axis + 2) % 3]};
        points.push_back(normal[axis] > 0 ? point : Point{point.y, point.x});
    }
    return points;
}

class Cutter {
public:
    explicit Cutter(std::vector<Point> const & points) : points(points), left(points.size()) {
        std::iota(left.begin(), left.end(), 0u);
    }

    std::vector<Triangle> Run() {
        std::vector<Triangle> triangles;
        while (left.size() >= 3) {
            std::size_t const ear = findEar();
            if (ear == left.size())
                return {};
            triangles.push_back(triangleAt(ear));
            left.erase(left.begin() + static_cast<std::ptrdiff_t>(ear));
        }
        return triangles;
    }

private:
    Triangle triangleAt(std::size_t i) const {
        std::size_t const count = left.size();
        return {left[(i + count - 1) % count], left[i], left[(i + 1) % count]};
    }

    // Ears without area, corners on a straight line, only go when there are no others. Gives the number of
    // corners left when there is none.
    std::size_t findEar() const {
        std::size_t flat = left.size();
        for (std::size_t i = 0; i < left.size(); ++i) {
            Triangle const triangle = triangleAt(i);
            double const area = areaOf(points[triangle[0]], points[triangle[1]], points[triangle[2]]);
            if (area > 0 && !holdsOthers(triangle))
                return i;
            if (area == 0)
                flat = i;
        }
        return flat;
    }

    bool holdsOthers(Triangle const & triangle) const {
        Point const &a = points[triangle[0]], &b = points[triangle[1]], &c = points[triangle[2]];
        for (unsigned int const other : left) {
            Point const & p = points[other];
            if (p != a && p != b && p != c && areaOf(a, b, p) >= 0 && areaOf(b, c, p) >= 0 &&
                areaOf(c, a, p) >= 0)
                return true;
        }
        return false;
    }

    std::vector<Point> const & points;
    std::vector<unsigned int> left; // corners of what is not cut yet, in their order
};

} // namespace

std::vector<Triangle> CutPolygon(std::vector<Vector3f> const & corners) {
    if (corners.size() == 3)
        return {{0, 1, 2}};
    std::vector<Point> const points = flatten(corners);
    return Cutter(points).Run();
}
