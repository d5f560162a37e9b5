/**
 * The database's node and link records, their containers and the dump of one record (unit
 * "database/database_util"). For programs that use the unit as a whole; inside the library a file
 * includes only what it needs of it.
 */
#ifndef TARNEX_DATABASE_DATABASE_UTIL_H
#define TARNEX_DATABASE_DATABASE_UTIL_H

#include "database/books/dump.h"
#include "database/books/tables.h"

#endif
