/** What an engine is opened with. */
#ifndef TARNEX_OPTIONS_H
#define TARNEX_OPTIONS_H

#include <array>

namespace tarnex
{

inline constexpr int maxClassTypes = 8;
inline constexpr int maxLevels = 8;

/** A value per class type and level, indexed `[classType][level]`; level 0 is the most important.
 */
using PerLevel = std::array<std::array<double, maxLevels>, maxClassTypes>;

/** What the path of a primary LSP is to be good for. */
enum class Objective {
    hops,    ///< few links
    load,    ///< little load on links that are relatively full: the growth of squared utilisation
    balance, ///< utilisation that varies little over the network
    delay,   ///< little queueing delay: the growth of 1 / (capacity - load)
    fortz    ///< the piecewise-linear link cost of Fortz and Thorup (2000)
};

/**
 * Weights of the criteria that a path's score adds up, link by link, in each class type. A weight
 * of 0 switches its criterion off, all others are finite and above 0. Scores that are no further
 * apart than 1e-10 count as equal, so a weight has to be large where the figures of its criterion
 * are small, such as delays where bandwidths are counted in single bits. With load L, capacity C
 * and the bandwidth b asked for, a link adds:
 */
struct Weights {
    double fortz = 0.0;              ///< slope of the cost piece at L / C, times b
    double loadBalance = 0.0;        ///< growth of N times the variance of L / C over the network
    double load = 0.0;               ///< b
    double squaredLoad = 0.0;        ///< growth of L^2
    double utilization = 0.0;        ///< b / C
    double squaredUtilization = 0.0; ///< growth of (L / C)^2
    double delay = 0.0;              ///< growth of 1 / (C - L)

    /** The one weight that stands for an objective. */
    [[gnu::visibility("default")]] static Weights of(Objective objective);

    friend bool operator==(const Weights &, const Weights &) = default;
};

/** Everything that an engine is opened with; it does not change afterwards. */
struct Options {
    int classTypes = 1; ///< class types in use, 1 to maxClassTypes
    int levels = 8;     ///< preemption levels in use, 1 to maxLevels
    Weights weights = Weights::of(Objective::fortz);
    /**
     * Price of taking a unit of bandwidth from LSPs of a class type and level, each 0 or more: a
     * link where LSPs have to give way costs so many times more. All 0: preemption costs nothing.
     * Prices make requests that may preempt take the slower search of the whole topology, as the
     * weight of balance makes all.
     */
    PerLevel preemptionPrices{};
    /** False: every link has room for every LSP; computed backups keep to capacities even so. */
    bool testsCapacity = true;
    /**
     * Whether a refusal tells the largest bandwidth that would fit and the links in the way;
     * without it, finding out why costs one walk over the network only. Engine::explain always
     * tells.
     */
    bool explainsRefusals = true;
    /**
     * Whether LSPs can have backups; Engine::protect is wrong use without it. An engine for
     * primaries alone keeps no books about failures: LSPs on long paths come and go about four
     * times as quickly, with the same results but for roundings that LSPs leave in those books.
     */
    bool allowsBackups = true;
};

} // namespace tarnex

#endif
