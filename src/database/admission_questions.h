/**
 * What admission asks of the layers above the database: may this link carry the LSP, and which LSPs
 * give way. The admission predicate (predicate/) and the preemption choice (rerouting/) answer.
 */
#ifndef TARNEX_DATABASE_ADMISSION_QUESTIONS_H
#define TARNEX_DATABASE_ADMISSION_QUESTIONS_H

#include "database/database.h"
#include "database/effect.h"

/**
 * Tells whether the link from `src` to `dst` in state `ls` can carry `lsp`, possibly by preempting.
 *
 * @param gain MAXOA bandwidths that preemption must free, per class type; written by the capacity
 *             test as far as it gets, so zeroed in advance by the caller
 * @return true when admitted; false when refused or, after a message, when the question failed
 */
bool isValidLSPLink(DataBase *dataBase, Long src, Long dst, const DBLinkState *ls,
                    const DBLabelSwitchedPath *lsp, double *gain);

/** As isValidLSPLink for a stored link, with the LSP's effect on it already worked out. */
bool isValidWithEffect(const DataBase &db, DBLink &link, const Effect &effect,
                       const DBLabelSwitchedPath &lsp, double *gain);

/**
 * Chooses the LSPs of a link to preempt: whole levels from the least important one, in the level
 * that finishes the need the largest LSPs that fit and then the smallest that covers the rest.
 * Nothing at or above the importance of `precedence` is taken.
 *
 * @param state the link's present state, without the newcomer
 * @param lspList the link's LSPs, in their order
 * @param toGain MAXOA bandwidths to free; at most 1e-10 counts as met
 * @param idList ids of the chosen LSPs are appended; those appended before a failure stay
 * @return 0, or -1 when there is not enough to preempt
 */
[[nodiscard]] int chooseReroutedLSPs(int precedence, const DBLinkState *state,
                                     const DBLSPList *lspList, const double *toGain,
                                     LongList *idList);

#endif
