// Records described at run time: what the simulation keeps goes out as a smaller record for the network.

#include "samples/sandbox/Checks.h"

#include "Cross/Util/Dca.h"
#include "Cross/Util/RunTimeStructCopier.h"
#include "Cross/Util/RunTimeStructMember.h"
#include "Cross/engine/core/Math.h"
#include "samples/sandbox/Simulation.h"

namespace {

// What other machines need of a unit, in an order of its own.
RunTimeStruct::Layout networkLayout() {
    RunTimeStruct::Layout layout;
    layout.AddMember(dca::GetKey("sender"), RunTimeStruct::GetTypeInfo_int(), 1);
    layout.AddMember(dca::GetKey("pos"), RunTimeStruct::GetTypeInfo_Math_Vector2f(), 1);
    layout.AddMember(dca::GetKey("heading"), RunTimeStruct::GetTypeInfo_float(), 1);
    return layout;
}

} // namespace

void CheckRecords(Report & report) {
    report.Begin(Subsystem::Records);
    Simulation world(7, 40);
    world.Step();
    RunTimeStruct::Layout const full = Simulation::UnitLayout(), packet = networkLayout();
    RunTimeStruct::Copier copier;
    copier.AddLayout(full, packet);
    RunTimeStruct::Member<int> const sender{dca::GetKey("sender")};
    RunTimeStruct::Member<Math::Vector2f> const pos{dca::GetKey("pos")};
    RunTimeStruct::Member<float> const heading{dca::GetKey("heading")};
    RunTimeStruct::Member<int> const wrongType{dca::GetKey("heading")};

    unsigned int sent = 0;
    for (RunTimeStruct::Buffer const & unit : world.GetUnits()) {
        RunTimeStruct::Buffer message;
        message.Setup(packet);
        sender.Set(message, 12);
        copier.Copy(unit, message);
        Math::Vector2f kept{}, got{};
        float keptHeading = 0, gotHeading = 1;
        int untouched = 0;
        bool const isRead = pos.Get(unit, kept) && pos.Get(message, got) && heading.Get(unit, keptHeading) &&
                            heading.Get(message, gotHeading) && sender.Get(message, untouched);
        report.Expect(isRead && kept.x == got.x && kept.y == got.y && keptHeading == gotHeading,
                      "the message holds what the unit holds");
        report.Expect(untouched == 12, "members that are not shared stay");
        report.Expect(!wrongType.Get(message, untouched), "a member is not read as another type");
        ++sent;
    }
    report.Evidence(std::to_string(sent) + " units of " + std::to_string(full.GetDataSize()) +
                    " bytes copied into messages of " + std::to_string(packet.GetDataSize()));
}
