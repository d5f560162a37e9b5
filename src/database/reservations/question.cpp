#include "database/reservations/question.h"

#include "common/records.h"
#include "common/vector.h"
#include "database/reservations/failure_rows.h"
#include "error/report.h"

#include <algorithm>
#include <bit>
#include <cassert>
#include <cmath>
#include <cstring>
#include <limits>

namespace
{

constexpr Unit here{"database/database"};

/**
 * Whether the largest needs of present tables stay what they are under an effect: no row moves, or
 * rows are only lowered that are below the largest, or hold no need, at every level.
 */
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

/** Sizes of what the tables of a state hold, so that rows add them up. */
struct SizeTables {
    StateTables present;

    double backup(int oa, int p, Long k) const { return std::abs(present.backup(oa, p, k)); }
    double freed(int oa, int p, Long k) const { return -std::abs(present.freed(oa, p, k)); }
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
    raiseByNeedySlots(db, NeedySlots{db, tables, nullptr}, tables, oa, derived);
    return std::ranges::equal(derived, largest);
}

/** The largest needs of present tables; from the summary, which learns them, if there is one. */
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

/** Whether the capacity suffices for the reservations up to any level. */
bool isRoomy(const double (&rbw)[MAXPL], double capacity)
{
    double total = 0.0;
    bool suffices = !(total > capacity);
    for (const double reserved : rbw) {
        total += reserved;
        suffices = suffices && !(total > capacity);
    }
    return suffices;
}

/** What class type `oa` of a link reserves with the tables as they are. */
void reservePresent(const DataBase &db, const DBLinkState &ls, LinkSummary *summary, int oa,
                    double (&rbw)[MAXPL])
{
    Needs largest;
    presentLargest(db, tablesOf(ls), summary, oa, largest);
    spreadOverLevels(ls.pbw[oa], largest, rbw);
    if (summary)
        summary->roomy.set(oa, isRoomy(rbw, ls.cap[oa]));
}

/** What a class type that an effect changes reserves with the effect, sorted, over the tables. */
void reserveWithEffect(const DataBase &db, const DBLinkState &ls, LinkSummary *summary,
                       const Effect &effect, int oa, double (&rbw)[MAXPL])
{
    const StateTables present = tablesOf(ls);
    const OverlaidTables overlaid{present, effect};
    Needs largest{};
    if (summary)
        presentLargest(db, present, summary, oa, largest);
    if (summary && shiftOf(effect, oa) == Shift::up) {
        raiseByChanges(db, overlaid, effect, oa, largest);
    } else if (!summary || !keepsLargest(db, present, effect, oa, *summary)) {
        std::ranges::fill(largest, 0.0);
        raiseByNeedySlots(db, NeedySlots{db, present, summary}, overlaid, oa, largest);
        raiseByChanges(db, overlaid, effect, oa, largest);
    }

    double pbw[MAXPL];
    std::ranges::copy(ls.pbw[oa], pbw);
    pbw[effect.level] += effect.primary[oa];
    spreadOverLevels(pbw, largest, rbw);
}

/**
 * Applies an effect to tables that have the room for it. Of the class types that it does not change
 * the `settled` ones need not be touched. Calls `note(oa, change, value)` for each slot that has
 * got another value.
 */
template <class Note>
void apply(const Effect &effect, DBLinkState &ls, ClassTypes settled, Note note)
{
    for (int oa = 0; oa < MAXOA; ++oa) {
        if (!effect.changes(oa) && settled.has(oa))
            continue;
        ls.pbw[oa][effect.level] += effect.primary[oa];
        for (const SlotChange &change : effect.slots.all()) {
            const double amount = effect.amount(change, oa);
            if (amount == 0.0)
                continue;
            double &slot = tableOf(ls, change.table, oa, effect.level).cont[change.slot];
            slot += amount;
            note(oa, change, slot);
        }
    }
}

/** Finds the primary that a backup protects, null for a primary; 0, or -1 after a message. */
int findPrimary(const DataBase &db, DBLSPType type, Long primID, DBLabelSwitchedPath *&primary)
{
    primary = nullptr;
    if (type == primaryLSP)
        return 0;
    if (type != localBackupLSP && type != globalBackupLSP)
        return here.fail("Unknown request type (NULL) in %s at line %d");
    primary = DBgetLSP(&db, primID);
    return primary ? 0 : here.fail("Impossible to determine the primary path in %s at line %d");
}

/** Fills a new record with the LSP that a request describes. */
int fillRecord(const DataBase &db, LSPRequest &req, DBLabelSwitchedPath &record)
{
    record.id = req.id;
    record.precedence = req.precedence;
    std::ranges::copy(req.bw, record.bw);
    record.type = req.type;
    record.noContentionId = req.rerouteInfo.id >= 0 ? req.rerouteInfo.id : -1;
    if (longVecCopy(&record.forbidLinks, &req.forbidLinks) != 0)
        return -1;

    DBLabelSwitchedPath *primary = nullptr;
    if (findPrimary(db, req.type, req.primID, primary) != 0)
        return -1;
    record.primID = primary ? req.primID : -1;
    if (primary && longVecCopy(&record.primPath, &primary->path) != 0)
        return here.fail("Impossible to determine the primary path in %s at line %d");

    if (req.path.top < 2)
        return here.fail("Wrong path in request in %s at line %d");
    if (longVecCopy(&record.path, &req.path) != 0)
        return here.fail("Impossible to duplicate path in %s at line %d");
    return 0;
}

/** Whether what the state says a link reserves is what the tables give; for debug builds. */
[[maybe_unused]] bool followsTables(const DataBase &db, const DBLinkState &ls, int oa)
{
    double rbw[MAXPL];
    reservePresent(db, ls, nullptr, oa, rbw);
    return std::ranges::equal(rbw, ls.rbw[oa], {}, std::bit_cast<std::int64_t, double>,
                              std::bit_cast<std::int64_t, double>);
}

/** Whether what the tables themselves give leaves room at every level; for debug builds. */
[[maybe_unused]] bool isRoomyByTables(const DataBase &db, const DBLinkState &ls, int oa)
{
    double rbw[MAXPL];
    reservePresent(db, ls, nullptr, oa, rbw);
    return isRoomy(rbw, ls.cap[oa]);
}

/** No value of a class type has a sign without a size: then adding any 0 changes none. */
bool hasNoNegativeZero(const double (&values)[MAXPL])
{
    return std::ranges::none_of(values,
                                [](double value) { return value == 0.0 && std::signbit(value); });
}

/** The summary of a stored link if it can be trusted; null for one that cannot and for no link. */
LinkSummary *trusted(DBLink *link)
{
    return link && link->summary.isTrusted ? &link->summary : nullptr;
}

/** Has the reservation of a stored link follow its tables; settled class types do. */
void settle(const DataBase &db, DBLink &link)
{
    DBLinkState &ls = link.state;
    LinkSummary *summary = trusted(&link);
    for (int oa = 0; oa < MAXOA; ++oa) {
        if (!summary || !summary->settled.has(oa)) {
            reservePresent(db, ls, summary, oa, ls.rbw[oa]);
            if (summary)
                summary->settled.set(oa, hasNoNegativeZero(ls.pbw[oa]));
        }
        assert(followsTables(db, ls, oa));
    }
}

/** Applies an effect to the tables of a stored link, and has its summary follow. */
void applyToLink(DataBase &db, DBLink &link, const Effect &effect)
{
    LinkSummary &summary = link.summary;
    bringToTopology(summary, db.topology);
    ClassTypes raised{};
    unsigned changed = 0;
    for (int oa = 0; oa < MAXOA; ++oa) {
        changed |= effect.changes(oa) ? 1U << oa : 0U;
        if (!effect.changes(oa) || !summary.isTrusted || !summary.known.has(oa))
            continue;
        const bool isKept = keepsLargest(db, tablesOf(link.state), effect, oa, summary);
        raised.set(oa, !isKept && shiftOf(effect, oa) == Shift::up);
        summary.known.set(oa, isKept || raised.has(oa));
    }
    const auto note = [&](int oa, const SlotChange &change, double value) {
        noteCarrier(db, link, {oa, effect.level, change.table, change.slot}, value);
    };
    apply(effect, link.state, summary.settled, note);
    noteChanges(summary, link.state, effect);
    for (int oa = 0; oa < MAXOA; ++oa) {
        if (!effect.changes(oa))
            continue;
        summary.settled.set(oa, false);
        summary.roomy.set(oa, false);
        if (raised.has(oa))
            raiseByChanges(db, tablesOf(link.state), effect, oa, summary.needy[oa],
                           summary.largest[oa]);
    }
    noteStateChange(db, link, changed);
}

/** The link from `src` to `dst` if `ls` is its stored state, null if it is a private one. */
DBLink *linkStoring(const DataBase &db, Long src, Long dst, const DBLinkState &ls)
{
    DBLink *link = linkAt(db.linkTab, src, dst);
    return link && &link->state == &ls ? link : nullptr;
}

/**
 * Writes what a link reserves with an effect, or, with `roomy`, only the class types that matter to
 * whether it has the capacity; 0, or -1 after a message.
 */
int evaluate(const DataBase &db, const DBLinkState &ls, LinkSummary *summary, const Effect &effect,
             double rbw[MAXOA][MAXPL], ClassTypes *roomy)
{
    if (!effect.concerned) {
        std::memcpy(rbw, ls.rbw, sizeof ls.rbw);
        return 0;
    }
    if (report(db, effect) != 0)
        return -1;
    if (summary)
        bringToTopology(*summary, db.topology);
    for (int oa = 0; oa < MAXOA; ++oa) {
        const bool isChanged = effect.changes(oa);
        if (isChanged)
            reserveWithEffect(db, ls, summary, effect, oa, rbw[oa]);
        else if (!roomy || !summary || !summary->roomy.has(oa))
            reservePresent(db, ls, summary, oa, rbw[oa]);
        if (roomy)
            roomy->set(oa, !isChanged && summary && summary->roomy.has(oa));
        assert(!roomy || !roomy->has(oa) || isRoomyByTables(db, ls, oa));
    }
    return 0;
}

} // namespace

int computeRBW(const DataBase *dataBase, double rbw[MAXOA][MAXPL], const double pbw[MAXOA][MAXPL],
               const DoubleVec bbw[MAXOA][MAXPL], const DoubleVec fbw[MAXOA][MAXPL])
{
    if (!dataBase || !rbw || !pbw || !bbw || !fbw)
        return here.fail("Bad argument (NULL) in %s at line %d");
    for (int oa = 0; oa < MAXOA; ++oa) {
        Needs largest;
        presentLargest(*dataBase, {bbw, fbw}, nullptr, oa, largest);
        spreadOverLevels(pbw[oa], largest, rbw[oa]);
    }
    return 0;
}

LinkNeeds failureNeedsOf(const DataBase &db, DBLink &link, int oa)
{
    LinkNeeds needs{};
    LinkSummary *summary = trusted(&link);
    if (!summary || link.id >= maxSlots) { // no table could have the slot of such a link
        std::ranges::fill(needs.ofOthers, std::numeric_limits<double>::quiet_NaN());
        return needs;
    }
    if (summary->needy[oa].top == 0)
        return needs;
    const StateTables tables = tablesOf(link.state);
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

void reservationFromTables(const DataBase &db, DBLink &link, double (&rbw)[MAXOA][MAXPL])
{
    for (int oa = 0; oa < MAXOA; ++oa)
        reservePresent(db, link.state, trusted(&link), oa, rbw[oa]);
}

int makeRoomFor(const Effect &effect, DBLinkState &ls)
{
    for (int oa = 0; oa < MAXOA; ++oa) {
        if (!effect.changes(oa))
            continue;
        Long longest[] = {0, 0};
        for (const SlotChange &change : effect.slots.all()) {
            Long &needed = longest[change.table == FailureTable::backup ? 0 : 1];
            if (effect.amount(change, oa) != 0.0)
                needed = std::max(needed, change.slot + 1);
        }
        if (!vec::grow(ls.bbw[oa][effect.level], longest[0]) ||
            !vec::grow(ls.fbw[oa][effect.level], longest[1]))
            return here.fail("Critical lack of memory in %s at line %d");
    }
    return 0;
}

void updateLink(DataBase &db, DBLink &link, const Effect &effect)
{
    applyToLink(db, link, effect);
    if (effect.isWhole())
        settle(db, link);
}

int updateLS(DataBase *dataBase, Long src, Long dst, DBLinkState *ls,
             const DBLabelSwitchedPath *lsp, operation op)
{
    if (!dataBase || !ls || !lsp)
        return here.fail("Bad argument (NULL) in %s at line %d");
    Effect effect;
    effectOf(*dataBase, src, dst, viewOf(*lsp), op, effect);
    const int listed = report(*dataBase, effect);
    if (!effect.concerned || effect.flaw == EffectFlaw::noMemory)
        return listed;
    if (makeRoomFor(effect, *ls) != 0)
        return -1;
    if (DBLink *link = linkStoring(*dataBase, src, dst, *ls)) {
        updateLink(*dataBase, *link, effect);
        return listed;
    }
    apply(effect, *ls, {}, [](int, const SlotChange &, double) {});
    if (effect.isWhole())
        static_cast<void>(computeRBW(dataBase, ls->rbw, ls->pbw, ls->bbw, ls->fbw));
    return listed;
}

int evalLS(DataBase *dataBase, Long src, Long dst, DBLinkState *newLS, DBLinkState *oldLS,
           LSPRequest *req, operation op)
{
    if (!dataBase || !newLS || !oldLS || !req)
        return here.fail("Bad argument (NULL) in %s at line %d");
    if (newLS != oldLS && DBlinkStateCopy(newLS, oldLS) != 0)
        return here.fail("Impossible to duplicate the linkState in %s at line %d");
    const Owned<DBLabelSwitchedPath, DBlspDestroy> record{DBlspNew()};
    if (!record || fillRecord(*dataBase, *req, *record) != 0)
        return -1;
    return updateLS(dataBase, src, dst, newLS, record.get(), op);
}

int DBupdateLSOnSetup(DataBase *dataBase, Long src, Long dst, DBLinkState *ls,
                      const DBLabelSwitchedPath *lsp)
{
    return updateLS(dataBase, src, dst, ls, lsp, SETUP);
}

int DBupdateLSOnRemove(DataBase *dataBase, Long src, Long dst, DBLinkState *ls,
                       const DBLabelSwitchedPath *lsp)
{
    return updateLS(dataBase, src, dst, ls, lsp, REMOVE);
}

int DBevalLSOnSetup(DataBase *dataBase, Long src, Long dst, DBLinkState *newLS, DBLinkState *oldLS,
                    LSPRequest *req)
{
    return evalLS(dataBase, src, dst, newLS, oldLS, req, SETUP);
}

int DBevalLSOnRemove(DataBase *dataBase, Long src, Long dst, DBLinkState *newLS, DBLinkState *oldLS,
                     LSPRequest *req)
{
    return evalLS(dataBase, src, dst, newLS, oldLS, req, REMOVE);
}

int reservationWithEffect(const DataBase &db, DBLink &link, const Effect &effect,
                          double (&rbw)[MAXOA][MAXPL], ClassTypes *roomy)
{
    return evaluate(db, link.state, trusted(&link), effect, rbw, roomy);
}

int reservationAfterSetup(const DataBase *dataBase, Long src, Long dst, const DBLinkState *ls,
                          Candidate candidate, double rbw[MAXOA][MAXPL])
{
    if (!dataBase || !ls || !rbw)
        return here.fail("Bad argument (NULL) in %s at line %d");
    DBLabelSwitchedPath *primary = nullptr;
    if (findPrimary(*dataBase, candidate.lsp.type, candidate.primID, primary) != 0)
        return -1;
    candidate.lsp.primPath = primary ? inUse(primary->path) : std::span<const Long>{};
    if (candidate.lsp.path.size() < 2)
        return here.fail("Wrong path in request in %s at line %d");

    LinkEffects effects{*dataBase, candidate.lsp, SETUP};
    return evaluate(*dataBase, *ls, trusted(linkStoring(*dataBase, src, dst, *ls)),
                    effects.on(src, dst), rbw, nullptr);
}
