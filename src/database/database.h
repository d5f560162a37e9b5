/**
 * The database (unit "database/database"): nodes, links, LSPs and link states, their reservations,
 * admission and the dump. For programs that use the unit as a whole; inside the library a file
 * includes only what it needs of it.
 */
#ifndef TARNEX_DATABASE_DATABASE_H
#define TARNEX_DATABASE_DATABASE_H

#include "admission/admission.h"
#include "database/books/change.h"
#include "database/books/dump.h"
#include "database/books/lookup.h"
#include "database/reservations/question.h"
#include "database/update/update.h"

#endif
