/**
 * The price of a link as the next hop of a backup, asked of working states one by one (unit
 * "computation/backup/backup").
 */
#ifndef TARNEX_COMPUTATION_BACKUP_PLAIN_COMPUTE_COST_H
#define TARNEX_COMPUTATION_BACKUP_PLAIN_COMPUTE_COST_H

#include "computation/backup/backup_type.h"
#include "computation/backup/dijkstra.h"
#include "database/books/network.h"

/**
 * Prices the link from `src` to `dst` as the next hop of a backup: 10/11 of the reservation that it
 * adds to the link plus 1/11 of the LSP's bandwidth, the latter multiplied by one more than the
 * number of entries from `dst` to the end of `lsp->primPath`.
 *
 * @param lsList working states by link id, as many as the database's link ids; not changed
 * @param dn search node of `src`, whose chain is the backup path so far
 * @param lsp the primary to protect
 * @param type LOCAL_BACKUP or GLOBAL_BACKUP
 * @return the cost, 0 or more, in bandwidth units; -1.0 when the link has no room, and, after a
 *         WARNING, when it cannot be evaluated
 */
double computeCost(DataBase *dataBase, DBLinkState **lsList, Long src, Long dst, CPDijkNode *dn,
                   DBLabelSwitchedPath *lsp, BackupType type);

#endif
