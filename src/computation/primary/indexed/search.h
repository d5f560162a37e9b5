/**
 * The path of nearly every request, found over the network's index (unit
 * "computation/primary/primaryPath").
 *
 * The result is that of the topology and the passes (plain/topology.h, plain/search.h), bit for
 * bit: the same links are admitted, the same labels chosen in the same passes. What differs is what
 * is not done: links whose figures leave no doubt are not put to the predicate (link_appraisal.h),
 * no record is made per link, and nodes are labelled and looked at only as far as it takes
 * (meeting_search.h, clear_search.h, pass_search.h; general_search.h for weights that these
 * cannot).
 */
#ifndef TARNEX_COMPUTATION_PRIMARY_INDEXED_SEARCH_H
#define TARNEX_COMPUTATION_PRIMARY_INDEXED_SEARCH_H

#include "computation/computation.h"
#include "database/books/network.h"

/** How a search over the index ended. */
enum class IndexedResult {
    found,       ///< the path is in the request
    unreachable, ///< there is none
    noMemory,
    notTried ///< the request, the configuration or the network is not one that the index serves
};

/**
 * Computes the path of `req`, whose path names source and destination, and writes it there.
 *
 * Served is a primary without a rerouted LSP under finite weights, unless a link leads from a node
 * that the source does not reach, with an id above all that it reaches, to one that it does (the
 * passes stumble over it, which `failsOverOddLinks` preserves), or preemption has a price that
 * cannot be told.
 *
 * @param cost the path's score, written when one is found
 */
[[nodiscard]] IndexedResult searchIndexed(DataBase &db, LSPRequest &req, double &cost);

#endif
