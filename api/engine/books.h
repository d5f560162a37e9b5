/** Between the records of the core and those of the library. */
#ifndef TARNEX_API_BOOKS_H
#define TARNEX_API_BOOKS_H

#include "common/records.h"
#include "database/books/network.h"

#include <tarnex/records.h>

#include <span>

namespace tarnex::inside
{

using LspRecord = Owned<DBLabelSwitchedPath, DBlspDestroy>;

/** Stored link; null when there is none of that id. */
DBLink *linkOf(const DataBase &db, LinkId id);

/** A path over links that are there. */
Path pathOf(const DataBase &db, std::span<const Long> nodes);
std::vector<Long> idsOf(std::span<const NodeId> nodes);

/** What a backup with path `nodes` keeps alive of a primary with path `primary`. */
Protects protectsOf(const DataBase &db, LspKind kind, LspId id, std::span<const Long> nodes,
                    std::span<const Long> primary);

/** A stored LSP of a class type in full. */
Lsp lspOf(const DataBase &db, const DBLabelSwitchedPath &record, int classType);

/** The record of an LSP; of a backup, `primary` is the path of its primary. std::bad_alloc. */
LspRecord recordOf(const Lsp &lsp, std::span<const Long> primary);

} // namespace tarnex::inside

#endif
