/**
 * The network of one session: nodes, directed links and LSPs (unit "database/database").
 *
 * Node, link and LSP ids are chosen by the caller, are 0 or more and index the tables directly, so
 * every lookup is one array access and a table is as long as the largest id. There is at most one
 * link per ordered pair of nodes. The database owns its records; getters hand out the stored
 * object, which the caller must not release. The link table is square: its memory grows with the
 * largest node id times the number of nodes that have out-links.
 *
 * Operations return 0, the value asked for, or a pointer; -1 or null after pushing a message.
 */
#ifndef TARNEX_DATABASE_BOOKS_NETWORK_H
#define TARNEX_DATABASE_BOOKS_NETWORK_H

#include "database/books/tables.h"
#include "database/indices/backup_index.h"
#include "database/indices/failure_carriers.h"
#include "database/indices/network_index.h"

/** The network. */
struct DataBase_ {
    Long id;             ///< the value given to DBnew
    Long nbNodes;        ///< number of nodes
    Long nbLinks;        ///< number of links
    DBNodeVec nodeVec;   ///< nodes by id
    DBLSPVec lspVec;     ///< LSPs by id
    DBLinkTab linkTab;   ///< links by end nodes
    LongVec linkSrcVec;  ///< slot `id`: source of link `id` plus 1, 0 when there is no such link;
                         ///< `top` is one more than the highest link id in use
    LongVec linkDstVec;  ///< slot `id`: destination of link `id` plus 1, 0 when none
    Long topology;       ///< counts the changes of nodes and links, modulo 2^32
    NetworkIndex index;  ///< for searches, made when the first needs it
    BackupIndex backups; ///< for searches of backups, made when the first needs it
    FailureCarriers carriers; ///< likewise
};
using DataBase = DataBase_;

/** New empty database; null on failure. */
[[nodiscard]] DataBase *DBnew(Long ID);
/** Releases everything the database owns, then the record. */
int DBdestroy(DataBase *dataBase);

/** Adds a node; its id must be free. */
[[nodiscard]] int DBaddNode(DataBase *dataBase, Long id);
/**
 * Removes a node and every link into or out of it; LSPs that used the links stay stored. Completes
 * what it can: after -1 with "Node removal uncomplete" the node is counted as removed.
 */
[[nodiscard]] int DBremoveNode(DataBase *dataBase, Long id);
/**
 * Adds a link with a copy of `initLinkState`. Both end nodes must exist, the id must be free and
 * the ordered pair not linked yet. After -1 with "Link addition uncomplete" the link is there and
 * counted.
 */
[[nodiscard]] int DBaddLink(DataBase *dataBase, Long id, Long src, Long dst,
                            DBLinkState *initLinkState);
/** Removes the link from `src` to `dst`; LSPs that used it stay stored. */
[[nodiscard]] int DBremoveLink(DataBase *dataBase, Long src, Long dst);

/** The value given to DBnew. */
Long DBgetID(const DataBase *dataBase);
/** Number of nodes. */
Long DBgetNbNodes(const DataBase *dataBase);
/** Highest node id in use, -1 for an empty database. */
Long DBgetMaxNodeID(const DataBase *dataBase);
/** Number of links. */
Long DBgetNbLinks(const DataBase *dataBase);

/** Id of the link from `src` to `dst`; -1, without a message, when there is none. */
Long DBgetLinkID(const DataBase *dataBase, Long src, Long dst);
/** Source node of link `id`; -1, without a message, for an unused id within the table. */
Long DBgetLinkSrc(DataBase *dataBase, Long id);
/** Destination node of link `id`; as DBgetLinkSrc. */
Long DBgetLinkDst(DataBase *dataBase, Long id);

/** Stored LSP `id`; null, without a message, when there is none. */
DBLabelSwitchedPath *DBgetLSP(const DataBase *dataBase, Long id);
/** Stored list of the LSPs on the link from `src` to `dst`. */
DBLSPList *DBgetLinkLSPs(DataBase *dataBase, Long src, Long dst);
/** Stored state of the link from `src` to `dst`. */
DBLinkState *DBgetLinkState(DataBase *dataBase, Long src, Long dst);
/** Copies `newLS` into the state of the link from `src` to `dst`. */
[[nodiscard]] int DBsetLinkState(DataBase *dataBase, Long src, Long dst, DBLinkState *newLS);
/** Stored list of the nodes with a link to node `id`, ascending. */
LongList *DBgetNodeInNeighb(DataBase *dataBase, Long id);
/** Stored list of the nodes that node `id` has a link to, ascending. */
LongList *DBgetNodeOutNeighb(DataBase *dataBase, Long id);

#endif
