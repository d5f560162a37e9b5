/**
 * Failure rows: what the failure of a link or a node needs on a link, from the link's tables with
 * or without an effect laid over them. A node stands for all the links into it.
 *
 * A row is added up level by level, each level on top of those below, and inside a level in the
 * order of the links; whatever visits fewer rows must not change that order.
 */
#ifndef TARNEX_DATABASE_RESERVATIONS_FAILURE_ROWS_H
#define TARNEX_DATABASE_RESERVATIONS_FAILURE_ROWS_H

#include "common/records.h"
#include "database/books/network.h"
#include "database/reservations/effect.h"
#include "database/reservations/failure_tables.h"

#include <algorithm>
#include <array>
#include <span>

/** The failure tables of a state; its summary, if it can be trusted, says which levels they use. */
inline StateTables tablesOf(const DBLinkState &state, const LinkSummary *summary)
{
    return {state.bbw, state.fbw, summary ? summary->levels : nullptr};
}

/** The failure tables of one state with an effect, sorted by slot, laid over them. */
struct OverlaidTables {
    StateTables present;
    const Effect &effect;

    Levels levels(int oa) const { return present.levels(oa) | Levels::only(effect.level); }
    void addTo(NeedSum &sum, int oa, int p, Long k) const
    {
        NeedSum value{present.backup(oa, p, k), present.freed(oa, p, k)};
        if (p == effect.level && effect.slots.mayHave(k)) {
            for (const SlotChange &change : effect.slots.of(k)) {
                const bool isBackup = change.table == FailureTable::backup;
                (isBackup ? value.backup : value.freed) += effect.amount(change, oa);
            }
        }
        sum.backup += value.backup;
        sum.freed += value.freed;
    }
};

/** The largest need over all single failures, per level, each counting the levels up to it. */
using Needs = double[MAXPL];

/**
 * Raises `largest` by the row of one failure, which takes the links `linkOf(item)` down together.
 * The additions run level by level and inside a level in the order of `items`. Levels that hold
 * nothing are left out: the sums stay as they are there.
 */
template <class Tables, class LinkOf>
void raiseByRow(const Tables &tables, int oa, std::span<const Long> items, LinkOf linkOf,
                Needs &largest)
{
    NeedSum sum{};
    int raised = 0;
    const auto raiseBelow = [&](int level) {
        for (; raised < level; ++raised)
            largest[raised] = std::max(largest[raised], sum.backup - sum.freed);
    };
    for (const int p : tables.levels(oa)) {
        raiseBelow(p);
        for (const Long item : items) {
            const Long link = linkOf(item);
            if (link >= 0)
                tables.addTo(sum, oa, p, link);
        }
    }
    raiseBelow(MAXPL);
}

/** The node that link `k` enters; null when there is no such link. */
inline const DBNode *nodeEntered(const DataBase &db, Long k)
{
    const bool exists = k < db.linkSrcVec.top && db.linkSrcVec.cont[k] > 0;
    return exists ? nodeAt(db.nodeVec, slotOf(db.linkDstVec, k) - 1) : nullptr;
}

/** The ids of the links into a node, in the order of its neighbours; -1 among them for vacant
 * numbers. */
inline std::span<const Long> linksInto(const NetworkIndex &index, const DBNode &node)
{
    return {index.ids + index.firstIn[node.number], index.ids + index.firstIn[node.number + 1]};
}

/** Raises `largest` by the failure of a node, as if link `without` did not enter it. */
template <class Tables>
void raiseByNode(const DataBase &db, const Tables &tables, int oa, const DBNode &node, Long without,
                 Needs &largest)
{
    const auto unlessLeftOut = [without](Long id) { return id != without ? id : -1; };
    const auto neighbours = inUse(node.inNeighb);
    if (db.index.isCurrent)
        return raiseByRow(tables, oa, linksInto(db.index, node), unlessLeftOut, largest);

    // Their ids are looked up once rather than level by level, for all but the largest nodes.
    const auto linkFrom = [&](Long from) {
        const DBLink *link = linkAt(db.linkTab, from, node.id);
        return link ? unlessLeftOut(link->id) : -1;
    };
    std::array<Long, 64> links;
    if (neighbours.size() > links.size())
        return raiseByRow(tables, oa, neighbours, linkFrom, largest);
    const auto end = std::ranges::transform(neighbours, links.begin(), linkFrom).out;
    const auto itself = [](Long link) { return link; };
    raiseByRow(tables, oa, {links.begin(), end}, itself, largest);
}

/** Raises `largest` by the failure of link k and by that of the node it enters. */
template <class Tables>
void raiseByFailuresOf(const DataBase &db, const Tables &tables, int oa, Long k, Needs &largest)
{
    const DBNode *node = nodeEntered(db, k);
    if (!node)
        return;
    const auto itself = [](Long link) { return link; };
    raiseByRow(tables, oa, std::array{k}, itself, largest);
    raiseByNode(db, tables, oa, *node, -1, largest);
}

/** Where the needy slots of one state are found: listed for a stored link, else in the tables. */
class NeedySlots
{
public:
    NeedySlots(const DataBase &db, const StateTables &stateTables, const LinkSummary *linkSummary)
        : tables(stateTables), summary(linkSummary), nbIds(db.linkSrcVec.top)
    {
    }

    /** Calls `visit(k)` for each, ascending. */
    template <class Visit>
    void forEach(int oa, Visit visit) const
    {
        if (summary) {
            std::ranges::for_each(inUse(summary->needy[oa]), visit);
            return;
        }
        const Long end = std::min(longestTable(tables, oa), nbIds);
        for (Long k = nextNeedySlot(tables, oa, 0, end); k < end;
             k = nextNeedySlot(tables, oa, k + 1, end))
            visit(k);
    }

private:
    StateTables tables;
    const LinkSummary *summary;
    Long nbIds;
};

/**
 * Raises `largest` by every row that can exceed 0 with the present tables; `tables` gives the
 * values, which may be others. All other rows are 0 as long as the values differ in no other slot.
 */
template <class Tables>
void raiseByNeedySlots(const DataBase &db, const NeedySlots &present, const Tables &tables, int oa,
                       Needs &largest)
{
    present.forEach(oa, [&](Long k) { raiseByFailuresOf(db, tables, oa, k, largest); });
}

/** Adds to each level's primary reservation what the level adds to the largest need. */
inline void spreadOverLevels(const double (&pbw)[MAXPL], const Needs &largest, double (&rbw)[MAXPL])
{
    double below = 0.0;
    for (int p = 0; p < MAXPL; ++p) {
        rbw[p] = pbw[p] + largest[p] - below;
        below = largest[p];
    }
}

/** Which way an effect moves the failure rows of a class type. */
enum class Shift { none, up, down, both };

inline Shift shiftOf(const Effect &effect, int oa)
{
    bool up = false;
    bool down = false;
    for (const SlotChange &change : effect.slots.all()) {
        const bool adds = effect.addsNeed(change, oa);
        up = up || adds;
        down = down || (!adds && effect.amount(change, oa) != 0.0);
    }
    return up && down ? Shift::both : up ? Shift::up : down ? Shift::down : Shift::none;
}

/** Raises `largest` by the rows of the slots that an effect changes and that `mayNeed` names. */
template <class Tables, class MayNeed>
void raiseByChanges(const DataBase &db, const Tables &tables, const Effect &effect, int oa,
                    MayNeed mayNeed, Needs &largest)
{
    Long last = -1;
    for (const SlotChange &change : effect.slots.all()) {
        if (change.slot != last && mayNeed(change.slot))
            raiseByFailuresOf(db, tables, oa, change.slot, largest);
        last = change.slot;
    }
}

/** As above, for every slot that an effect changes. */
template <class Tables>
void raiseByChanges(const DataBase &db, const Tables &tables, const Effect &effect, int oa,
                    Needs &largest)
{
    raiseByChanges(
        db, tables, effect, oa, [](Long) { return true; }, largest);
}

/** As above, with tables that a summary follows: a node without needy in-links needs nothing. */
inline void raiseByChanges(const DataBase &db, const StateTables &tables, const Effect &effect,
                           int oa, const LongList &needySlots, Needs &largest)
{
    const auto isNeedy = [&](Long slot) {
        return std::ranges::binary_search(inUse(needySlots), slot);
    };
    const auto entersNeedyNode = [&](Long slot) {
        const DBNode *node = db.index.isCurrent && !isNeedy(slot) ? nodeEntered(db, slot) : nullptr;
        return !node || std::ranges::any_of(linksInto(db.index, *node), isNeedy);
    };
    raiseByChanges(db, tables, effect, oa, entersNeedyNode, largest);
}

/** Whether rows can be lowered without lowering the largest: at every level each is below, or holds
 * no need. */
inline bool areBelow(const Needs &rows, const Needs &largest)
{
    return std::ranges::equal(rows, largest,
                              [](double row, double most) { return row == 0.0 || row < most; });
}

#endif
