/**
 * What is known of a stored link's failure tables without reading them.
 *
 * The tables have a slot for each failing link, nearly all of them 0, and every question about the
 * link comes down to the largest need over all failures. A summary remembers, per class type:
 *
 * - `needy`: the slots whose failure can need anything. A link that carries only primaries has
 *   none, and its tables are not read at all.
 * - `largest`, where `known`: the largest needs, so that an LSP is only compared with them.
 * - `settled`: an LSP without bandwidth in the class type leaves every value of it as it is, to the
 *   bit. Two values could change otherwise: an `rbw` that was handed in with the link gives way to
 *   the one that the tables give, and a -0.0 in `pbw` becomes 0.0 when 0.0 is added. So a class
 *   type is settled once its `rbw` has been worked out and its `pbw` holds no -0.0.
 * - `neverOverfull`: the reservations do not exceed the capacity, whatever levels are counted.
 *
 * - `levels`: all slots of the others are 0, and rows are added up without them.
 *
 * The lists hold, ascending, exactly the needy slots (reservations/failure_tables.h), for as long
 * as the summary is trusted. `largest`, `settled` and `neverOverfull` also depend on which links
 * enter which node, so they hold for one topology and are forgotten on the first use after it has
 * changed.
 *
 * Nobody can follow a state that is written from outside: once one has been handed out, or a list
 * has found no memory, the summary is not trusted and the tables are read instead.
 *
 * Writers: what follows the books (database/followers/followers.h); and the questions, which leave
 * here what they have worked out (reservations/needs.h, reservations/question.h) or, after an
 * update, made true (database/update/update.h).
 */
#ifndef TARNEX_DATABASE_RESERVATIONS_SUMMARY_H
#define TARNEX_DATABASE_RESERVATIONS_SUMMARY_H

#include "common/class_types.h"
#include "database/books/link_state.h"

struct Effect;

/** Summary of one stored link; zeroed, it is not trusted and owns nothing. */
struct LinkSummary {
    bool isTrusted;     ///< whether the lists are exact
    bool isExposed;     ///< whether the state may be written from outside: never trusted again
    Long topology;      ///< count of topology changes that the next three hold for
    ClassTypes known;   ///< where `largest` holds
    ClassTypes settled; ///< where an effect of 0 changes nothing
    ClassTypes neverOverfull;     ///< where the link is not overfull up to any level
    Levels levels[MAXOA];         ///< those that have, or had, a slot that is not 0
    LongList needy[MAXOA];        ///< needy slots by class type; without contents until the first
    double largest[MAXOA][MAXPL]; ///< largest need over all failures, at each level
};

/** Forgets what does not hold for the present topology. */
inline void bringToTopology(LinkSummary &summary, Long present)
{
    if (summary.topology != present)
        summary.known = summary.settled = summary.neverOverfull = {};
    summary.topology = present;
}

/** Whether what the link is known to need in a class type may change with the topology. Of a state
 * that may be written from outside nothing is known for longer than a search. */
inline bool mayNeed(const LinkSummary &summary, int oa)
{
    return summary.isTrusted ? summary.needy[oa].top > 0 : !summary.isExposed;
}

/** Forgets what is known of some class types and not of the tables alone. */
inline void forget(LinkSummary &summary, ClassTypes classes)
{
    summary.known = summary.known.without(classes);
    summary.settled = summary.settled.without(classes);
    summary.neverOverfull = summary.neverOverfull.without(classes);
}

/** Makes the summary of a state that was handed in. */
void summarize(LinkSummary &summary, const DBLinkState &state);

/** Makes room for what an effect may add to the lists; false without memory. */
[[nodiscard]] bool makeRoomFor(LinkSummary &summary, const Effect &effect);

/** Follows an effect that has been applied to the state. */
void followEffect(LinkSummary &summary, const DBLinkState &state, const Effect &effect);

/** Stops trusting the summary for good: the state may change without notice. */
void expose(LinkSummary &summary);

/** Releases the lists. */
void endSummary(LinkSummary &summary);

#endif
