/** When a score counts as better than another (unit "computation/primary/primaryPath"). */
#ifndef TARNEX_COMPUTATION_PRIMARY_IMPROVEMENT_H
#define TARNEX_COMPUTATION_PRIMARY_IMPROVEMENT_H

/** A candidate must be lower than the committed cost by more than this. */
inline constexpr double improvementMargin = 1e-10;

/** Whether a candidate's score takes the place of a committed one; false when either is no number.
 */
inline bool improves(double score, double committed)
{
    return score - committed < -improvementMargin;
}

#endif
