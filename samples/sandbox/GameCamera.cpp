#include "samples/sandbox/GameCamera.h"

#include "Cross/Util/KeyValueContainer.h"
#include "Cross/Util/KeyValueContainerIO.h"
#include "Cross/engine/filesystem/FilePath.h"

#include <cmath>
#include <numbers>

namespace {

constexpr float c_radians = std::numbers::pi_v<float> / 180.0f;

} // namespace

GameCamera::GameCamera() {
    ByteStreamProxy const stream = FilePath::OpenStream("DATA:camera.lua", c_streamRead);
    KeyValueContainer preset;
    if (!stream || !KeyValueContainerIO::Load(preset, *stream, "camera"))
        return;
    auto const take = [&preset](char const * name, float & value) {
        if (preset.Check(name))
            value = preset.Retrieve(name);
    };
    take("distance", distance);
    take("declination", declination);
    take("orbit", orbit);
}

void GameCamera::Overlook(Camera & camera) { camera.LookAt({190, 150, -50}, {205, 0, 165}); }

void GameCamera::Follow(Camera & camera, Math::Vector3f const & place) const {
    float const level = distance * std::cos(declination * c_radians);
    Math::Vector3f const from{place.x + level * std::sin(orbit * c_radians),
                              place.y + distance * std::sin(declination * c_radians),
                              place.z - level * std::cos(orbit * c_radians)};
    camera.LookAt(from, place);
}
