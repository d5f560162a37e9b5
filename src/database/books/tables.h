/**
 * The database's node and link records and their containers (unit "database/database_util").
 *
 * Containers are tables indexed by id; a slot that is not in use is null. They grow to the larger
 * of id + 1 and twice their size and never shrink. Growing does not touch the memory of new slots
 * (of the link table: but for one pointer per row), so large, almost empty tables stay cheap. The
 * node table and the link table own their records; the LSP table owns its records too, but hands
 * one back unreleased on removal.
 *
 * A size argument of -1 means one slot. Operations return 0, or -1 after pushing a message.
 */
#ifndef TARNEX_DATABASE_BOOKS_TABLES_H
#define TARNEX_DATABASE_BOOKS_TABLES_H

#include "common/common.h"
#include "database/books/link_state.h"
#include "database/books/lsp.h"
#include "database/reservations/summary.h"

/** A node and its neighbours, both lists ascending. */
struct DBNode_ {
    Long id;
    LongList inNeighb;  ///< nodes with a link to this one
    LongList outNeighb; ///< nodes that this one has a link to
    Long number;        ///< in the indices made for the present topology
};
using DBNode = DBNode_;

/** A directed link. */
struct DBLink_ {
    Long id;
    DBLinkState state;
    DBLSPList lspList;   ///< LSPs whose path uses the link; the records belong to the LSP table
    LinkSummary summary; ///< follows the stored state
    Long number;         ///< in the indices made for the present topology
};
using DBLink = DBLink_;

/** Node records by node id. */
struct DBNodeVec_ {
    Long size;     ///< slots
    Long top;      ///< one more than the highest id in use, 0 when none
    DBNode **cont; ///< counted block, owned
};
using DBNodeVec = DBNodeVec_;

/** LSP records by LSP id. */
struct DBLSPVec_ {
    Long size;                  ///< slots
    DBLabelSwitchedPath **cont; ///< counted block, owned
};
using DBLSPVec = DBLSPVec_;

/** Link records by end nodes: `cont[src][dst]`. */
struct DBLinkTab_ {
    Long size;         ///< side of the square table
    DBLink ***cont;    ///< counted block of `size` rows of `size` slots each, owned
    DBLink **emptyRow; ///< the one row that every source without an out-link shares, all null
};
using DBLinkTab = DBLinkTab_;

/** New zeroed node with two empty lists; null on failure. */
[[nodiscard]] DBNode *DBnodeNew();
/** Zeroes a node and makes its two lists. */
[[nodiscard]] int DBnodeInit(DBNode *node);
/** Releases the two lists. */
int DBnodeEnd(DBNode *node);
/** Releases the two lists and the record made by DBnodeNew. */
int DBnodeDestroy(DBNode *node);

/** New zeroed link with an initialised state and an empty LSP list; null on failure. */
[[nodiscard]] DBLink *DBlinkNew();
/** Zeroes a link and makes its state and its LSP list. */
[[nodiscard]] int DBlinkInit(DBLink *link);
/** Releases state and list storage; the LSP records are not touched. */
int DBlinkEnd(DBLink *link);
/** DBlinkEnd, then frees the record made by DBlinkNew. */
int DBlinkDestroy(DBLink *link);

/** New node table of `size` free slots; null on failure. */
[[nodiscard]] DBNodeVec *DBnodeVecNew(Long size);
/** Makes an existing record a node table of `size` free slots. */
[[nodiscard]] int DBnodeVecInit(DBNodeVec *vec, Long size);
/** Releases every node, then the slots. */
int DBnodeVecEnd(DBNodeVec *vec);
/** DBnodeVecEnd, then frees the record made by DBnodeVecNew. */
int DBnodeVecDestroy(DBNodeVec *vec);
/** Stores `node` at `id`, which must be free; the table owns it from then on. */
[[nodiscard]] int DBnodeVecSet(DBNodeVec *vec, DBNode *node, Long id);
/** Releases the node at `id` and clears its slot. */
[[nodiscard]] int DBnodeVecRemove(DBNodeVec *vec, Long id);
/** Grows to `size` slots. */
[[nodiscard]] int DBnodeVecResize(DBNodeVec *vec, Long size);

/** New LSP table of `size` free slots; null on failure. */
[[nodiscard]] DBLSPVec *DBlspVecNew(Long size);
/** Makes an existing record an LSP table of `size` free slots. */
[[nodiscard]] int DBlspVecInit(DBLSPVec *vec, Long size);
/** Releases every LSP record, then the slots. */
int DBlspVecEnd(DBLSPVec *vec);
/** DBlspVecEnd, then frees the record made by DBlspVecNew. */
int DBlspVecDestroy(DBLSPVec *vec);
/** Stores `lsp` at `id`, which must be free; the table owns it from then on. */
[[nodiscard]] int DBlspVecSet(DBLSPVec *vec, DBLabelSwitchedPath *lsp, Long id);
/** Clears the slot; the record goes back to the caller unreleased. */
[[nodiscard]] int DBlspVecRemove(DBLSPVec *vec, Long id);
/** Grows to `size` slots. */
[[nodiscard]] int DBlspVecResize(DBLSPVec *vec, Long size);

/** New link table of side `size`, all slots free; null on failure. */
[[nodiscard]] DBLinkTab *DBlinkTabNew(Long size);
/** Makes an existing record a link table of side `size`, all slots free. */
[[nodiscard]] int DBlinkTabInit(DBLinkTab *tab, Long size);
/** Releases every link, then the rows. */
int DBlinkTabEnd(DBLinkTab *tab);
/** DBlinkTabEnd, then frees the record made by DBlinkTabNew. */
int DBlinkTabDestroy(DBLinkTab *tab);
/** Stores `lnk` at [src][dst]; the table owns it from then on. */
[[nodiscard]] int DBlinkTabSet(DBLinkTab *tab, DBLink *lnk, Long src, Long dst);
/** Releases the link at [src][dst] and clears its slot. */
[[nodiscard]] int DBlinkTabRemove(DBLinkTab *tab, Long src, Long dst);
/** Grows the side to `size`; when it fails the table stays usable with the old side. */
[[nodiscard]] int DBlinkTabResize(DBLinkTab *tab, Long size);

/** Node at `id`, null when there is none; any id may be asked for. */
inline DBNode *nodeAt(const DBNodeVec &vec, Long id)
{
    return id >= 0 && id < vec.size ? vec.cont[id] : nullptr;
}

/** LSP at `id`, null when there is none; any id may be asked for. */
inline DBLabelSwitchedPath *lspAt(const DBLSPVec &vec, Long id)
{
    return id >= 0 && id < vec.size ? vec.cont[id] : nullptr;
}

/** Link from `src` to `dst`, null when there is none; any ids may be asked for. */
inline DBLink *linkAt(const DBLinkTab &tab, Long src, Long dst)
{
    const bool inside = src >= 0 && src < tab.size && dst >= 0 && dst < tab.size;
    return inside ? tab.cont[src][dst] : nullptr;
}

#endif
