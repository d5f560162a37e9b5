#include "database/followers/followers.h"

#include "database/reservations/apply_effect.h"
#include "database/reservations/needs.h"

#include <cstdint>
#include <utility>

namespace
{

/** Numbers of nodes and links no longer hold. */
void dropIndices(DataBase &db)
{
    db.topology = static_cast<Long>(static_cast<std::uint32_t>(db.topology) + 1);
    endIndex(db.index);
    endBackupIndex(db.backups);
}

/** What the indices say of a link no longer holds: for primaries, in the class types named. */
void markLink(DataBase &db, const DBLink &link, ClassTypes changed)
{
    markStale(db.index, link, changed);
    markStale(db.backups, link); // what a state holds may change in every class type
}

/** The class types that an effect changes. */
ClassTypes changedBy(const Effect &effect)
{
    ClassTypes changed{};
    for (int oa = 0; oa < MAXOA; ++oa)
        changed.set(oa, effect.changes(oa));
    return changed;
}

/**
 * Decides, before an effect is applied, in which class types the summary will still know the
 * largest needs.
 *
 * @return those in which rows that the effect raises may exceed them
 */
ClassTypes keepNeeds(const DataBase &db, DBLink &link, const Effect &effect)
{
    LinkSummary &summary = link.summary;
    ClassTypes raised{};
    for (const int oa : changedBy(effect)) {
        if (!summary.isTrusted || !summary.known.has(oa))
            continue;
        const bool isKept = keepsLargest(db, tablesOf(link.state, &summary), effect, oa, summary);
        raised.set(oa, !isKept && shiftOf(effect, oa) == Shift::up);
        summary.known.set(oa, isKept || raised.has(oa));
    }
    return raised;
}

} // namespace

void followNode(DataBase &db) { dropIndices(db); }

void followNewLink(DataBase &db, DBLink &link, bool isWhole)
{
    dropIndices(db);
    summarize(link.summary, link.state);
    if (isWhole)
        listCarriersOf(db.carriers, link);
    else
        endCarriers(db.carriers); // its id may come again
}

void followLeavingLink(DataBase &db, const DBLink &link)
{
    dropIndices(db);
    if (db.nbLinks > 1)
        unlistCarriersOf(db.carriers, link);
    else
        endCarriers(db.carriers);
}

void exchangeState(DataBase &db, DBLink &link, DBLinkState &other)
{
    unlistCarriersOf(db.carriers, link);
    std::swap(link.state, other);
    listCarriersOf(db.carriers, link);
    summarize(link.summary, link.state);
    markLink(db, link, ClassTypes::all());
}

DBLinkState &handOutState(DataBase &db, DBLink &link)
{
    expose(link.summary);
    markLink(db, link, ClassTypes::all());
    return link.state;
}

void applyToStored(DataBase &db, DBLink &link, const Effect &effect)
{
    LinkSummary &summary = link.summary;
    bringToTopology(summary, db.topology);
    const ClassTypes changed = changedBy(effect);
    const ClassTypes raised = keepNeeds(db, link, effect);
    applyEffect(
        effect, link.state, summary.settled, [&](int oa, const SlotChange &change, double value) {
            updateCarrier(db.carriers, link, {oa, effect.level, change.table, change.slot}, value);
        });
    followEffect(summary, link.state, effect);
    summary.settled = summary.settled.without(changed);
    summary.neverOverfull = summary.neverOverfull.without(changed);
    for (const int oa : raised)
        raiseByChanges(db, tablesOf(link.state, &summary), effect, oa, summary.needy[oa],
                       summary.largest[oa]);
    markLink(db, link, changed);
}

void endFollowers(DataBase &db)
{
    endIndex(db.index);
    endBackupIndex(db.backups);
    endCarriers(db.carriers);
}
