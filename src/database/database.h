/**
 * The database (unit "database/database"): nodes, links, LSPs and link states, their reservations,
 * admission and the dump. For programs that use the unit as a whole; inside the library a file
 * includes only what it needs of it.
 */
#ifndef TARNEX_DATABASE_DATABASE_H
#define TARNEX_DATABASE_DATABASE_H

#include "admission/admission.h"
#include "database/books/dump.h"
#include "database/books/link_state.h"
#include "database/books/lsp.h"
#include "database/books/network.h"
#include "database/reservations/effect.h"
#include "database/reservations/question.h"

#endif
