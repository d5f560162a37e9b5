/**
 * The frontier of the backup search: a priority queue, and the search's node record (unit
 * "computation/backup/dijkstra").
 *
 * The queue is an unbalanced binary search tree with its minimum cached: removing the minimum and
 * inserting a new one need no search, other insertions cost the depth of the tree. There is no
 * decrease-key: a node whose distance improves is inserted again, and the search skips stale
 * entries. Among equal keys the entry inserted last comes out first. The queue owns its tree nodes,
 * one counted block per entry, never the search's nodes.
 *
 * Operations return 0, or -1 (or null) after pushing a message.
 */
#ifndef TARNEX_COMPUTATION_BACKUP_DIJKSTRA_H
#define TARNEX_COMPUTATION_BACKUP_DIJKSTRA_H

#include "database/books/tables.h"

/** One network node during a search; owned by the search. */
struct CPDijkNode_ {
    CPDijkNode_
        *from;    ///< predecessor on the best path so far; null for the start and when unreached
    DBNode *node; ///< the database node
    double val;   ///< best path cost so far
    bool marked;  ///< whether the node is settled
};
using CPDijkNode = CPDijkNode_;

/** One entry of the queue. */
struct CPTreeNode_ {
    CPTreeNode_ *father; ///< null for the root
    CPTreeNode_ *leq;    ///< entries with a key less than or equal to this one
    CPTreeNode_ *gt;     ///< entries with a greater key
    double key;          ///< the smallest comes out first
    CPDijkNode *node;    ///< the node to settle when the entry comes out
};
using CPTreeNode = CPTreeNode_;

/** The queue. */
struct CPPrioQueue_ {
    CPTreeNode *root; ///< null when empty
    CPTreeNode *top;  ///< leftmost entry, the next to come out; null when empty
    Long size;        ///< number of entries
};
using CPPrioQueue = CPPrioQueue_;

/** New zeroed tree node; null on failure. */
[[nodiscard]] CPTreeNode *CPnewTN();
/** Frees a tree node, not its Dijkstra node. */
[[nodiscard]] int CPdestroyTN(CPTreeNode *tn);

/** Makes a queue in place empty. */
[[nodiscard]] int CPinitPQ(CPPrioQueue *pq);
/** New empty queue; null on failure. */
[[nodiscard]] CPPrioQueue *CPnewPQ();
/** Adds an entry. */
[[nodiscard]] int CPinsertPQ(CPPrioQueue *pq, CPDijkNode *dn, double key);
/** Removes the entry of smallest key; null, without a message, when the queue is empty. */
CPDijkNode *CPpopTop(CPPrioQueue *pq);
/** Removes all entries; the queue can be used again. */
int CPendPQ(CPPrioQueue *pq);
/** CPendPQ, then frees the record made by CPnewPQ. */
int CPdestroyPQ(CPPrioQueue *pq);

#endif
