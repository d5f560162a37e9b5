/**
 * Backup paths of a primary LSP that is in the database (unit "computation/backup/backup").
 *
 * Local backups protect one link of the primary each, leaving it at the upstream end of the link
 * and joining it again further downstream; a global backup leads from its ingress to its egress.
 * Each is sought node-disjoint first and link-disjoint when there is none, by Dijkstra's algorithm
 * (1959) with the extra shared reservation that a link would need as its length. Local backups of
 * one primary see each other's reservations, so they share what they can.
 *
 * The database is read, never changed. Link states are shared with it until a path is written into
 * them; only then is a state copied.
 */
#ifndef TARNEX_COMPUTATION_BACKUP_DRIVER_H
#define TARNEX_COMPUTATION_BACKUP_DRIVER_H

#include "computation/backup/dijkstra.h"
#include "computation/computation.h"

/** Kind of backup asked for. */
using BackupType = unsigned char;
inline constexpr BackupType NO_BACKUP = 0;     ///< nothing requested
inline constexpr BackupType LOCAL_BACKUP = 1;  ///< one local backup per link of the primary
inline constexpr BackupType GLOBAL_BACKUP = 2; ///< one end-to-end backup

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
double computeCost(DataBase *dataBase, DBLinkState *const *lsList, Long src, Long dst,
                   const CPDijkNode *dn, const DBLabelSwitchedPath *lsp, BackupType type);

/**
 * Preemption level at which a primary's backups are searched: one below its own, the least
 * important one staying. Whoever adds them chooses a level of his own.
 */
int backupPrecedence(const DBLabelSwitchedPath &primary);

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

#endif
