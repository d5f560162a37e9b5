/**
 * LSP records, and the sorted list of the LSPs that a link carries (unit "database/database").
 *
 * A record owns its four lists. The database stores its own copy of every admitted LSP and lists
 * pointers to that copy on the links of its path; a list never owns the records. A list is sorted:
 * least important level first, then larger bandwidth first, then smaller id first. Insertion and
 * removal search in O(log n) and shift in O(n); an entry that the order does not lead to, since a
 * bandwidth in the list is no number, takes a look at every entry.
 */
#ifndef TARNEX_DATABASE_BOOKS_LSP_H
#define TARNEX_DATABASE_BOOKS_LSP_H

#include "common/common.h"

/** One label switched path. */
struct DBLabelSwitchedPath_ {
    Long id;              ///< unique in the database, 0 or more
    Long noContentionId;  ///< LSP that this one does not compete with for bandwidth, -1 when none
    int precedence;       ///< preemption level, 0 the most important
    double bw[MAXOA];     ///< bandwidth per class type
    LongList forbidLinks; ///< forbidden link colours of the request the LSP came from
    LongList path;        ///< node ids, ingress first
    DBLSPType type;       ///< primary, local backup or global backup
    Long primID;          ///< for a backup: id of the primary it protects
    LongList primPath;    ///< for a backup: the protected primary's path
    LongList backLSPIDs;  ///< kept with the record; no operation reads it
};
using DBLabelSwitchedPath = DBLabelSwitchedPath_;

/** The LSPs carried by one link, sorted; the records are not owned. */
struct DBLSPList_ {
    Long size;                  ///< capacity in slots
    Long top;                   ///< LSPs in the list
    DBLabelSwitchedPath **cont; ///< counted block of `size` slots, owned
};
using DBLSPList = DBLSPList_;

/** New record: every field 0, `noContentionId` -1, four empty lists; null on failure. */
[[nodiscard]] DBLabelSwitchedPath *DBlspNew();
/** Makes the four lists empty, `bw` 0 and `noContentionId` -1; the rest keeps its values. */
[[nodiscard]] int DBlspInit(DBLabelSwitchedPath *lsp);
/** Copies every field into the initialised `dst`; `dst` may be partly copied on failure. */
[[nodiscard]] int DBlspCopy(DBLabelSwitchedPath *dst, DBLabelSwitchedPath *src);
/** Releases the four lists. */
int DBlspEnd(DBLabelSwitchedPath *lsp);
/** Releases the four lists and the record made by DBlspNew. */
int DBlspDestroy(DBLabelSwitchedPath *lsp);

/** New empty list of capacity `size` (-1: one slot); null on failure. */
[[nodiscard]] DBLSPList *DBlspListNew(Long size);
/** Makes an empty list of capacity `size` (-1: one slot) in place. */
[[nodiscard]] int DBlspListInit(DBLSPList *list, Long size);
/** Releases the slots. */
int DBlspListEnd(DBLSPList *list);
/** Releases the slots and the record made by DBlspListNew. */
int DBlspListDestroy(DBLSPList *list);
/** Inserts `lsp` at its place and returns the position, -1 on failure. */
[[nodiscard]] int DBlspListInsert(DBLSPList *list, DBLabelSwitchedPath *lsp);
/** Removes the entry whose keys equal those of `lsp`, or else `lsp` itself; none is a WARNING and
 * -1. */
[[nodiscard]] int DBlspListRemove(DBLSPList *list, DBLabelSwitchedPath *lsp);
/**
 * The order of a list: 1 when `LSPa` sorts before `LSPb`, -1 when after, 0 when precedence,
 * bandwidths (class type by class type, the first difference deciding) and id are equal.
 */
int DBlspCompare(const DBLabelSwitchedPath *LSPa, const DBLabelSwitchedPath *LSPb);

#endif
