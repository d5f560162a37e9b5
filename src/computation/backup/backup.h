/**
 * The computation of backups (unit "computation/backup/backup"): link cost and driver. For programs
 * that use the unit as a whole; inside the library a file includes only what it needs of it.
 */
#ifndef TARNEX_COMPUTATION_BACKUP_BACKUP_H
#define TARNEX_COMPUTATION_BACKUP_BACKUP_H

#include "computation/backup/backup_type.h"
#include "computation/backup/driver.h"
#include "computation/backup/plain/compute_cost.h"

#endif
