#include "computation/primary/plain/score.h"

#include "common/setup.h"
#include "computation/primary/increments.h"
#include "error/report.h"
#include "rerouting/rerouting.h"

#include <cmath>
#include <limits>
#include <optional>

namespace
{

constexpr Unit here{"computation/primary/primaryPath"};
constexpr double infinity = std::numeric_limits<double>::infinity();

/** What the criteria of one class type read of a link, a request and the path so far. */
struct Terms : LinkLoad {
    double sum;     ///< s, load-balance sum of the path so far
    double nbLinks; ///< N, links in the database
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

/** Adds the increments of one class type; false when the link cannot be scored. */
bool addIncrements(const PrimaryComputationConfig &weights, int oa, const Terms &t, double &score)
{
    score += fortzIncrement(weights, t);
    if (weights.loadBal[oa] != 0.0) {
        const std::optional<double> growth = loadBalanceGrowth(weights.loadBal[oa], t);
        if (!growth)
            return false;
        score += *growth;
    }
    forEachIncrement(weights, oa, t, [&score](double increment) { score += increment; });
    return true;
}

/** The weighted preemption penalty of the link, over all class types. */
double reroutePenalty(const PrimaryComputationConfig &weights, LSPRequest *req, BKConnect &connect)
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

double makeScore(BKTopology *topo, LSPRequest *req, Long src, Long /*dst*/, BKConnect *connect)
{
    if (!topo || !connect) {
        here.push(CRITICAL, "Bad argument (NULL) in %s at line %d");
        return infinity;
    }
    const PrimaryComputationConfig &weights = tarnexConfig.primaryComputationConfig;
    const BKNodeInfo &start = placedNode(*topo, src).info;
    double score = start.cost;
    for (int oa = 0; oa < MAXOA; ++oa) {
        const Terms terms{
            {primaryLoad(*connect->linkState, oa), connect->linkState->cap[oa], req->bw[oa]},
            start.sum[oa],
            static_cast<double>(topo->nbLinks)};
        if (!addIncrements(weights, oa, terms, score))
            return infinity;
    }
    const double gate = score > 0.0 ? 1.0 : 0.0;
    return score + gate * reroutePenalty(weights, req, *connect) * score;
}
