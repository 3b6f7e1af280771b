// Bound volumes around a million points, beside the plain loop over components.

#include "Cross/Util/BoundVolume.h"
#include "Cross/Util/Random.h"
#include "bench/Ratio.h"

#include <limits>
#include <vector>

namespace {

std::vector<Math::Vector3f> const & points() {
    static std::vector<Math::Vector3f> const made = [] {
        Random random(1);
        std::vector<Math::Vector3f> list(1'000'000);
        for (Math::Vector3f & point : list)
            point = {static_cast<float>(random.GetBits(24)), static_cast<float>(random.GetBits(24)),
                     static_cast<float>(random.GetBits(24))};
        return list;
    }();
    return made;
}

void build(benchmark::State & state) {
    BoundVolume volume;
    for (auto _ : state) {
        volume.Build(points().data(), static_cast<unsigned int>(points().size()));
        benchmark::DoNotOptimize(volume);
    }
}

void take(float value, float & min, float & max) {
    if (value < min)
        min = value;
    if (value > max)
        max = value;
}

void plainLoop(benchmark::State & state) {
    constexpr float c_largest = std::numeric_limits<float>::max();
    for (auto _ : state) {
        Math::Vector3f min = {c_largest, c_largest, c_largest}, max = min * -1.0f;
        for (Math::Vector3f const & point : points()) {
            take(point.x, min.x, max.x);
            take(point.y, min.y, max.y);
            take(point.z, min.z, max.z);
        }
        benchmark::DoNotOptimize(min);
        benchmark::DoNotOptimize(max);
    }
}

} // namespace

int main(int argc, char ** argv) {
    bench::AddPair("Build of a million points beside the plain loop", 0.3, build, plainLoop);
    return bench::Run(argc, argv);
}
