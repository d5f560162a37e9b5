/**
 * Memory that runs out on purpose. While it lives, a MemoryProbe stands between the counted
 * allocator and the C library and can make the n-th allocation fail, or all. A block handed back is
 * overwritten at its start, as a C library does, and kept, so that one handed back twice is seen.
 *
 * A sweep runs an operation with its 1st, 2nd, 3rd, ... allocation failing until a run meets no
 * fault. After each fault the operation must have failed with a message and left the state as it
 * was, and must succeed when repeated.
 */
#ifndef TARNEX_TESTS_SUPPORT_MEMORY_FAULTS_H
#define TARNEX_TESTS_SUPPORT_MEMORY_FAULTS_H

#include "common/system_memory.h"
#include "support/engine_test.h"

#include <algorithm>
#include <cstring>

class MemoryProbe
{
public:
    /** `nth` counts from 1; 0 fails none, -1 fails all. Makes room for messages first. */
    explicit MemoryProbe(int nth = 0) : failAt(nth)
    {
        const Long top = errorManager.top;
        while (errorManager.size < 2048)
            addError(INFO, "room");
        errorManager.top = top;
        active = this;
        systemMemory = {
            [](std::size_t n) { return refuses(n) ? nullptr : active->real.acquire(n); },
            [](std::size_t k, std::size_t n) {
                return refuses(k * n) ? nullptr : active->real.acquireZeroed(k, n);
            },
            [](void *p, std::size_t n) { return refuses(n) ? nullptr : active->real.resize(p, n); },
            [](void *block) { active->release(block); }};
    }
    ~MemoryProbe()
    {
        systemMemory = real;
        std::ranges::for_each(released, real.release);
    }

    bool faulted() const { return failAt > 0 && allocations >= failAt; }

    std::size_t largestRequest = 0;
    int repeatedReleases = 0;
    std::vector<void *> released;

private:
    static bool refuses(std::size_t bytes)
    {
        active->largestRequest = std::max(active->largestRequest, bytes);
        ++active->allocations;
        return active->failAt < 0 || active->allocations == active->failAt;
    }

    void release(void *block)
    {
        std::memset(block, 0x5A, 2 * sizeof(void *));
        if (std::ranges::find(released, block) == released.end())
            released.push_back(block);
        else
            ++repeatedReleases;
    }

    static inline MemoryProbe *active = nullptr;
    SystemMemory real = systemMemory;
    int failAt;
    int allocations = 0;
};

/** Counted bytes in use, without those of the error stack. */
inline Long bytesInUse()
{
    return allocatedMemory - errorManager.size * static_cast<Long>(sizeof(ErrorElem));
}

/**
 * Sweeps `operate` (0: it succeeded) over subjects that `make` makes and that release themselves;
 * returns the trails of the faults in order, equal neighbours taken once.
 */
template <class Make, class Operate, class State>
Trails sweepFaults(Make make, Operate operate, State state)
{
    Trails trails;
    bool faulted = true;
    for (int nth = 1; faulted; ++nth) {
        auto subject = make();
        const auto initially = state(subject);
        auto probe = std::make_unique<MemoryProbe>(nth);
        const bool succeeded = operate(subject) == 0;
        faulted = probe->faulted();
        probe.reset();
        const Trail trail = takeTrail();
        EXPECT_TRUE(succeeded != faulted && succeeded == trail.empty()) << "allocation " << nth;
        if (faulted && (trails.empty() || trails.back() != trail))
            trails.push_back(trail);
        EXPECT_TRUE(!faulted || (state(subject) == initially && operate(subject) == 0)) << nth;
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
