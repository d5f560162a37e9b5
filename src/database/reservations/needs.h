/**
 * The largest needs over all single failures on one link, and what a stored link's summary spares
 * of working them out (unit "database/database").
 */
#ifndef TARNEX_DATABASE_RESERVATIONS_NEEDS_H
#define TARNEX_DATABASE_RESERVATIONS_NEEDS_H

#include "database/books/network.h"
#include "database/reservations/effect.h"
#include "database/reservations/failure_rows.h"

/** The link from `src` to `dst` if `ls` is its stored state, null if it is a private one. */
DBLink *linkStoring(const DataBase &db, Long src, Long dst, const DBLinkState &ls);

/** The summary of a stored link if it can be trusted; null for one that cannot and for no link. */
LinkSummary *trustedSummary(DBLink *link);

/**
 * The largest needs that the tables of a state give in one class type.
 *
 * @param summary of the state, if it can be trusted: the needs are taken from it, or it learns them
 */
void presentLargest(const DataBase &db, const StateTables &tables, LinkSummary *summary, int oa,
                    Needs &largest);

/**
 * Whether the largest needs of present tables stay what they are under an effect: no row moves, or
 * rows are only lowered that are below the largest, or hold no need, at every level.
 */
bool keepsLargest(const DataBase &db, const StateTables &present, const Effect &effect, int oa,
                  const LinkSummary &summary);

/** What becomes of a link. */
enum class LinkEvent : unsigned char { comes, goes };

/**
 * Has the largest needs that are known of a stored link follow link `failing`, which comes or goes
 * and is in the books: they are raised by rows that it changes, or forgotten where one of those may
 * have been the largest.
 *
 * @return false when nothing changes that is needed on the link
 */
bool followFailing(const DataBase &db, DBLink &link, int oa, Long failing, LinkEvent event);

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

#endif
