#pragma once

// A small deterministic world: units whose state is kept as run-time records and changed by random numbers.
// Two worlds of one seed stay the same to the bit, frame by frame, until something outside changes one.

#include "Cross/Util/CRCBlock.h"
#include "Cross/Util/Random.h"
#include "Cross/Util/RunTimeStructBuffer.h"
#include "Cross/engine/core/Math.h"

#include <cstdint>
#include <vector>

// What a unit's record holds, for those who only look.
struct UnitState {
    Math::Vector2f pos; // metres east and north
    float heading;      // turns, 0 up to 1
    int health;
    bool alive;
};

class Simulation {
public:
    Simulation(std::uint32_t seed, unsigned int unitCount);

    static constexpr float c_size = 400.0f; // metres east and north, where units begin

    // Adds units at random places, or takes the last ones away.
    void SetUnitCount(unsigned int count);

    // Moves the world on by one frame.
    void Step();

    // Changes the lowest bit of a unit's position, as an uninitialised value or another compiler might.
    void Nudge(unsigned int unit);

    // Replaces what the block holds by the state of this frame, in a group "Sim". The CRC is the same with
    // and without the entries that Print needs.
    void RecordTo(CRCBlock & block, bool keepEntries) const;

    unsigned int GetFrame() const { return frame; }

    std::vector<RunTimeStruct::Buffer> const & GetUnits() const { return units; }

    UnitState StateOf(unsigned int unit) const;

    // The members of a unit's record.
    static RunTimeStruct::Layout UnitLayout();

private:
    RunTimeStruct::Buffer newUnit();
    void moveUnit(RunTimeStruct::Buffer & unit);

    Random random;
    std::vector<RunTimeStruct::Buffer> units;
    unsigned int frame = 0;
};
