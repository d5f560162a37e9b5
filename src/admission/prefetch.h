/**
 * Asking the processor for memory ahead of its use. Of a large network little is in the caches, and
 * an admission that met its links' memory one line after the other would mostly wait for it. So it
 * asks for all links of a path first; for what it will change on a link when the link's record has
 * come; and for the listed LSPs when their list has. Nothing is read or changed.
 */
#ifndef TARNEX_ADMISSION_PREFETCH_H
#define TARNEX_ADMISSION_PREFETCH_H

#include "database/books/tables.h"
#include "database/reservations/effect.h"

/** Asks for what evaluating `lsp` reads of a link's record. */
void prefetchRecord(const DBLink &link, const LSPView &lsp);

/** Asks for the slots that an effect changes and for the list of LSPs. */
void prefetchChanges(const DBLink &link, const Effect &effect);

/** Asks for the LSPs that a search in a list looks at first. */
void prefetchListed(const DBLSPList &list);

#endif
