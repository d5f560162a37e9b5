/**
 * The computation of primary paths (unit "computation/primary/primaryPath"): working topology,
 * score, search and driver. For programs that use the unit as a whole; inside the library a file
 * includes only what it needs of it.
 */
#ifndef TARNEX_COMPUTATION_PRIMARY_PRIMARY_PATH_H
#define TARNEX_COMPUTATION_PRIMARY_PRIMARY_PATH_H

#include "computation/primary/driver.h"
#include "computation/primary/plain/score.h"
#include "computation/primary/plain/search.h"
#include "computation/primary/plain/topology.h"

#endif
