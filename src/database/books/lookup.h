/**
 * Looking things up in a network (unit "database/database").
 *
 * Getters hand out the stored object, which the caller must not release and must not change: only a
 * link's state may be written, by way of change.h. Each costs one or two array accesses. They
 * return the value asked for, or a pointer; -1 or null after pushing a message unless said
 * otherwise.
 */
#ifndef TARNEX_DATABASE_BOOKS_LOOKUP_H
#define TARNEX_DATABASE_BOOKS_LOOKUP_H

#include "database/books/network.h"

/** The value given to DBnew. */
Long DBgetID(DataBase *dataBase);
/** Number of nodes. */
Long DBgetNbNodes(DataBase *dataBase);
/** Highest node id in use, -1 for an empty database. */
Long DBgetMaxNodeID(DataBase *dataBase);
/** Number of links. */
Long DBgetNbLinks(DataBase *dataBase);

/** Id of the link from `src` to `dst`; -1, without a message, when there is none. */
Long DBgetLinkID(DataBase *dataBase, Long src, Long dst);
/** Source node of link `id`; -1, without a message, for an unused id within the table. */
Long DBgetLinkSrc(DataBase *dataBase, Long id);
/** Destination node of link `id`; as DBgetLinkSrc. */
Long DBgetLinkDst(DataBase *dataBase, Long id);

/** Stored LSP `id`; null, without a message, when there is none. */
DBLabelSwitchedPath *DBgetLSP(DataBase *dataBase, Long id);
/** Stored list of the LSPs on the link from `src` to `dst`. */
DBLSPList *DBgetLinkLSPs(DataBase *dataBase, Long src, Long dst);
/** Stored list of the nodes with a link to node `id`, ascending. */
LongList *DBgetNodeInNeighb(DataBase *dataBase, Long id);
/** Stored list of the nodes that node `id` has a link to, ascending. */
LongList *DBgetNodeOutNeighb(DataBase *dataBase, Long id);

/** The link from `src` to `dst`; null after the message that every getter of a link gives. */
DBLink *existingLink(DataBase *dataBase, Long src, Long dst);

#endif
