#include "database/reservations/summary.h"

#include "common/records.h"
#include "common/vector.h"
#include "database/reservations/effect.h"
#include "database/reservations/failure_tables.h"

#include <algorithm>

namespace
{

/** Where a slot stands in a sorted list, or would stand. */
Long rankOf(const LongList &list, Long slot)
{
    const auto used = inUse(list);
    return static_cast<Long>(std::ranges::lower_bound(used, slot) - used.begin());
}

bool isListedAt(const LongList &list, Long rank, Long slot)
{
    return rank < list.top && list.cont[rank] == slot;
}

/** Puts a slot into a sorted list if it is not there; false without memory. */
bool enlist(LongList &list, Long slot)
{
    const Long rank = rankOf(list, slot);
    if (isListedAt(list, rank, slot))
        return true;
    if (!(list.cont ? vec::makeRoom(list) : vec::make(list, 4)))
        return false;
    Long *gap = list.cont + rank;
    std::copy_backward(gap, list.cont + list.top, list.cont + list.top + 1);
    *gap = slot;
    list.top += 1;
    return true;
}

/** Takes a slot that is no longer needy out of its list. */
void strikeUnlessNeedy(LongList &list, const StateTables &tables, int oa, Long slot)
{
    const Long rank = rankOf(list, slot);
    if (!isListedAt(list, rank, slot) || isNeedy(tables, oa, slot))
        return;
    std::copy(list.cont + rank + 1, list.cont + list.top, list.cont + rank);
    list.top -= 1;
}

/** Whether a changed value alone makes its slot needy. */
bool isNeed(const StateTables &tables, const SlotChange &change, int oa, int p)
{
    return change.table == FailureTable::backup ? tables.backup(oa, p, change.slot) > 0.0
                                                : tables.freed(oa, p, change.slot) < 0.0;
}

/**
 * Follows the changes of one class type; false without memory. One that adds need can list its
 * slot through its own value alone, any other can only strike a slot that is listed.
 */
bool followChangesOf(LongList &needy, const StateTables &tables, const Effect &effect, int oa)
{
    for (const SlotChange &change : effect.slots.all()) {
        if (!effect.addsNeed(change, oa))
            strikeUnlessNeedy(needy, tables, oa, change.slot);
        else if (isNeed(tables, change, oa, effect.level) && !enlist(needy, change.slot))
            return false;
    }
    return true;
}

/** The levels at which a table holds anything. */
Levels levelsUsed(const StateTables &tables, int oa)
{
    const auto isUsed = [](const DoubleVec &table) {
        return nextUsedSlot(table, 0, table.size) < table.size;
    };
    Levels used{};
    for (int p = 0; p < MAXPL; ++p)
        used.set(p, isUsed(tables.bbw[oa][p]) || isUsed(tables.fbw[oa][p]));
    return used;
}

/** Stops using what the summary says. */
void distrust(LinkSummary &summary)
{
    summary.isTrusted = false;
    summary.known = summary.settled = summary.neverOverfull = {};
}

} // namespace

void summarize(LinkSummary &summary, const DBLinkState &state)
{
    const StateTables tables = tablesOf(state);
    summary.isTrusted = !summary.isExposed;
    summary.known = summary.settled = summary.neverOverfull = {};
    for (int oa = 0; oa < MAXOA && summary.isTrusted; ++oa) {
        summary.needy[oa].top = 0;
        summary.levels[oa] = levelsUsed(tables, oa);
        const Long end = longestTable(tables, oa);
        for (Long k = nextNeedySlot(tables, oa, 0, end); k < end && summary.isTrusted;
             k = nextNeedySlot(tables, oa, k + 1, end))
            summary.isTrusted = enlist(summary.needy[oa], k);
    }
}

bool makeRoomFor(LinkSummary &summary, const Effect &effect)
{
    for (int oa = 0; oa < MAXOA; ++oa) {
        if (!effect.changes(oa))
            continue;
        Long added = 0;
        for (const SlotChange &change : effect.slots.all())
            added += effect.addsNeed(change, oa) ? 1 : 0;
        LongList &list = summary.needy[oa];
        if (added > 0 && !(list.cont ? vec::makeRoom(list, added) : vec::make(list, added)))
            return false;
    }
    return true;
}

void followEffect(LinkSummary &summary, const DBLinkState &state, const Effect &effect)
{
    for (int oa = 0; oa < MAXOA && summary.isTrusted; ++oa) {
        if (effect.changes(oa))
            summary.levels[oa].set(effect.level, true);
        if (effect.changes(oa) && !followChangesOf(summary.needy[oa], tablesOf(state), effect, oa))
            distrust(summary);
    }
}

void expose(LinkSummary &summary)
{
    summary.isExposed = true;
    distrust(summary);
}

void endSummary(LinkSummary &summary)
{
    for (LongList &list : summary.needy) {
        if (list.cont)
            longVecEnd(&list);
    }
    distrust(summary);
}
