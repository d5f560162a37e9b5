/** Kinds of backups, and the level that they are searched at (unit "computation/backup/backup"). */
#ifndef TARNEX_COMPUTATION_BACKUP_BACKUP_TYPE_H
#define TARNEX_COMPUTATION_BACKUP_BACKUP_TYPE_H

#include "database/books/lsp.h"

/** Kind of backup asked for. */
using BackupType = unsigned char;
inline constexpr BackupType NO_BACKUP = 0;     ///< nothing requested
inline constexpr BackupType LOCAL_BACKUP = 1;  ///< one local backup per link of the primary
inline constexpr BackupType GLOBAL_BACKUP = 2; ///< one end-to-end backup

/**
 * Preemption level at which a primary's backups are searched: one below its own, the least
 * important one staying. Whoever adds them chooses a level of his own.
 */
inline int backupPrecedence(const DBLabelSwitchedPath &primary)
{
    return primary.precedence + 1 < MAXPL ? primary.precedence + 1 : primary.precedence;
}

#endif
