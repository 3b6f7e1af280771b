#include "samples/sandbox/WorldView.h"

#include "Cross/Util/DebugRender.h"
#include "Cross/Util/RenderStats.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <string>

namespace {

using Math::Vector3f;
using MathPrim::Colour;

constexpr float c_gridStep = 40.0f; // metres
constexpr float c_selectionRadius = 18.0f;
constexpr unsigned int c_circleSteps = 32;
constexpr Colour c_grid = Colour::FromWord(0xFF30404A);
constexpr Colour c_selection = Colour::FromWord(0xFFFFD030);

char const * const c_world = "World";
char const * const c_names = "Names";

// Green for a unit in full health, red for one that is nearly gone.
Colour colourOf(int health) {
    auto const part = static_cast<std::uint32_t>(std::clamp(health, 0, 100));
    return Colour::FromWord(0xFF000000 | (255 - part * 2) << 16 | (55 + part * 2) << 8 | 0x40);
}

// A turn about the upward axis; 0 heads north.
Math::Matrix43f placed(Vector3f const & place, float heading) {
    float const angle = heading * 2.0f * std::numbers::pi_v<float>;
    float const cosine = std::cos(angle), sine = std::sin(angle);
    return {{{cosine, 0, -sine}, {0, 1, 0}, {sine, 0, cosine}, place}};
}

void appendBox(MathPrim::Mesh & mesh, Vector3f const & min, Vector3f const & max) {
    constexpr std::uint16_t c_faces[] = {0, 2, 6, 0, 6, 4, 1, 5, 7, 1, 7, 3, 0, 1, 3, 0, 3, 2,
                                         4, 6, 7, 4, 7, 5, 0, 4, 5, 0, 5, 1, 2, 3, 7, 2, 7, 6};
    auto const first = static_cast<std::uint16_t>(mesh.vertices.size());
    for (unsigned int corner = 0; corner < 8; ++corner)
        mesh.vertices.push_back(
            {corner & 1 ? max.x : min.x, corner & 2 ? max.y : min.y, corner & 4 ? max.z : min.z});
    for (std::uint16_t const index : c_faces)
        mesh.indices.push_back(static_cast<std::uint16_t>(first + index));
}

// A tank at the origin that heads north, in metres.
MathPrim::Mesh tankMesh() {
    MathPrim::Mesh mesh;
    appendBox(mesh, {-4, 0, -7}, {4, 2.5f, 7});         // hull
    appendBox(mesh, {-2.5f, 2.5f, -4}, {2.5f, 5, 2});   // turret
    appendBox(mesh, {-0.4f, 3.3f, 2}, {0.4f, 4.1f, 9}); // gun
    return mesh;
}

// The figures of one model, as a renderer would fill them in.
void announce(char const * model) {
    if (RenderStats::StatEntry * const entry = RenderStats::Instance()->AddModelStat(model)) {
        entry->renderCalls = 2;
        entry->shaderChanges = 1;
        entry->tris = 412;
    }
}

} // namespace

WorldView::WorldView(Simulation const & world) : world(world), tank(tankMesh()) {
    bounds.Build(tank.vertices.data(), static_cast<unsigned int>(tank.vertices.size()));
}

void WorldView::Draw() {
    drawGround();
    for (unsigned int unit = 0; unit < world.GetUnits().size(); ++unit)
        if (world.StateOf(unit).alive)
            drawUnit(unit);
    drawSelection();
}

std::optional<unsigned int> WorldView::Pick(MathPrim::Rayf const & ray) const {
    std::optional<unsigned int> nearest;
    float least = 0.0f;
    for (unsigned int unit = 0; unit < world.GetUnits().size(); ++unit) {
        Vector3f hit;
        if (!world.StateOf(unit).alive || !VolumeOf(unit).Intersect(ray, hit))
            continue;
        float const distance = std::hypot(hit.x - ray.origin.x, hit.y - ray.origin.y, hit.z - ray.origin.z);
        if (!nearest || distance < least) {
            nearest = unit;
            least = distance;
        }
    }
    return nearest;
}

bool WorldView::IsSelectionAlive() const {
    return selected && *selected < world.GetUnits().size() && world.StateOf(*selected).alive;
}

void WorldView::SelectNext() {
    auto const count = static_cast<unsigned int>(world.GetUnits().size());
    unsigned int const first = selected ? *selected + 1 : 0;
    selected.reset();
    for (unsigned int i = 0; i < count && !selected; ++i)
        if (unsigned int const unit = (first + i) % count; world.StateOf(unit).alive)
            selected = unit;
}

BoundVolume WorldView::VolumeOf(unsigned int unit) const {
    BoundVolume volume = bounds;
    volume.Transform(transformOf(unit));
    return volume;
}

Math::Matrix43f WorldView::transformOf(unsigned int unit) const {
    return placed(PlaceOf(unit), world.StateOf(unit).heading);
}

Vector3f WorldView::PlaceOf(unsigned int unit) const {
    UnitState const state = world.StateOf(unit);
    return {state.pos.x, 0.0f, state.pos.y};
}

void WorldView::drawGround() const {
    for (float at = 0.0f; at <= Simulation::c_size; at += c_gridStep) {
        DebugRender::Draw(DebugRender::Line{{at, 0, 0}, {at, 0, Simulation::c_size}, c_grid}, c_world);
        DebugRender::Draw(DebugRender::Line{{0, 0, at}, {Simulation::c_size, 0, at}, c_grid}, c_world);
    }
}

void WorldView::drawUnit(unsigned int unit) const {
    announce("models/units/light_tank.mesh");
    announce("models/units/shadow_blob.mesh");
    Colour const health = colourOf(world.StateOf(unit).health);
    if (paintUnit)
        paintUnit(transformOf(unit));
    else
        DebugRender::Draw(DebugRender::Mesh{&tank, transformOf(unit), health}, c_world);
    Vector3f const place = PlaceOf(unit);
    std::string const name = "tank " + std::to_string(unit);
    DebugRender::Draw(DebugRender::Text3D{{place.x, 8.0f, place.z}, name.c_str(), health}, c_names);
}

void WorldView::drawSelection() const {
    if (!IsSelectionAlive())
        return;
    DebugRender::DrawAlignedCircle(PlaceOf(*selected), c_selectionRadius, c_selection, c_circleSteps,
                                   {1, 0, 0}, {0, 0, 1});
    if (showsBounds)
        VolumeOf(*selected).Display();
}
