#include "database/summary.h"

#include "common/records.h"
#include "common/vector.h"
#include "database/effect.h"
#include "database/failure_tables.h"

#include <algorithm>

namespace
{

/** Puts a slot into a sorted list or takes it out; false without memory. */
bool setListed(LongList &list, Long slot, bool isListed)
{
    const auto used = inUse(list);
    const auto at = std::ranges::lower_bound(used, slot);
    const bool wasListed = at != used.end() && *at == slot;
    if (wasListed == isListed)
        return true;
    const auto position = at - used.begin();
    if (!isListed) {
        std::copy(at + 1, used.end(), at);
        list.top -= 1;
        return true;
    }
    if (!(list.cont ? vec::makeRoom(list) : vec::make(list, 4)))
        return false;
    Long *place = list.cont + position;
    std::copy_backward(place, list.cont + list.top, list.cont + list.top + 1);
    *place = slot;
    list.top += 1;
    return true;
}

} // namespace

void summarize(LinkSummary &summary, const DBLinkState &state)
{
    const StateTables tables = tablesOf(state);
    summary.isTrusted = !summary.isExposed;
    summary.known = 0;
    for (int oa = 0; oa < MAXOA && summary.isTrusted; ++oa) {
        summary.needy[oa].top = 0;
        const Long end = longestTable(tables, oa);
        for (Long k = nextNeedySlot(tables, oa, 0, end); k < end && summary.isTrusted;
             k = nextNeedySlot(tables, oa, k + 1, end))
            summary.isTrusted = setListed(summary.needy[oa], k, true);
    }
}

bool makeRoomFor(LinkSummary &summary, const Effect &effect)
{
    for (int oa = 0; oa < MAXOA; ++oa) {
        Long added = 0;
        for (const SlotChange &change : effect.slots.all())
            added += effect.addsNeed(change, oa) ? 1 : 0;
        LongList &list = summary.needy[oa];
        if (added > 0 && !(list.cont ? vec::makeRoom(list, added) : vec::make(list, added)))
            return false;
    }
    return true;
}

void noteChanges(LinkSummary &summary, const DBLinkState &state, const Effect &effect)
{
    const StateTables tables = tablesOf(state);
    for (int oa = 0; oa < MAXOA; ++oa) {
        if (!effect.changes(oa))
            continue;
        for (const SlotChange &change : effect.slots.all()) {
            if (!summary.isTrusted)
                return;
            const bool isListed = isNeedy(tables, oa, change.slot);
            summary.isTrusted = setListed(summary.needy[oa], change.slot, isListed);
        }
    }
}

void expose(LinkSummary &summary)
{
    summary.isExposed = true;
    summary.isTrusted = false;
}

void endSummary(LinkSummary &summary)
{
    for (LongList &list : summary.needy) {
        if (list.cont)
            longVecEnd(&list);
    }
    summary.isTrusted = false;
}
