/**
 * Setting an LSP up on a link state, or removing it from one (unit "database/database").
 *
 * updateLS changes a state in place, evalLS makes a changed copy. Of a stored state everything that
 * is derived from it follows (database/followers/followers.h). An update of a stored link costs as
 * much as asking about it (database/reservations/question.h); of a private state it reads all its
 * tables.
 */
#ifndef TARNEX_DATABASE_UPDATE_UPDATE_H
#define TARNEX_DATABASE_UPDATE_UPDATE_H

#include "computation/computation.h"
#include "database/books/network.h"
#include "database/reservations/effect.h"

/**
 * Grows the tables of a state for every change of an effect; without memory some have grown.
 *
 * @return 0, or -1 after a message
 */
[[nodiscard]] int makeRoomFor(const Effect &effect, DBLinkState &ls);

/** Applies an effect that concerns a stored link, whose tables have the room for it. */
void updateLink(DataBase &db, DBLink &link, const Effect &effect);

/**
 * Applies `lsp` with `op` to `ls`, the state of the link from `src` to `dst`, and recomputes `rbw`.
 *
 * @return 0, also when the link does not concern the LSP (nothing changes then); -1 on failure:
 * after a link id that cannot be determined the changes before it stay and `rbw` is not recomputed
 */
[[nodiscard]] int updateLS(DataBase *dataBase, Long src, Long dst, DBLinkState *ls,
                           DBLabelSwitchedPath *lsp, operation op);

/**
 * Makes `newLS` the state that the link from `src` to `dst`, now in state `oldLS`, would have after
 * `op` of the LSP that `req` describes. `newLS` is an initialised state and may be `oldLS` itself.
 */
[[nodiscard]] int evalLS(DataBase *dataBase, Long src, Long dst, DBLinkState *newLS,
                         DBLinkState *oldLS, LSPRequest *req, operation op);

/** updateLS with SETUP. */
[[nodiscard]] int DBupdateLSOnSetup(DataBase *dataBase, Long src, Long dst, DBLinkState *ls,
                                    DBLabelSwitchedPath *lsp);
/** updateLS with REMOVE. */
[[nodiscard]] int DBupdateLSOnRemove(DataBase *dataBase, Long src, Long dst, DBLinkState *ls,
                                     DBLabelSwitchedPath *lsp);
/** evalLS with SETUP. */
[[nodiscard]] int DBevalLSOnSetup(DataBase *dataBase, Long src, Long dst, DBLinkState *newLS,
                                  DBLinkState *oldLS, LSPRequest *req);
/** evalLS with REMOVE. */
[[nodiscard]] int DBevalLSOnRemove(DataBase *dataBase, Long src, Long dst, DBLinkState *newLS,
                                   DBLinkState *oldLS, LSPRequest *req);

#endif
