// Stands in for the library below until it is there.
#include <tarnex/options.h>
#include <tarnex/refusal.h>

namespace tarnex
{
Weights Weights::of(Objective objective)
{
    Weights weights;
    (objective == Objective::fortz ? weights.fortz : weights.load) = 1.0;
    return weights;
}
std::string_view textOf(Reason reason)
{
    constexpr std::string_view words[] = {"no such node",     "same ends",
                                          "not connected",    "no room",
                                          "no disjoint path", "no room for a disjoint path"};
    return words[static_cast<int>(reason)];
}
} // namespace tarnex
