/**
 * Primary path computation (unit "computation/primary/primaryPath"): working topology, search and
 * write-back. Nodes, links, LSPs and reservations stay as they are, and whether the LSP is set up
 * is the caller's affair; what the database derives from them for searches, the indices and the
 * summaries of links, is brought up to date on the way.
 */
#ifndef TARNEX_COMPUTATION_PRIMARY_DRIVER_H
#define TARNEX_COMPUTATION_PRIMARY_DRIVER_H

#include "computation/primary/plain/topology.h"

/**
 * Computes the path of lowest score for `req`, whose path names the source first and the
 * destination last, and writes it into `req->path` as node ids. The path's score is added to COST.
 *
 * @return 0, or -1 after a message, for instance when the destination cannot be reached; the
 * content of `req->path` is then undefined
 */
[[nodiscard]] int computePrimaryPath(DataBase *dataBase, LSPRequest *req);

/** Replaces `req->path` by the committed path of a searched topology; 0, or -1 after a message. */
[[nodiscard]] int updateRequest(BKTopology *topo, LSPRequest *req);

#endif
