/* What one call leaves to the next, in a session and in the process. */
#include "common/setup.h"
#include "native/native_test.h"

namespace
{

class SessionState : public NativeTest
{
protected:
    SessionState() { start(); }

    bool allowsReroute() const { return sessions[slot]->tarnexConfig.predicateConfig.allowReroute; }
};

TEST_F(SessionState, RegisteringAnLspEndsPreemptionUntilTheNextComputation)
{
    const std::function<void()> registrations[] = {
        [this] { CALL(addLSP, 30, detour, 0, 0, 1); },
        [this] { CALL(addLSP, 30, detour, 0, 0, 1); }, // refused
        [this] { CALL(addBackupLSP, 31, 1, detour, 0, 0, 1, 1); },
        [this] { CALL(addBackupLSP, 32, 7, detour, 0, 0, 1, 1); }}; // no such primary
    for (const auto &add : registrations) {
        for (const bool preempt : {true, false, true}) {
            EXPECT_EQ(caller.finish(compute(33, 1, false, preempt))->ints.size(), 3U);
            EXPECT_EQ(allowsReroute(), preempt);
        }
        add();
        caller.finish();
        EXPECT_FALSE(allowsReroute());
        EXPECT_EQ(sessions[slot]->errorManager.list, errorManager.list);
        EXPECT_EQ(sessions[slot]->errorManager.top, errorManager.top);
    }
    EXPECT_NE(messages(), "");
}

TEST_F(SessionState, AnInitialisationStartsTheTotalCostAnew)
{
    caller.finish(compute(33, 1, false, false));
    EXPECT_GT(COST, 0.0);
    open();
    EXPECT_EQ(COST, 0.0);
}

TEST_F(SessionState, ACallWithoutASessionLeavesNothingInTheTrailOfAnother)
{
    CALL(addNode, 0);
    caller.finish();
    const ErrorList &kept = sessions[slot]->errorManager;
    const Long own = kept.top;
    const ErrorElem *const firstPlace = kept.list;
    for (const jint none : {99, -1, maxSessions}) {
        Caller::at(engine).sessId = none;
        for (int i = 0; i < 40; ++i)
            CALL(addNode, 9);
        const std::string newest = errorManager.list[errorManager.top - 1].message;
        EXPECT_TRUE(newest.starts_with("Non existing Session (" + std::to_string(none) +
                                       ") in jni_interface at line "));
        EXPECT_EQ(errorManager.top, own + 40);
        EXPECT_EQ(kept.top, own);
        EXPECT_EQ(kept.list, errorManager.list);
        EXPECT_EQ(kept.size, errorManager.size);
        Caller::at(engine).sessId = slot;
        printed([&] { CALL(printTarnexDB); });
        EXPECT_EQ(errorManager.top, own);
    }
    EXPECT_NE(kept.list, firstPlace);
    EXPECT_NE(messages(), "");
}

} // namespace
