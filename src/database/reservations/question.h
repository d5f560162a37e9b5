/**
 * What a link reserves, and what it would reserve with one more LSP (unit "database/database").
 *
 * The total reservation `rbw` of a link follows from its tables: at the levels 0 to p together it
 * is the primary reservation plus the largest need over all single failures, so backups that
 * protect against different failures share bandwidth. A failure is that of one link, or of one
 * node, which stands for all the links into it. Only a failure with a backup need above 0, or freed
 * bandwidth below 0, in one of its slots can need anything: these alone are visited.
 *
 * Questions change no state and allocate nothing for an LSP of up to 64 hops, but to report a
 * failure; of a stored link whose needs the summary knows they read the slots that the LSP changes,
 * of any other state the tables. What a question works out on the way the link's summary remembers.
 */
#ifndef TARNEX_DATABASE_RESERVATIONS_QUESTION_H
#define TARNEX_DATABASE_RESERVATIONS_QUESTION_H

#include "common/class_types.h"
#include "database/books/network.h"
#include "database/reservations/effect.h"

/**
 * Writes `rbw` from the other three tables of one state, using the links and nodes of `dataBase`.
 *
 * @return 0, or -1 for a null argument; `rbw` is then unchanged
 */
[[nodiscard]] int computeRBW(DataBase *dataBase, double rbw[MAXOA][MAXPL], double pbw[MAXOA][MAXPL],
                             DoubleVec bbw[MAXOA][MAXPL], DoubleVec fbw[MAXOA][MAXPL]);

/**
 * Writes what the tables of a state make it reserve in one class type.
 *
 * @param summary of the state, if it can be trusted; it learns whether the capacity suffices
 */
void reservePresent(const DataBase &db, const DBLinkState &ls, LinkSummary *summary, int oa,
                    double (&rbw)[MAXPL]);

/** What an evaluation reads of a request or of an LSP record that asks for admission. */
struct Candidate {
    LSPView lsp; ///< `primPath` is filled in from the stored primary
    Long primID; ///< for a backup: id of that primary
};

/**
 * Finds the stored primary that an LSP of kind `type` protects, null for a primary.
 *
 * @return 0, or -1 after a message: the kind is unknown or there is no such primary
 */
[[nodiscard]] int findPrimary(const DataBase &db, DBLSPType type, Long primID,
                              DBLabelSwitchedPath *&primary);

/**
 * Answers what the link from `src` to `dst` in state `ls` would reserve after `candidate` was set
 * up on it: bit for bit what evalLS (database/update/update.h) would leave in `rbw`, with the same
 * messages.
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
 * @param neverOverfull class types left out of `rbw`: up to no level do they exceed the link's
 * capacity; null when all are wanted
 */
[[nodiscard]] int reservationWithEffect(const DataBase &db, DBLink &link, const Effect &effect,
                                        double (&rbw)[MAXOA][MAXPL], ClassTypes *neverOverfull);

#endif
