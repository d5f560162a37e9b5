/**
 * The record of one session's network (unit "database/database").
 *
 * Node, link and LSP ids are chosen by the caller, are 0 or more and index the tables directly, so
 * every lookup is one array access and a table is as long as the largest id. There is at most one
 * link per ordered pair of nodes. The database owns its records. The link table is square: its
 * memory grows with the largest node id times the number of nodes that have out-links.
 *
 * The nodes, the links with their states and lists, and the LSPs are the books: what is true. The
 * other tables are derived from them and spare work; see database/followers/followers.h for who
 * keeps them in step, and lookup.h and change.h for the operations.
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
    bool hasPrimariesAlone;   ///< no backup will ever come, so what failures free is not noted
};
using DataBase = DataBase_;

#endif
