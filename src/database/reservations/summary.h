/**
 * What is known of a stored link's failure tables without reading them.
 *
 * Invariant: while a summary is trusted, its list for a class type holds, ascending, exactly the
 * needy slots of the link's tables (database/reservations/failure_tables.h), and the largest needs
 * of a class type that is known for the present topology are those that its rows give. The tables
 * of a link that carries only primaries need not be read at all. For that topology, too, what the
 * tables make a settled class type reserve is what the state says, and so exactly that an effect of
 * 0 on it changes nothing; and no sum of what they make a roomy one reserve, from the most
 * important level on, exceeds the capacity.
 *
 * Writers: summarize, for a state that was handed in; followEffect, after an effect was applied;
 * what holds for a topology where reservations are worked out (database/reservations/question.cpp);
 * and expose, once somebody outside holds the stored state. A summary that is not trusted, for that
 * reason or for lack of memory, is not used: the tables are read instead.
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
    ClassTypes known;   ///< class types whose `largest` is known
    ClassTypes settled; ///< those whose `rbw` is what the tables give, with no negative 0 in `pbw`
    ClassTypes roomy;   ///< those in which the link is not overfull up to any level
    LongList needy[MAXOA];        ///< needy slots by class type; without contents until the first
    double largest[MAXOA][MAXPL]; ///< largest need over all failures, at each level
};

/** Forgets what does not hold for the present topology. */
inline void bringToTopology(LinkSummary &summary, Long present)
{
    if (summary.topology != present)
        summary.known = summary.settled = summary.roomy = {};
    summary.topology = present;
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
