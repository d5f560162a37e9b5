#include "computation/primary/score.h"

#include "common/setup.h"
#include "error/report.h"
#include "rerouting/rerouting.h"

#include <array>
#include <cmath>
#include <limits>
#include <optional>

namespace
{

constexpr Unit here{"computation/primary/primaryPath"};
constexpr double infinity = std::numeric_limits<double>::infinity();

/** One piece of the Fortz-Thorup link cost: its slope up to, not including, a utilization. */
struct Piece {
    double below;
    double slope;
};

// The breakpoints are single-precision values but for 9/10.
constexpr std::array<Piece, 5> pieces{{{1.0F / 3.0F, 1.0},
                                       {2.0F / 3.0F, 3.0},
                                       {9.0 / 10.0, 10.0},
                                       {1.0, 70.0},
                                       {11.0F / 10.0F, 500.0}}};
constexpr double lastSlope = 5000.0;

/** Slope at a utilization; one that is not a number takes the last piece. */
double slopeAt(double utilization)
{
    for (const Piece &piece : pieces) {
        if (utilization < piece.below)
            return piece.slope;
    }
    return lastSlope;
}

/** What the criteria of one class type read. */
struct Terms {
    double load;     ///< L, reserved by primary LSPs
    double capacity; ///< C
    double bw;       ///< b, the request's bandwidth
    double sum;      ///< s, load-balance sum of the path so far
    double nbLinks;  ///< N, links in the database
};

/** Growth of N times the variance of link utilization; nothing when it is not finite. */
std::optional<double> loadBalanceGrowth(double weight, const Terms &t)
{
    const double newSum = t.bw / t.capacity + t.sum;
    if (std::isinf(newSum))
        return std::nullopt;
    const double before = t.load / t.capacity;
    const double after = (t.load + t.bw) / t.capacity;
    return weight * (after * after - before * before) +
           weight / t.nbLinks * (t.sum * t.sum - newSum * newSum);
}

double squaredLoadGrowth(const Terms &t) { return t.bw * t.bw + 2.0 * t.bw * t.load; }

/** Adds the increments of one class type; false when the link cannot be scored. */
bool addIncrements(const PrimaryComputationConfig &weights, int oa, const Terms &t, double &score)
{
    score += weights.Fortz * slopeAt(t.load / t.capacity) * t.bw;
    if (weights.loadBal[oa] != 0.0) {
        const std::optional<double> growth = loadBalanceGrowth(weights.loadBal[oa], t);
        if (!growth)
            return false;
        score += *growth;
    }
    if (weights.load[oa] != 0.0)
        score += weights.load[oa] * t.bw;
    if (weights.sqLoad[oa] != 0.0)
        score += weights.sqLoad[oa] * squaredLoadGrowth(t);
    if (weights.relLoad[oa] != 0.0)
        score += weights.relLoad[oa] * t.bw / t.capacity;
    if (weights.sqRelLoad[oa] != 0.0)
        score += weights.sqRelLoad[oa] * squaredLoadGrowth(t) / (t.capacity * t.capacity);
    if (weights.delay[oa] != 0.0)
        score +=
            weights.delay[oa] * (1.0 / (t.capacity - t.load - t.bw) - 1.0 / (t.capacity - t.load));
    return true;
}

/** The weighted preemption penalty of the link, over all class types. */
double reroutePenalty(const PrimaryComputationConfig &weights, const LSPRequest *req,
                      const BKConnect &connect)
{
    double penalty = 0.0;
    for (int oa = 0; oa < MAXOA; ++oa) {
        if (weights.rerouting[oa] != 0.0)
            penalty += weights.rerouting[oa] *
                       makeRerouteScore(req, connect.info.gain, connect.linkState, oa);
    }
    return penalty;
}

} // namespace

double primaryLoad(const DBLinkState &state, int oa)
{
    double load = 0.0;
    for (const double reserved : state.pbw[oa])
        load += reserved;
    return load;
}

double makeScore(const BKTopology *topo, const LSPRequest *req, Long src, Long /*dst*/,
                 const BKConnect *connect)
{
    if (!topo || !connect) {
        here.push(CRITICAL, "Bad argument (NULL) in %s at line %d");
        return infinity;
    }
    const PrimaryComputationConfig &weights = tarnexConfig.primaryComputationConfig;
    const BKNodeInfo &start = placedNode(*topo, src).info;
    double score = start.cost;
    for (int oa = 0; oa < MAXOA; ++oa) {
        const Terms terms{primaryLoad(*connect->linkState, oa), connect->linkState->cap[oa],
                          req->bw[oa], start.sum[oa], static_cast<double>(topo->nbLinks)};
        if (!addIncrements(weights, oa, terms, score))
            return infinity;
    }
    const double gate = score > 0.0 ? 1.0 : 0.0;
    return score + gate * reroutePenalty(weights, req, *connect) * score;
}
