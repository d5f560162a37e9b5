#include "database/followers/followers.h"

#include "database/indices/link_numbers.h"
#include "database/reservations/apply_effect.h"
#include "database/reservations/needs.h"

#include <algorithm>
#include <cstdint>
#include <span>
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

/** Whether needs are known in a class type that depend on which links there are. */
bool areNeedsKnown(const DataBase &db, int oa)
{
    const NetworkIndex &index = db.index;
    const std::span stale{index.stale, static_cast<std::size_t>(index.nbStale)};
    return index.needy.has(oa) || std::ranges::any_of(stale, [&](Long number) {
               return index.links[number] && mayNeed(index.links[number]->summary, oa);
           });
}

/** Has the other links follow a link that is in the books; false, with some of it done, when those
 * are not known that it matters to. */
bool followOnOthers(DataBase &db, Long id, LinkEvent event)
{
    if (!db.index.isCurrent || id >= maxListedIds)
        return false;
    ClassTypes concerned{};
    for (int oa = 0; oa < MAXOA; ++oa)
        concerned.set(oa, areNeedsKnown(db, oa));
    if (concerned.isEmpty() || db.carriers.areMarksLost)
        return concerned.isEmpty();
    for (Long from = 0; DBLink *link = nextMarked(db, id, from);) {
        ClassTypes changed{};
        for (const int oa : concerned)
            changed.set(oa, followFailing(db, *link, oa, id, event));
        if (!changed.isEmpty())
            markLink(db, *link, changed);
    }
    return true;
}

} // namespace

void followNode(DataBase &db) { dropIndices(db); }

void followNewLink(DataBase &db, DBLink &link, Long src, Long dst, bool isWhole)
{
    summarize(link.summary, link.state);
    const bool mayFollow = isWhole && db.index.isCurrent;
    const bool isNumbered = mayFollow && numberLink(db, link, src, dst);
    if (!isNumbered || !followOnOthers(db, link.id, LinkEvent::comes))
        dropIndices(db);
    if (mayFollow && !isNumbered)
        db.index.spare = 1; // there is a next one, perhaps
    if (isWhole)
        listCarriersOf(db.carriers, link);
    else
        loseCarriers(db.carriers); // its id may come again
}

void followLeavingLink(DataBase &db, const DBLink &link)
{
    if (!followOnOthers(db, link.id, LinkEvent::goes) || !unnumberLink(db, link))
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
    summarize(link.summary, link.state); // says at which levels there are slots
    listCarriersOf(db.carriers, link);
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
