#pragma once

// The world as developers see it: units as tanks with names, a circle round the selected one, its bound
// volume on demand. It draws through DebugRender alone, so without a renderer it costs next to nothing, and
// it tells the render statistics what a renderer would have drawn.

#include "Cross/Util/BoundVolume.h"
#include "samples/sandbox/Simulation.h"

#include <functional>
#include <optional>

class WorldView {
public:
    // `world` outlives the view.
    explicit WorldView(Simulation const & world);

    // Puts the present frame of the world into the debug frames "World", "Names", "TerrainLine" and "Global".
    void Draw();

    // The first living unit whose box the ray meets, nearest first.
    std::optional<unsigned int> Pick(MathPrim::Rayf const & ray) const;

    void Select(std::optional<unsigned int> unit) { selected = unit; }

    std::optional<unsigned int> GetSelected() const { return selected; }

    // Only then there is something to show of it.
    bool IsSelectionAlive() const;

    // The living unit behind the selected one, round the end; none when none lives.
    void SelectNext();

    bool ShowsBounds() const { return showsBounds; }

    void ShowBounds(bool show) { showsBounds = show; }

    // Draws a unit at a place in the scene, in place of the plain mesh that the view has of its own; may be
    // empty.
    std::function<void(Math::Matrix43f const & transform)> paintUnit;

    // The volume of a unit where it stands now.
    BoundVolume VolumeOf(unsigned int unit) const;

    // Where a unit stands: x to the east, y upward, z to the north, in metres.
    Math::Vector3f PlaceOf(unsigned int unit) const;

private:
    Math::Matrix43f transformOf(unsigned int unit) const;
    void drawGround() const;
    void drawUnit(unsigned int unit) const;
    void drawSelection() const;

    Simulation const & world;
    MathPrim::Mesh const tank; // at the origin, heading north
    BoundVolume bounds;        // of it
    std::optional<unsigned int> selected;
    bool showsBounds = false;
};
