/**
 * Preemption: which LSPs of a link give way to a more important one (chooseReroutedLSPs, see
 * database/admission_questions.h), and at what penalty (unit "rerouting/rerouting").
 *
 * Both walk the preemption levels from the least important one towards the newcomer's own and never
 * take anything at its level or at a more important one.
 */
#ifndef TARNEX_REROUTING_REROUTING_H
#define TARNEX_REROUTING_REROUTING_H

#include "computation/computation.h"
#include "database/admission_questions.h"

/**
 * Penalty of freeing `gain[oa]` on a link in state `ls`, per unit of the request's bandwidth in
 * class type `oa`: the coefficient of each level (ReroutingConfig) times the bandwidth taken from
 * it.
 *
 * @param gain MAXOA bandwidths, as written by the predicate for this link
 * @return the penalty; positive infinity, after a message, when the levels below the request's do
 *         not hold the gain
 */
double makeRerouteScore(const LSPRequest *req, const double *gain, const DBLinkState *ls, int oa);

#endif
