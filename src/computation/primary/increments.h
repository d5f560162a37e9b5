/**
 * What a link adds to the score of a path, whatever the path: the growth of its cost functions when
 * a request's bandwidth comes on top of its load, each weighted (unit
 * "computation/primary/primaryPath").
 */
#ifndef TARNEX_COMPUTATION_PRIMARY_INCREMENTS_H
#define TARNEX_COMPUTATION_PRIMARY_INCREMENTS_H

#include "common/link_cost.h"
#include "common/setup.h"

#include <cmath>

/** What the criteria of one class type read of a link and a request. */
struct LinkLoad {
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
inline double fortzIncrement(const PrimaryComputationConfig &weights, const LinkLoad &t)
{
    return fortzIncrement(weights, pieceAt(t.load / t.capacity), t.bw);
}

/** @name The criteria of one class type
 * Fortz-Thorup apart, and balance, which depends on the path as well: what each adds, which of them
 * tell links apart, and how large their weights are. A new criterion goes into all three.
 */
///@{
/** Calls `add` for each criterion of class type `oa` with a weight. */
template <class Add>
void forEachIncrement(const PrimaryComputationConfig &weights, int oa, const LinkLoad &t, Add add)
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

/** Whether a criterion that depends on the link has a weight. */
inline bool tellsLinksApart(const PrimaryComputationConfig &weights, int oa)
{
    return weights.sqLoad[oa] != 0.0 || weights.relLoad[oa] != 0.0 ||
           weights.sqRelLoad[oa] != 0.0 || weights.delay[oa] != 0.0;
}

/** Sum of the sizes of the weights; not finite when one of them is not. */
inline double sizeOfWeights(const PrimaryComputationConfig &weights, int oa)
{
    return std::abs(weights.load[oa]) + std::abs(weights.sqLoad[oa]) +
           std::abs(weights.relLoad[oa]) + std::abs(weights.sqRelLoad[oa]) +
           std::abs(weights.delay[oa]);
}
///@}

#endif
