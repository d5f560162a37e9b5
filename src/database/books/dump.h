/**
 * Readable dump of a database on standard output, for diagnosis; nothing is changed. The C stream
 * is not flushed.
 */
#ifndef TARNEX_DATABASE_BOOKS_DUMP_H
#define TARNEX_DATABASE_BOOKS_DUMP_H

#include "database/books/network.h"

/** Prints every node, then every link; a null database prints nothing. */
void DBprintDB(DataBase *db);
/** Prints one node's neighbour lists. */
void DBprintNode(DBNode *node);
/** Prints one link's LSP ids and, per class type, its capacity and reservations over all levels. */
void DBprintLink(DBLink *link);

#endif
