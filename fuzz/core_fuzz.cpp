/*
 * Fuzz target of the core: every byte is a choice in a sequence of random operations. What does not
 * add up leaves as an exception, which the fuzzer takes for a crash. At its end the process tells
 * what it has met.
 */
#include "support/churn.h"

#include <cstdio>
#include <stdexcept>

namespace
{

/** What all sequences met together, told when the process ends. */
struct Total : property::Churn::Tally {
    ~Total()
    {
        std::fprintf(stderr,
                     "%d calls: %d met a lack of memory, %d LSPs were refused, %d removals "
                     "uncomplete, %d LSPs preempted, %d backups added\n",
                     calls, faults, refusals, incompletes, preempted, backups);
    }
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    static Total total;
    const Long bytesBefore = allocatedMemory;
    {
        property::Churn churn{property::Rng{{data, size}}, property::Amounts::quarters};
        while (churn.hasBytes()) {
            churn.step();
            churn.check();
        }
        total += churn.tally();
    }
    if (allocatedMemory != bytesBefore)
        throw std::logic_error("a session kept counted bytes");
    return 0;
}
