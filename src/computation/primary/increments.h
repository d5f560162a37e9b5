/**
 * What a link adds to the score of a path, whatever the path: the growth of its cost functions when
 * a request's bandwidth comes on top of its load, each weighted (unit
 * "computation/primary/primaryPath").
 */
#ifndef TARNEX_COMPUTATION_PRIMARY_INCREMENTS_H
#define TARNEX_COMPUTATION_PRIMARY_INCREMENTS_H

#include "common/link_cost.h"
#include "common/setup.h"

/** What the criteria of one class type read of a link and a request. */
struct LinkTerms {
    double load;     ///< L, reserved by primary LSPs
    double capacity; ///< C
    double bw;       ///< b, the request's bandwidth
};

/** Weighted growth of the Fortz-Thorup link cost on one of its pieces. */
inline double fortzIncrement(const PrimaryComputationConfig &weights, std::size_t piece, double bw)
{
    return weights.Fortz * fortzSlopes[piece] * bw;
}

/** Weighted growth of the Fortz-Thorup link cost. */
inline double fortzIncrement(const PrimaryComputationConfig &weights, const LinkTerms &t)
{
    return fortzIncrement(weights, pieceAt(t.load / t.capacity), t.bw);
}

/** Calls `add` for each criterion of class type `oa` with a weight but Fortz-Thorup and balance. */
template <class Add>
void forEachIncrement(const PrimaryComputationConfig &weights, int oa, const LinkTerms &t, Add add)
{
    const double squaredLoadGrowth = t.bw * t.bw + 2.0 * t.bw * t.load;
    if (weights.load[oa] != 0.0)
        add(weights.load[oa] * t.bw);
    if (weights.sqLoad[oa] != 0.0)
        add(weights.sqLoad[oa] * squaredLoadGrowth);
    if (weights.relLoad[oa] != 0.0)
        add(weights.relLoad[oa] * t.bw / t.capacity);
    if (weights.sqRelLoad[oa] != 0.0)
        add(weights.sqRelLoad[oa] * squaredLoadGrowth / (t.capacity * t.capacity));
    if (weights.delay[oa] != 0.0)
        add(weights.delay[oa] * (1.0 / (t.capacity - t.load - t.bw) - 1.0 / (t.capacity - t.load)));
}

#endif
