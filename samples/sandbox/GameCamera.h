#pragma once

// The camera of the show, after the preset in "DATA:camera.lua".

#include "samples/renderer/Camera.h"

class GameCamera {
public:
    // A preset that cannot be read leaves the one of the game itself.
    GameCamera();

    // Over the whole world, from the south.
    static void Overlook(Camera & camera);

    // At a place in the world, as the preset tells.
    void Follow(Camera & camera, Math::Vector3f const & place) const;

private:
    float distance = 40.0f;    // metres
    float declination = 30.0f; // degrees above the ground
    float orbit = 0.0f;        // degrees to the east of south
};
