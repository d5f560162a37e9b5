/** Link ids without a link, which every backup computation reports (unit
 * "computation/backup/backup").
 */
#ifndef TARNEX_COMPUTATION_BACKUP_FREE_IDS_H
#define TARNEX_COMPUTATION_BACKUP_FREE_IDS_H

#include "database/books/network.h"

/** Whether id `link`, whose ends are `src` and `dst`, lacks a link; it has been reported then. */
bool reportIfFree(Long link, Long src, Long dst);

/** Reports all link ids below the highest in use that no link has. */
void reportFreeIds(const DataBase &db);

#endif
