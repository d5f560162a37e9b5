/**
 * Backup paths of a primary LSP that is in the database (unit "computation/backup/backup").
 *
 * Local backups protect one link of the primary each, leaving it at the upstream end of the link
 * and joining it again further downstream; a global backup leads from its ingress to its egress.
 * Each is sought node-disjoint first and link-disjoint when there is none, by Dijkstra's algorithm
 * (1959) with the extra shared reservation that a link would need as its length. Local backups of
 * one primary see each other's reservations, so they share what they can.
 *
 * Nodes, links, LSPs and reservations stay as they are. What the database derives from them for
 * searches, the indices and the summaries of links, is brought up to date on the way. The plain
 * search shares link states with the database until a path is written into them; only then is a
 * state copied.
 */
#ifndef TARNEX_COMPUTATION_BACKUP_DRIVER_H
#define TARNEX_COMPUTATION_BACKUP_DRIVER_H

#include "computation/backup/backup_type.h"
#include "computation/computation.h"
#include "database/books/network.h"

/**
 * Computes the backups of primary `lspID` and writes one request per backup into `reqList`, an
 * initialised list: request k of n - 1 local backups protects hop k of the primary's n nodes; a
 * global backup is a single request.
 *
 * @return 0, also for NO_BACKUP and, after a WARNING, for an unknown type; -1 when a backup cannot
 * be found or the computation failed: requests handled before keep their paths
 */
[[nodiscard]] int computeBackup(DataBase *dataBase, LSPRequestList *reqList, Long lspID,
                                BackupType type);

/**
 * The same for a primary that the caller describes: one that is in the database, its bandwidths
 * replaced by those that the backups are to have.
 */
[[nodiscard]] int computeBackupOf(DataBase &dataBase, LSPRequestList &reqList,
                                  DBLabelSwitchedPath &primary, BackupType type);

#endif
