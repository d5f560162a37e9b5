/**
 * Preemption: which LSPs of a link give way to a more important one, and at what penalty (unit
 * "rerouting/rerouting").
 *
 * Both walk the preemption levels from the least important one towards the newcomer's own and never
 * take anything at its level or at a more important one.
 */
#ifndef TARNEX_REROUTING_REROUTING_H
#define TARNEX_REROUTING_REROUTING_H

#include "computation/computation.h"
#include "database/books/tables.h"

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
[[nodiscard]] int chooseReroutedLSPs(int precedence, DBLinkState *state, DBLSPList *lspList,
                                     double *toGain, LongList *idList);

/**
 * Penalty of freeing `gain[oa]` on a link in state `ls`, per unit of the request's bandwidth in
 * class type `oa`: the coefficient of each level (ReroutingConfig) times the bandwidth taken from
 * it.
 *
 * @param gain MAXOA bandwidths, as written by the predicate for this link
 * @return the penalty; positive infinity, after a message, when the levels below the request's do
 *         not hold the gain
 */
double makeRerouteScore(LSPRequest *req, double *gain, DBLinkState *ls, int oa);

#endif
