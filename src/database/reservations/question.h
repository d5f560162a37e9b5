/**
 * What a link reserves, and how that changes when an LSP is set up or removed (unit
 * "database/database").
 *
 * The total reservation `rbw` of a link follows from its tables: at the levels 0 to p together it
 * is the primary reservation plus the largest need over all single failures, so backups that
 * protect against different failures share bandwidth. A failure is that of one link, or of one
 * node, which stands for all the links into it. Only a failure with a backup need above 0, or freed
 * bandwidth below 0, in one of its slots can need anything: these alone are visited.
 *
 * Three ways to ask: updateLS changes a state in place, evalLS makes a changed copy, and
 * reservationAfterSetup answers with `rbw` alone, without copying or allocating.
 */
#ifndef TARNEX_DATABASE_RESERVATIONS_QUESTION_H
#define TARNEX_DATABASE_RESERVATIONS_QUESTION_H

#include "computation/computation.h"
#include "database/books/network.h"
#include "database/reservations/effect.h"

/**
 * Writes `rbw` from the other three tables of one state, using the links and nodes of `dataBase`.
 *
 * @return 0, or -1 for a null argument; `rbw` is then unchanged
 */
[[nodiscard]] int computeRBW(const DataBase *dataBase, double rbw[MAXOA][MAXPL],
                             const double pbw[MAXOA][MAXPL], const DoubleVec bbw[MAXOA][MAXPL],
                             const DoubleVec fbw[MAXOA][MAXPL]);

/**
 * What single failures need on a stored link in one class type: at each level, counting the levels
 * up to it, and at least 0.
 */
struct LinkNeeds {
    double ofOwn[MAXPL];    ///< the largest over the failures of the link itself and of the node it
                            ///< enters, which a primary on the link lowers
    double ofOthers[MAXPL]; ///< the largest over all failures that it does not lower
    double magnitude;       ///< sum of the sizes of what any of `ofOwn` was added up from
};

/** The needs on a stored link; no numbers when its summary cannot be trusted or nothing can be set
 * up on it. */
LinkNeeds failureNeedsOf(const DataBase &db, DBLink &link, int oa);

/** Writes what the tables of a stored link make it reserve; its `rbw` may have been handed in. */
void reservationFromTables(const DataBase &db, DBLink &link, double (&rbw)[MAXOA][MAXPL]);

/**
 * Grows the tables of a state for every change of an effect; without memory some have grown.
 *
 * @return 0, or -1 after a message
 */
[[nodiscard]] int makeRoomFor(const Effect &effect, DBLinkState &ls);

/**
 * Applies `lsp` with `op` to `ls`, the state of the link from `src` to `dst`, and recomputes `rbw`.
 *
 * @return 0, also when the link does not concern the LSP (nothing changes then); -1 on failure:
 * after a link id that cannot be determined the changes before it stay and `rbw` is not recomputed
 */
[[nodiscard]] int updateLS(DataBase *dataBase, Long src, Long dst, DBLinkState *ls,
                           const DBLabelSwitchedPath *lsp, operation op);

/** Applies an effect that concerns a stored link, whose tables have the room for it. */
void updateLink(DataBase &db, DBLink &link, const Effect &effect);

/**
 * Makes `newLS` the state that the link from `src` to `dst`, now in state `oldLS`, would have after
 * `op` of the LSP that `req` describes. `newLS` is an initialised state and may be `oldLS` itself.
 */
[[nodiscard]] int evalLS(DataBase *dataBase, Long src, Long dst, DBLinkState *newLS,
                         DBLinkState *oldLS, LSPRequest *req, operation op);

/** updateLS with SETUP. */
[[nodiscard]] int DBupdateLSOnSetup(DataBase *dataBase, Long src, Long dst, DBLinkState *ls,
                                    const DBLabelSwitchedPath *lsp);
/** updateLS with REMOVE. */
[[nodiscard]] int DBupdateLSOnRemove(DataBase *dataBase, Long src, Long dst, DBLinkState *ls,
                                     const DBLabelSwitchedPath *lsp);
/** evalLS with SETUP. */
[[nodiscard]] int DBevalLSOnSetup(DataBase *dataBase, Long src, Long dst, DBLinkState *newLS,
                                  DBLinkState *oldLS, LSPRequest *req);
/** evalLS with REMOVE. */
[[nodiscard]] int DBevalLSOnRemove(DataBase *dataBase, Long src, Long dst, DBLinkState *newLS,
                                   DBLinkState *oldLS, LSPRequest *req);

/** What an evaluation reads of a request or of an LSP record that asks for admission. */
struct Candidate {
    LSPView lsp; ///< `primPath` is filled in from the stored primary
    Long primID; ///< for a backup: id of that primary
};

/**
 * Answers what the link from `src` to `dst` in state `ls` would reserve after `candidate` was set
 * up on it: bit for bit what evalLS would leave in `rbw`, with the same messages.
 *
 * @param rbw the answer, written when the result is 0
 * @return 0, or -1 when the candidate cannot be evaluated
 */
[[nodiscard]] int reservationAfterSetup(const DataBase *dataBase, Long src, Long dst,
                                        const DBLinkState *ls, Candidate candidate,
                                        double rbw[MAXOA][MAXPL]);

/**
 * As reservationAfterSetup for a stored link, with the effect on it already worked out and sorted.
 *
 * @param roomy class types left out of `rbw`: up to no level do they exceed the link's capacity;
 *        null when all are wanted
 */
[[nodiscard]] int reservationWithEffect(const DataBase &db, DBLink &link, const Effect &effect,
                                        double (&rbw)[MAXOA][MAXPL], ClassTypes *roomy);

#endif
