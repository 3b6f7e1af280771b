#include "samples/sandbox/Simulation.h"

#include "Cross/Util/CRCRecord.h"
#include "Cross/Util/Dca.h"
#include "Cross/Util/FourLetterID.h"
#include "Cross/Util/RunTimeStruct.h"
#include "Cross/Util/RunTimeStructMember.h"
#include "Cross/engine/core/Types.h"

#include <bit>
#include <cmath>

namespace {

using Math::Vector2f;

constexpr float c_stride = 0.25f; // metres in a frame
constexpr FourLetterID c_kind = FourCC("TANK");

// The members of a unit's record.
struct UnitMembers {
    RunTimeStruct::Member<Vector2f> pos{dca::GetKey("pos")};
    RunTimeStruct::Member<float> heading{dca::GetKey("heading")}; // in turns, 0 up to 1
    RunTimeStruct::Member<int> health{dca::GetKey("health")};
    RunTimeStruct::Member<bool> alive{dca::GetKey("alive")};
};

UnitMembers const & members() {
    static UnitMembers const members;
    return members;
}

// Names in the sync log have a dictionary of their own.
Dictionary::Key logKey(char const * name) { return keyedCRCEntry::s_dictionary.GetKey(name); }

template <class T>
T valueOf(RunTimeStruct::Buffer const & unit, RunTimeStruct::Member<T> const & member) {
    T value{};
    member.Get(unit, value);
    return value;
}

// The part of a number behind its point, of a negative one as well.
float fraction(float number) { return number - std::floor(number); }

// A step of length 1, in the measure of steps along the axes: exact on every machine, as sine is not.
Vector2f stepAlong(float heading) {
    float const x = 4.0f * std::fabs(heading - 0.5f) - 1.0f;
    float const y = 4.0f * std::fabs(fraction(heading + 0.25f) - 0.5f) - 1.0f;
    return {x, y};
}

} // namespace

Simulation::Simulation(std::uint32_t seed, unsigned int unitCount) {
    random.SetSeed(seed);
    SetUnitCount(unitCount);
}

void Simulation::SetUnitCount(unsigned int count) {
    while (units.size() < count)
        units.push_back(newUnit());
    units.resize(count);
}

RunTimeStruct::Buffer Simulation::newUnit() {
    RunTimeStruct::Buffer unit;
    unit.Setup(UnitLayout());
    auto const coordinate = [this] { return static_cast<float>(random.GetUnitExclusive()) * c_size; };
    float const x = coordinate();
    members().pos.Set(unit, {x, coordinate()});
    members().heading.Set(unit, static_cast<float>(random.GetUnitExclusive()));
    members().health.Set(unit, static_cast<int>(random.GetRange(50, 100)));
    members().alive.Set(unit, true);
    return unit;
}

RunTimeStruct::Layout Simulation::UnitLayout() {
    RunTimeStruct::Layout layout;
    layout.AddMember(dca::GetKey("alive"), RunTimeStruct::GetTypeInfo_bool(), 1);
    layout.AddMember(dca::GetKey("pos"), RunTimeStruct::GetTypeInfo_Math_Vector2f(), 1);
    layout.AddMember(dca::GetKey("heading"), RunTimeStruct::GetTypeInfo_float(), 1);
    layout.AddMember(dca::GetKey("health"), RunTimeStruct::GetTypeInfo_int(), 1);
    return layout;
}

UnitState Simulation::StateOf(unsigned int unit) const {
    RunTimeStruct::Buffer const & record = units[unit];
    return {valueOf(record, members().pos), valueOf(record, members().heading),
            valueOf(record, members().health), valueOf(record, members().alive)};
}

void Simulation::Step() {
    ++frame;
    for (RunTimeStruct::Buffer & unit : units)
        if (valueOf(unit, members().alive))
            moveUnit(unit);
}

void Simulation::moveUnit(RunTimeStruct::Buffer & unit) {
    auto const turn = static_cast<float>(random.GetUnitExclusive() - 0.5);
    float const heading = fraction(valueOf(unit, members().heading) + 0.1f * turn);
    Vector2f const step = stepAlong(heading);
    Vector2f const pos = valueOf(unit, members().pos);
    int const health = valueOf(unit, members().health) - static_cast<int>(random.GetMax(200) == 0) * 25;
    members().heading.Set(unit, heading);
    members().pos.Set(unit, {pos.x + c_stride * step.x, pos.y + c_stride * step.y});
    members().health.Set(unit, health);
    members().alive.Set(unit, health > 0);
}

void Simulation::Nudge(unsigned int unit) {
    Vector2f pos = valueOf(units[unit], members().pos);
    pos.x = std::bit_cast<float>(std::bit_cast<std::uint32_t>(pos.x) ^ 1);
    members().pos.Set(units[unit], pos);
}

void Simulation::RecordTo(CRCBlock & block, bool keepEntries) const {
    static Dictionary::Key const c_sim = logKey("Sim"), c_unit = logKey("unit"), c_frame = logKey("frame"),
                                 c_kindKey = logKey("kind"), c_alive = logKey("alive"), c_pos = logKey("pos"),
                                 c_heading = logKey("heading"), c_health = logKey("health");
    block.Clear();
    CRCGroup const sim(block, c_sim, keepEntries);
    Record(block, c_frame, frame, keepEntries);
    for (RunTimeStruct::Buffer const & unit : units) {
        CRCGroup const group(block, c_unit, keepEntries);
        Record(block, c_kindKey, c_kind, keepEntries);
        Record(block, c_alive, valueOf(unit, members().alive), keepEntries);
        Record(block, c_pos, valueOf(unit, members().pos), keepEntries);
        Record(block, c_heading, valueOf(unit, members().heading), keepEntries);
        Record(block, c_health, valueOf(unit, members().health), keepEntries);
    }
}
