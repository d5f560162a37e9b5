/**
 * The score of a path extended by one link (unit "computation/primary/primaryPath").
 *
 * The score ranks paths; whether a link may be used was decided when the topology was built. Every
 * criterion adds the growth of a link cost function when the request's bandwidth is added to the
 * link, weighted by the session's PrimaryComputationConfig. Nothing is allocated.
 */
#ifndef TARNEX_COMPUTATION_PRIMARY_PLAIN_SCORE_H
#define TARNEX_COMPUTATION_PRIMARY_PLAIN_SCORE_H

#include "computation/primary/plain/topology.h"

/**
 * Scores the path that reaches `src`, extended by the link from `src` to `dst`: the cost of `src`
 * plus, class type by class type, the weighted increments of the Fortz-Thorup link cost (Fortz and
 * Thorup, 2000), load balance, load, squared load, utilization, squared utilization and queueing
 * delay; a positive sum is then scaled by 1 plus the weighted preemption penalty.
 *
 * @param req the request, not null
 * @param src a placed node
 * @param dst takes no part in the result
 * @param connect the in-connection of `dst` from `src`
 * @return the score; positive infinity when the link cannot be scored
 */
double makeScore(BKTopology *topo, LSPRequest *req, Long src, Long dst, BKConnect *connect);

/** Bandwidth that primary LSPs of class type `oa` reserve on a link, over all levels. */
double primaryLoad(const DBLinkState &state, int oa);

#endif
