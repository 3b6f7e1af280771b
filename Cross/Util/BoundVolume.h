#pragma once

// BoundVolume: the bounding shape of an object, a box turned in space and a sphere held together. Tests of
// points and rays look at the box, tests of spheres and volumes at the sphere: the caller chooses what a test
// costs. No test asks whether the volume is valid; one that is not is a point at the origin.
//
// A plain value: it owns nothing and is copied as it stands. NaN is no error: Build leaves it out of the
// range, and a test that meets it takes it for inside.

#include "Cross/engine/core/Export.h"
#include "Cross/engine/core/MathPrim.h"

class CROSS_UTIL_API BoundVolume {
public:
    // Not valid: everything 0, the box not turned.
    BoundVolume() { Clear(); }

    void Clear();

    bool IsValid() const { return valid; }

    MathPrim::OBBf const & GetOBB() const { return obb; }

    MathPrim::Spheref const & GetSphere() const { return sphere; }

    // Takes a box, and for the sphere the one through its corners.
    void SetOBB(MathPrim::OBBf const & box);

    // Takes a sphere, and for the box the cube around it, along the axes of the world.
    void SetSphere(MathPrim::Spheref const & newSphere);

    // The box around points along the axes of the world, and the sphere through its corners; no points clear
    // the volume.
    void Build(Math::Vector3f const * points, unsigned int count);

    // Grows to the box around both boxes, along the axes of the world. An invalid `other` changes nothing, an
    // invalid volume becomes a copy.
    BoundVolume const & operator+=(BoundVolume const & other);

    // Both leave an invalid volume alone. Scale changes the extents and takes the sphere anew from the box,
    // also where SetSphere gave another. Transform expects a rigid matrix: sizes stay.
    void Scale(float factor);
    void Transform(Math::Matrix43f const & matrix);

    // Box and point; the surface counts as inside.
    bool Intersect(Math::Vector3f const & point) const;

    // Box and ray. `hit` is where the ray enters, or where it leaves when it starts inside; without a hit it
    // stays as it was.
    bool Intersect(MathPrim::Rayf const & ray, Math::Vector3f & hit) const;

    // Sphere and sphere; touching counts. `point` lies behind this centre as seen from the other, by the
    // distance of the centres less this radius; without a hit it stays as it was.
    bool Intersect(MathPrim::Spheref const & other, Math::Vector3f & point) const;
    bool Intersect(BoundVolume const & other) const;

    // Draws box, in blue, and sphere, in red, into the debug frame "Global".
    void Display() const;

private:
    MathPrim::OBBf obb;
    MathPrim::Spheref sphere;
    bool valid;
};
