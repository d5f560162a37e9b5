/**
 * Sweeps over lack of memory: an operation runs with its 1st, 2nd, 3rd, ... allocation failing
 * until a run meets no fault. After each fault the operation must have failed with a message and
 * left the state as it was, and must succeed when repeated.
 */
#ifndef TARNEX_TESTS_SUPPORT_MEMORY_FAULTS_H
#define TARNEX_TESTS_SUPPORT_MEMORY_FAULTS_H

#include "support/engine_test.h"
#include "support/memory_probe.h"

#include <memory>

/**
 * Sweeps `operate` (0: it succeeded) over subjects that `make` makes and that release themselves,
 * memory running out once and from then on; returns the trails of the single faults in order, equal
 * neighbours taken once.
 */
template <class Make, class Operate, class State>
Trails sweepFaults(Make make, Operate operate, State state)
{
    Trails trails;
    for (const Lasting lasting : {Lasting::fromThenOn, Lasting::once}) {
        trails.clear();
        bool faulted = true;
        for (int nth = 1; faulted; ++nth) {
            auto subject = make();
            const auto initially = state(subject);
            auto probe = std::make_unique<MemoryProbe>(nth, lasting);
            const bool succeeded = operate(subject) == 0;
            faulted = probe->faulted();
            probe.reset();
            const Trail trail = takeTrail();
            EXPECT_TRUE(succeeded != faulted && succeeded == trail.empty()) << "allocation " << nth;
            if (faulted && (trails.empty() || trails.back() != trail))
                trails.push_back(trail);
            EXPECT_TRUE(!faulted || (state(subject) == initially && operate(subject) == 0)) << nth;
        }
    }
    return trails;
}

/** Sweeps making and releasing a record, 0 when it succeeds: no run may keep a byte. */
template <class Cycle>
Trails sweepCycle(Cycle cycle)
{
    return sweepFaults([] { return 0; }, [&](int) { return cycle(); },
                       [](int) { return bytesInUse(); });
}

#endif
