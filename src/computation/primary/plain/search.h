/**
 * The label-correcting search of a primary path (unit "computation/primary/primaryPath"), in passes
 * in the manner of Bellman and Kalaba (1960).
 *
 * Every pass re-examines every node reached so far against all its admitted in-links, using the
 * labels committed by the pass before, and widens the reached region by one hop; the search stops
 * after a pass that changed nothing. A candidate replaces a choice only when it lowers the
 * committed cost by more than 1e-10, and of several that do in one pass the last in-neighbour wins.
 * A node never chooses a predecessor that is reached through itself, so the choices form a tree
 * rooted at the source.
 *
 * In all operations `src`, `dst` and `nd` are ids of placed nodes.
 */
#ifndef TARNEX_COMPUTATION_PRIMARY_PLAIN_SEARCH_H
#define TARNEX_COMPUTATION_PRIMARY_PLAIN_SEARCH_H

#include "computation/primary/plain/topology.h"

/** Labels every node of a filled topology that the request's source reaches; 0, or -1. */
[[nodiscard]] int bellmanKalaba(BKTopology *topo, LSPRequest *req);

/** Sets the source's load-balance sums to the total utilization of the admitted links. */
[[nodiscard]] int initScore(Long src, BKTopology *topo);

/** Records the load-balance sums of `dst` reached through `src` over `connect`. */
int updateNodeInfoOnElect(BKTopology *topo, LSPRequest *req, Long src, Long dst,
                          BKConnect *connect);

/** Commits a node's load-balance sums. */
int activateNodeInfo(BKTopology *topo, Long nd);

/** 1 when `dst` is not on the current predecessor chain of `src`, `src` itself included; else 0. */
int noLoop(BKTopology *topo, Long src, Long dst);

#endif
