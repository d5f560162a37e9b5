/**
 * The reservation state of one link (unit "database/database").
 *
 * Bandwidths are in the caller's unit. Two-dimensional arrays are indexed `[oa][p]`, class type
 * first. The vectors are tables indexed by link id: a slot beyond the capacity counts as 0, and a
 * vector grows when such a slot must change; their `top` is not used.
 *
 * For the failure of link k, slot k of `bbw` is the backup bandwidth that this link must then carry
 * and slot k of `fbw` the primary bandwidth that leaves it; the failure of a node is that of all
 * the links into it at once. `rbw` follows from `pbw`, `bbw` and `fbw` (computeRBW).
 *
 * A state owns its vectors. Making one costs 4 x MAXOA x MAXPL allocations: keep one for a whole
 * computation rather than making one per link.
 */
#ifndef TARNEX_DATABASE_BOOKS_LINK_STATE_H
#define TARNEX_DATABASE_BOOKS_LINK_STATE_H

#include "common/common.h"

#include <cstddef>
#include <numeric>

/** Capacity and reservations of one link. */
struct DBLinkState_ {
    Long color;                        ///< tested against a request's forbidden colours
    double cap[MAXOA];                 ///< capacity per class type
    double rbw[MAXOA][MAXPL];          ///< reserved by primary and backup LSPs together
    double pbw[MAXOA][MAXPL];          ///< reserved by primary LSPs
    DoubleVec bbw[MAXOA][MAXPL];       ///< backup bandwidth activated, by failed link
    DoubleVec remoteBbw[MAXOA][MAXPL]; ///< same shape as bbw; no operation reads it
    DoubleVec fbw[MAXOA][MAXPL];       ///< primary bandwidth freed, by failed link
    DoubleVec remoteFbw[MAXOA][MAXPL]; ///< same shape as fbw; no operation reads it
};
using DBLinkState = DBLinkState_;

/** Bandwidths of all levels, or of all class types, added up in their order. */
template <std::size_t count>
double sumOf(const double (&bandwidths)[count])
{
    return std::accumulate(bandwidths, bandwidths + count, 0.0);
}

/** New state: all zero, every vector of capacity 1; null on failure. */
[[nodiscard]] DBLinkState *DBlinkStateNew();
/** Zeroes a record and makes its vectors; nothing stays allocated on failure. */
[[nodiscard]] int DBlinkStateInit(DBLinkState *ls);
/**
 * Makes the initialised `dst` a copy of `src`. Vectors grow where needed; slots of `dst` beyond the
 * capacity of `src` keep their values. A failed copy may leave `dst` partly copied.
 */
[[nodiscard]] int DBlinkStateCopy(DBLinkState *dst, DBLinkState *src);
/** Releases all vectors. */
int DBlinkStateEnd(DBLinkState *ls);
/** Releases all vectors and the record made by DBlinkStateNew. */
int DBlinkStateDestroy(DBLinkState *ls);

#endif
