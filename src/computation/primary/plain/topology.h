/**
 * The working topology of a primary path search (unit "computation/primary/primaryPath").
 *
 * A private graph of what a request can see: one node record per database node reachable from the
 * request's source along links, whether admitted or not, and in each node the admitted links that
 * enter and leave it, with the preemption gain that the predicate reported. Every link is put to
 * the predicate at most once per construction. Node records own their connection lists; the link
 * states belong to the database and must not change while the topology is in use.
 *
 * Vectors double when full; `size` counts allocated slots and `top` those in use. A size argument
 * of -1 means one slot. Operations return 0, or -1 (or null) after pushing a message.
 */
#ifndef TARNEX_COMPUTATION_PRIMARY_PLAIN_TOPOLOGY_H
#define TARNEX_COMPUTATION_PRIMARY_PLAIN_TOPOLOGY_H

#include "computation/computation.h"
#include "database/books/network.h"

/** What the predicate reported for a link. */
struct BKConnectInfo_ {
    double gain[MAXOA]; ///< bandwidth that preemption must free, per class type; 0 when none
};
using BKConnectInfo = BKConnectInfo_;

/** One directed link seen from one of its ends. */
struct BKConnect_ {
    Long neighbId;          ///< node at the other end
    DBLinkState *linkState; ///< state inside the database, not owned
    BKConnectInfo info;
};
using BKConnect = BKConnect_;

/** Growable vector of connections. */
struct BKConnectVec_ {
    Long size;
    Long top;
    BKConnect *cont; ///< counted block, owned
};
using BKConnectVec = BKConnectVec_;

/** Search state of a node, see search.h. */
struct BKNodeInfo_ {
    Long newNeighbInd;    ///< predecessor chosen in the current pass, as an index into `inNeighb`
    double newCost;       ///< score through that predecessor
    double cost;          ///< score of the committed path
    double newSum[MAXOA]; ///< load-balance sums through that predecessor
    double sum[MAXOA];    ///< load-balance sums of the committed path
};
using BKNodeInfo = BKNodeInfo_;

/** A node with its admitted links. */
struct BKNode_ {
    Long nodeId;
    BKConnectVec inNeighb;  ///< admitted links that end here, in the order of the database's list
    BKConnectVec outNeighb; ///< admitted links that start here, likewise
    Long neighbInd;         ///< committed predecessor as an index into `inNeighb`; -1 when none
    BKNodeInfo info;
};
using BKNode = BKNode_;

/** Growable vector of nodes; every allocated slot owns two connection lists with room for one. */
struct BKNodeVec_ {
    Long size;
    Long top;
    BKNode *cont; ///< counted block, owned
};
using BKNodeVec = BKNodeVec_;

/** The working topology; the source is at position 0. */
struct BKTopology_ {
    BKNodeVec nodeVec; ///< nodes in the order in which they were placed
    LongVec nodeInd;   ///< position in `nodeVec` by node id; ids that were not placed read 0
    Long nbNodes;      ///< nodes in the whole database
    Long nbLinks;      ///< links in the whole database
};
using BKTopology = BKTopology_;

/** @name Vectors of connections: as the LongVec operation of the same name (common/common.h). */
///@{
[[nodiscard]] BKConnectVec *bkConnectVecNew(Long size);
[[nodiscard]] int bkConnectVecInit(BKConnectVec *vec, Long size);
int bkConnectVecEnd(BKConnectVec *vec);
int bkConnectVecDestroy(BKConnectVec *vec);
[[nodiscard]] int bkConnectVecCopy(BKConnectVec *dst, BKConnectVec *src);
[[nodiscard]] int bkConnectVecPushBack(BKConnectVec *vec, BKConnect *val);
[[nodiscard]] int bkConnectVecPopBack(BKConnectVec *vec, BKConnect *val);
[[nodiscard]] int bkConnectVecGet(BKConnectVec *vec, Long index, BKConnect *val);
[[nodiscard]] int bkConnectVecSet(BKConnectVec *vec, Long index, BKConnect *val);
[[nodiscard]] int bkConnectVecResize(BKConnectVec *vec, Long newsize);
///@}

/**
 * @name Vectors of nodes.
 * Copying a node copies `nodeId`, `neighbInd` and both lists into the lists of the destination,
 * which keeps its `info`.
 */
///@{
[[nodiscard]] BKNodeVec *bkNodeVecNew(Long size);
[[nodiscard]] int bkNodeVecInit(BKNodeVec *vec, Long size);
int bkNodeVecEnd(BKNodeVec *vec);
int bkNodeVecDestroy(BKNodeVec *vec);
[[nodiscard]] int bkNodeVecResize(BKNodeVec *vec, Long newsize);
[[nodiscard]] int bkNodeVecSet(BKNodeVec *vec, Long index, BKNode *val);
[[nodiscard]] int bkNodeVecPushBack(BKNodeVec *vec, BKNode *val);
/** Copies the last node into `val`, whose two lists must be initialised, and drops it. */
[[nodiscard]] int bkNodeVecPopBack(BKNodeVec *vec, BKNode *val);
/** Address of slot `index`, which must lie within the capacity; good until the vector grows. */
BKNode *bkNodeVecGet(BKNodeVec *vec, Long index);
///@}

/** Makes an empty topology, its node index of `size` slots; the two counts are untouched. */
[[nodiscard]] int initTopo(BKTopology *topo, Long size);
/** Fills an empty topology with what `req` can see; nodes placed before a failure stay. */
[[nodiscard]] int fillTopo(DataBase *dataBase, LSPRequest *req, BKTopology *topo);
/** Releases the node vector and the node index. */
int endTopo(BKTopology *topo);
/** Writes the topology on standard output; only one that holds every id up to its largest. */
int printTopo(BKTopology *topo);

/** Node of a placed id; for an id below the index's count that was not placed, the source's. */
inline BKNode &placedNode(const BKTopology &topo, Long id)
{
    return topo.nodeVec.cont[topo.nodeInd.cont[id]];
}

#endif
