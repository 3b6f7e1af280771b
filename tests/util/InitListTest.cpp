#include "Cross/Util/InitList.h"

#include "tests/support/HandClock.h"
#include "tests/support/TraceCapture.h"

#include <gtest/gtest.h>

#include <functional>
#include <limits>

namespace {

using InitList::Manager;

// A step that answers what the test sets and notes each call as a letter and its own: "L1", "U1", "A1", "D1".
class Step : public InitList::Entry {
public:
    Step(std::string & log, char id) : log(log), id(id) {}

    ~Step() override { note('D'); }

    InitList::LoadResult Load() override {
        note('L');
        onLoad();
        return answer;
    }

    void Unload() override { note('U'); }

    float GetProgress() override { return progress; }

    void Abort() override { note('A'); }

    InitList::LoadResult answer = InitList::Finished;
    float progress = 0.0f;
    std::function<void()> onLoad = [] {};

private:
    void note(char event) { log += std::string(log.empty() ? "" : " ") + event + id; }

    std::string & log;
    char id;
};

struct InitListTest : testing::Test {
    Step * Add(char const * name, float weight) {
        auto * const step = new Step(log, static_cast<char>('1' + count++));
        manager.Register(step, name, weight);
        return step;
    }

    std::string log;
    HandClock clock;
    Manager manager{"level"};
    int count = 0;
};

} // namespace

TEST_F(InitListTest, FinishedComesOneCallAfterTheLastStep) {
    EXPECT_EQ(manager.Load(), InitList::Finished) << "of no step at all";
    EXPECT_EQ(manager.GetState(), Manager::Loaded);
    Add("a", 1.0f);
    Add("b", 1.0f);
    for (InitList::LoadResult result :
         {InitList::InProgress, InitList::InProgress, InitList::Finished, InitList::Finished})
        EXPECT_EQ(manager.Load(), result) << log;
    EXPECT_EQ(log, "L1 L2");
}

TEST_F(InitListTest, ProgressFillsTheStepsShareByItsOwnFigureAndTime) {
    Step * const first = Add("a", 1.0f);
    Add("b", 3.0f);
    first->progress = 0.5f;
    EXPECT_EQ(manager.LoadProgress(), 0.125f);

    // time spent moves the bar too, up to the end of the step's share
    first->answer = InitList::InProgress;
    std::pair<std::uint32_t, float> const loads[] = {{500, ((1.0f - 0.5f) * 0.5f + 0.5f) / 4.0f},
                                                     {9000, 0.25f}};
    for (auto const & [milliseconds, progress] : loads) {
        first->onLoad = [this, step = milliseconds] { clock.milliseconds += step; };
        manager.Load();
        EXPECT_EQ(manager.LoadProgress(), progress) << milliseconds;
    }
    first->answer = InitList::Finished;
    manager.Load();
    EXPECT_EQ(manager.LoadProgress(), 0.25f);
}

TEST_F(InitListTest, TheClockMayWrapWhileAStepRuns) {
    Step * const step = Add("a", 10.0f);
    step->answer = InitList::InProgress;
    clock.milliseconds = 0xFFFFFF00u;
    step->onLoad = [this] { clock.milliseconds += 0x100 + 1744; }; // 2 seconds, across 0
    manager.Load();
    EXPECT_FLOAT_EQ(manager.LoadProgress(), 0.2f);

    // a difference that reads as negative counts as 2^32 more
    clock.milliseconds = 2000;
    step->onLoad = [this] { --clock.milliseconds; };
    manager.Load();
    EXPECT_EQ(manager.LoadProgress(), 1.0f);
}

TEST_F(InitListTest, AFailureUnwindsInReverseOrderAndCanBeRepeated) {
    TraceCapture trace;
    Add("a", 1.0f);
    Add("b", 1.0f);
    Step * const third = Add("the third", 1.0f);
    Add("d", 1.0f);
    third->answer = InitList::Failed;
    EXPECT_FALSE(manager.LoadAll());
    EXPECT_EQ(std::exchange(log, ""), "L1 L2 L3 A3 U2 U1");
    EXPECT_EQ(manager.GetState(), Manager::Unloaded);
    EXPECT_EQ(trace.lines, std::vector<std::string>{"level -- Failed load for step: 'the third'"});

    // the steps stay registered, and a failed one can be repeated where it stands
    while (manager.Load() != InitList::Failed) {}
    EXPECT_EQ(manager.GetState(), Manager::LoadFailed);
    third->answer = InitList::Finished;
    EXPECT_TRUE(manager.LoadAll());
    EXPECT_EQ(manager.GetState(), Manager::Loaded);
    manager.Unload(); // which aborts nothing
    EXPECT_EQ(log, "L1 L2 L3 L3 L4 U4 U3 U2 U1");
}

TEST_F(InitListTest, UnloadAbortsTheNextStepThoughItNeverRan) {
    manager.Unload(); // before any load: nothing at all
    Add("a", 1.0f);
    Add("b", 1.0f);
    Add("c", 1.0f);
    manager.Unload();
    EXPECT_EQ(log, "");
    manager.Load();
    manager.Unload();
    EXPECT_EQ(log, "L1 A2 U1");
}

TEST_F(InitListTest, ClearingAndDestroyingUndoNothing) {
    Add("a", 1.0f);
    Add("b", 1.0f);
    manager.LoadAll();
    manager.ClearRegister();
    EXPECT_EQ(manager.GetState(), Manager::Unloaded);
    for (char const * const none : {"", static_cast<char const *>(nullptr)}) {
        TraceCapture const trace;
        Manager unnamed(none);
        auto * const failing = new Step(log, '9');
        failing->answer = InitList::Failed;
        unnamed.Register(failing, "step", 1.0f);
        unnamed.Load();
        EXPECT_EQ(trace.lines, std::vector<std::string>{"*Unnamed* -- Failed load for step: 'step'"});
    }
    EXPECT_EQ(log, "L1 L2 D1 D2 L9 D9 L9 D9");
}

TEST_F(InitListTest, RegisteringRestartsTheListAndUndoesNothing) {
    Add("a", 1.0f);
    Step * const second = Add("b", 1.0f);
    second->onLoad = [&] {
        if (count == 2)
            Add("c", 1.0f);
    };
    EXPECT_TRUE(manager.LoadAll());
    EXPECT_EQ(log, "L1 L2 L1 L2 L3");

    Add("d", 1.0f);
    EXPECT_EQ(manager.GetState(), Manager::Loaded);
    EXPECT_EQ(manager.LoadProgress(), 0.0f);
    manager.Load();
    manager.Unload();
    EXPECT_EQ(log, "L1 L2 L1 L2 L3 L1 A2 U1");
}

TEST_F(InitListTest, OddArgumentsDoNoHarm) {
    manager.Register(nullptr, "nobody", 1.0f);
    Add(nullptr, -5.0f);
    Step * const step = Add("b", std::numeric_limits<float>::quiet_NaN());
    EXPECT_EQ(manager.LoadProgress(), 1.0f); // all weights are 0
    step->answer = static_cast<InitList::LoadResult>(7);
    manager.Load();
    EXPECT_EQ(manager.Load(), InitList::InProgress);
    EXPECT_EQ(manager.Load(), InitList::InProgress);
    EXPECT_EQ(log, "L1 L2 L2");
}
