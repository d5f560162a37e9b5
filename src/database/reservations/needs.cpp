#include "database/reservations/needs.h"

#include "common/records.h"

#include <algorithm>
#include <cassert>
#include <cmath>
#include <limits>

namespace
{

/** Sizes of what the tables of a state hold, so that rows add them up. */
struct SizeTables {
    StateTables present;

    Levels levels(int oa) const { return present.levels(oa); }
    void addTo(NeedSum &sum, int oa, int p, Long k) const
    {
        sum.backup += std::abs(present.backup(oa, p, k));
        sum.freed -= std::abs(present.freed(oa, p, k));
    }
};

/** Raises `largest` by every row that can exceed 0 and has no part in the failure of link `own`. */
void raiseByFailuresOfOthers(const DataBase &db, const StateTables &tables,
                             const LinkSummary &summary, Long own, int oa, Needs &largest)
{
    const DBNode *entered = nodeEntered(db, own);
    const auto itself = [](Long link) { return link; };
    for (const Long k : inUse(summary.needy[oa])) {
        if (nodeEntered(db, k) != entered)
            raiseByFailuresOf(db, tables, oa, k, largest);
        else if (k != own)
            raiseByRow(tables, oa, std::array{k}, itself, largest);
    }
}

/** Whether these are the largest needs that the tables themselves give; for debug builds. */
[[maybe_unused]] bool areLargest(const DataBase &db, const StateTables &tables, int oa,
                                 const Needs &largest)
{
    Needs derived{};
    const StateTables all{tables.bbw, tables.fbw};
    raiseByNeedySlots(db, NeedySlots{db, all, nullptr}, all, oa, derived);
    return std::ranges::equal(derived, largest);
}

} // namespace

DBLink *linkStoring(const DataBase &db, Long src, Long dst, const DBLinkState &ls)
{
    DBLink *link = linkAt(db.linkTab, src, dst);
    return link && &link->state == &ls ? link : nullptr;
}

LinkSummary *trustedSummary(DBLink *link)
{
    return link && link->summary.isTrusted ? &link->summary : nullptr;
}

void presentLargest(const DataBase &db, const StateTables &tables, LinkSummary *summary, int oa,
                    Needs &largest)
{
    if (summary)
        bringToTopology(*summary, db.topology);
    if (summary && summary->known.has(oa)) {
        std::ranges::copy(summary->largest[oa], largest);
        assert(areLargest(db, tables, oa, largest));
        return;
    }
    std::ranges::fill(largest, 0.0);
    raiseByNeedySlots(db, NeedySlots{db, tables, summary}, tables, oa, largest);
    assert(!summary || areLargest(db, tables, oa, largest));
    if (!summary)
        return;
    summary->known.set(oa, true);
    std::ranges::copy(largest, summary->largest[oa]);
}

bool keepsLargest(const DataBase &db, const StateTables &present, const Effect &effect, int oa,
                  const LinkSummary &summary)
{
    const Shift shift = shiftOf(effect, oa);
    if (shift != Shift::down || summary.needy[oa].top == 0)
        return shift == Shift::none || shift == Shift::down;
    Needs lowered{};
    raiseByChanges(db, present, effect, oa, summary.needy[oa], lowered);
    return areBelow(lowered, summary.largest[oa]);
}

bool followFailing(const DataBase &db, DBLink &link, int oa, Long failing, LinkEvent event)
{
    LinkSummary &summary = link.summary;
    const DBNode *node = nodeEntered(db, failing);
    if (!summary.isTrusted || !node)
        return true;
    if (summary.needy[oa].top == 0)
        return false;
    const StateTables tables = tablesOf(link.state);
    Needs with{};
    Needs without{};
    raiseByFailuresOf(db, tables, oa, failing, with);
    raiseByNode(db, tables, oa, *node, failing, without);
    const Needs &before = event == LinkEvent::comes ? without : with;
    const Needs &after = event == LinkEvent::comes ? with : without;
    const bool isItsOwnNode = nodeEntered(db, link.id) == node;
    if (!isItsOwnNode && std::ranges::equal(before, after))
        return false;
    bringToTopology(summary, db.topology);
    Needs &largest = summary.largest[oa];
    const bool isKept = summary.known.has(oa) && areBelow(before, largest);
    if (isKept && areBelow(after, largest))
        return true;
    forget(summary, ClassTypes::only(oa));
    for (int p = 0; p < MAXPL; ++p)
        largest[p] = std::max(largest[p], after[p]);
    summary.known.set(oa, isKept);
    return true;
}

LinkNeeds failureNeedsOf(const DataBase &db, DBLink &link, int oa)
{
    LinkNeeds needs{};
    LinkSummary *summary = trustedSummary(&link);
    if (!summary || link.id >= maxSlots) { // no table could have the slot of such a link
        std::ranges::fill(needs.ofOthers, std::numeric_limits<double>::quiet_NaN());
        return needs;
    }
    if (summary->needy[oa].top == 0)
        return needs;
    const StateTables tables = tablesOf(link.state, summary);
    presentLargest(db, tables, summary, oa, needs.ofOthers);
    raiseByFailuresOf(db, tables, oa, link.id, needs.ofOwn);
    Needs sizes{};
    raiseByFailuresOf(db, SizeTables{tables}, oa, link.id, sizes);
    needs.magnitude = sizes[MAXPL - 1];
    if (!areBelow(needs.ofOwn, needs.ofOthers)) {
        std::ranges::fill(needs.ofOthers, 0.0);
        raiseByFailuresOfOthers(db, tables, *summary, link.id, oa, needs.ofOthers);
    }
    return needs;
}
