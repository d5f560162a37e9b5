#include "database/reservation.h"

#include "common/records.h"
#include "common/vector.h"
#include "error/report.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace
{

constexpr Unit here{"database/database"};

/** Slot k of a table indexed by link id; 0 beyond its capacity. */
template <class Vec>
auto slotOf(const Vec &table, Long k)
{
    return k < table.size ? table.cont[k] : 0;
}

/** The failure tables of one state. */
struct StateTables {
    const DoubleVec (*bbw)[MAXPL];
    const DoubleVec (*fbw)[MAXPL];

    double backup(int oa, int p, Long k) const { return slotOf(bbw[oa][p], k); }
    double freed(int oa, int p, Long k) const { return slotOf(fbw[oa][p], k); }
};

/** The failure tables of one state with an effect, sorted by slot, laid over them. */
struct OverlaidTables {
    StateTables present;
    const Effect &effect;

    double backup(int oa, int p, Long k) const
    {
        return changed(present.backup(oa, p, k), FailureTable::backup, oa, p, k);
    }
    double freed(int oa, int p, Long k) const
    {
        return changed(present.freed(oa, p, k), FailureTable::freed, oa, p, k);
    }

private:
    double changed(double value, FailureTable table, int oa, int p, Long k) const
    {
        if (p != effect.level)
            return value;
        for (const SlotChange &change : effect.slots.of(k)) {
            if (change.table == table)
                value += effect.amount(change, oa);
        }
        return value;
    }
};

/** The largest need over all single failures, per level, each counting the levels up to it. */
using Needs = double[MAXPL];

/**
 * Raises `largest` by the row of one failure, which takes the links `linkOf(item)` down together.
 * The additions run level by level and inside a level in the order of `items`.
 */
template <class Tables, class Items, class LinkOf>
void raiseByRow(const Tables &tables, int oa, const Items &items, LinkOf linkOf, Needs &largest)
{
    double totBbw = 0.0;
    double totFbw = 0.0;
    for (int p = 0; p < MAXPL; ++p) {
        for (const Long item : items) {
            const Long link = linkOf(item);
            if (link < 0)
                continue;
            totBbw += tables.backup(oa, p, link);
            totFbw += tables.freed(oa, p, link);
        }
        largest[p] = std::max(largest[p], totBbw - totFbw);
    }
}

/** Raises `largest` by the failure of link k and by that of the node it enters. */
template <class Tables>
void raiseByFailuresOf(const DataBase &db, const Tables &tables, int oa, Long k, Needs &largest)
{
    const bool exists = k < db.linkSrcVec.top && db.linkSrcVec.cont[k] > 0;
    if (!exists)
        return;
    raiseByRow(
        tables, oa, std::array{k}, [](Long link) { return link; }, largest);

    const Long n = slotOf(db.linkDstVec, k) - 1;
    const DBNode *node = nodeAt(db.nodeVec, n);
    if (node) {
        const auto linkFrom = [&db, n](Long u) { return DBgetLinkID(&db, u, n); };
        raiseByRow(tables, oa, inUse(node->inNeighb), linkFrom, largest);
    }
}

/** The slots of a block that a table has; empty beyond its capacity. */
constexpr Long blockSlots = 64;
std::span<const double> blockOf(const DoubleVec &table, Long first)
{
    const Long last = std::min(first + blockSlots, table.size);
    return {table.cont + std::min(first, last),
            static_cast<std::size_t>(std::max(last - first, 0))};
}

/** All bits that are set in any of the values: one cheap reduction over many slots at once. */
std::int64_t bitsOf(std::span<const double> values)
{
    std::int64_t bits = 0;
    for (const double value : values)
        bits |= std::bit_cast<std::int64_t>(value);
    return bits;
}

/** False only when none of the slots from `first` on can make a row exceed 0. */
bool blockMayBeNeedy(const StateTables &tables, int oa, Long first)
{
    for (int p = 0; p < MAXPL; ++p) {
        const bool anyBackup = bitsOf(blockOf(tables.bbw[oa][p], first)) != 0;
        const bool anyBelowZero = bitsOf(blockOf(tables.fbw[oa][p], first)) < 0;
        if (anyBackup || anyBelowZero)
            return true;
    }
    return false;
}

bool slotIsNeedy(const StateTables &tables, int oa, Long k)
{
    for (int p = 0; p < MAXPL; ++p) {
        if (tables.backup(oa, p, k) > 0.0 || tables.freed(oa, p, k) < 0.0)
            return true;
    }
    return false;
}

Long longestTable(const StateTables &tables, int oa)
{
    Long longest = 0;
    for (int p = 0; p < MAXPL; ++p)
        longest = std::max({longest, tables.bbw[oa][p].size, tables.fbw[oa][p].size});
    return longest;
}

/**
 * Raises `largest` by every row that can exceed 0 with the present tables; `tables` gives the
 * values, which may be others. All other rows are 0 as long as the values differ in no other slot.
 */
template <class Tables>
void raiseByNeedySlots(const DataBase &db, const StateTables &present, const Tables &tables, int oa,
                       Needs &largest)
{
    const Long end = std::min(longestTable(present, oa), db.linkSrcVec.top);
    for (Long first = 0; first < end; first += blockSlots) {
        if (!blockMayBeNeedy(present, oa, first))
            continue;
        for (Long k = first; k < std::min(first + blockSlots, end); ++k) {
            if (slotIsNeedy(present, oa, k))
                raiseByFailuresOf(db, tables, oa, k, largest);
        }
    }
}

/** Adds to each level's primary reservation what the level adds to the largest need. */
void spreadOverLevels(const double (&pbw)[MAXPL], const Needs &largest, double (&rbw)[MAXPL])
{
    double below = 0.0;
    for (int p = 0; p < MAXPL; ++p) {
        rbw[p] = pbw[p] + largest[p] - below;
        below = largest[p];
    }
}

/** Raises `largest` by the rows that an effect may lift above 0, of slots not needy yet. */
void raiseByChanges(const DataBase &db, const OverlaidTables &tables, int oa, Needs &largest)
{
    Long last = -1;
    for (const SlotChange &change : tables.effect.slots.all()) {
        const double amount = tables.effect.amount(change, oa);
        const bool adds = change.table == FailureTable::backup ? amount > 0.0 : amount < 0.0;
        if (!adds || change.slot == last || slotIsNeedy(tables.present, oa, change.slot))
            continue;
        raiseByFailuresOf(db, tables, oa, change.slot, largest);
        last = change.slot;
    }
}

/** What class type `oa` of the link reserves with a sorted effect laid over its tables. */
void reserveWithEffect(const DataBase &db, const DBLinkState &ls, const Effect &effect, int oa,
                       double (&rbw)[MAXPL])
{
    const StateTables present{ls.bbw, ls.fbw};
    Needs largest{};
    if (effect.changes(oa)) {
        const OverlaidTables overlaid{present, effect};
        raiseByNeedySlots(db, present, overlaid, oa, largest);
        raiseByChanges(db, overlaid, oa, largest);
    } else {
        raiseByNeedySlots(db, present, present, oa, largest);
    }

    double pbw[MAXPL];
    std::ranges::copy(ls.pbw[oa], pbw);
    pbw[effect.level] += effect.primary[oa];
    spreadOverLevels(pbw, largest, rbw);
}

DoubleVec &tableOf(DBLinkState &ls, FailureTable table, int oa, int p)
{
    return table == FailureTable::backup ? ls.bbw[oa][p] : ls.fbw[oa][p];
}

/** Applies an effect to tables that have the room for it. */
void apply(const Effect &effect, DBLinkState &ls)
{
    for (int oa = 0; oa < MAXOA; ++oa)
        ls.pbw[oa][effect.level] += effect.primary[oa];
    for (const SlotChange &change : effect.slots.all()) {
        for (int oa = 0; oa < MAXOA; ++oa) {
            const double amount = effect.amount(change, oa);
            if (amount != 0.0)
                tableOf(ls, change.table, oa, effect.level).cont[change.slot] += amount;
        }
    }
}

/** Finds the primary that a backup protects, null for a primary; 0, or -1 after a message. */
int findPrimary(const DataBase &db, DBLSPType type, Long primID,
                const DBLabelSwitchedPath *&primary)
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
int fillRecord(const DataBase &db, const LSPRequest &req, DBLabelSwitchedPath &record)
{
    record.id = req.id;
    record.precedence = req.precedence;
    std::ranges::copy(req.bw, record.bw);
    record.type = req.type;
    record.noContentionId = req.rerouteInfo.id >= 0 ? req.rerouteInfo.id : -1;
    if (longVecCopy(&record.forbidLinks, &req.forbidLinks) != 0)
        return -1;

    const DBLabelSwitchedPath *primary = nullptr;
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

} // namespace

int computeRBW(const DataBase *dataBase, double rbw[MAXOA][MAXPL], const double pbw[MAXOA][MAXPL],
               const DoubleVec bbw[MAXOA][MAXPL], const DoubleVec fbw[MAXOA][MAXPL])
{
    if (!dataBase || !rbw || !pbw || !bbw || !fbw)
        return here.fail("Bad argument (NULL) in %s at line %d");
    const StateTables tables{bbw, fbw};
    for (int oa = 0; oa < MAXOA; ++oa) {
        Needs largest{};
        raiseByNeedySlots(*dataBase, tables, tables, oa, largest);
        spreadOverLevels(pbw[oa], largest, rbw[oa]);
    }
    return 0;
}

int makeRoomFor(const Effect &effect, DBLinkState &ls)
{
    for (const FailureTable table : {FailureTable::backup, FailureTable::freed}) {
        for (int oa = 0; oa < MAXOA; ++oa) {
            Long longest = 0;
            for (const SlotChange &change : effect.slots.all()) {
                if (change.table == table && effect.amount(change, oa) != 0.0)
                    longest = std::max(longest, change.slot + 1);
            }
            if (!vec::grow(tableOf(ls, table, oa, effect.level), longest))
                return here.fail("Critical lack of memory in %s at line %d");
        }
    }
    return 0;
}

int updateLink(DataBase &db, Long src, Long dst, DBLinkState &ls, const LSPView &lsp, operation op,
               Effect &effect)
{
    effectOf(db, src, dst, lsp, op, effect);
    const int listed = report(db, effect);
    if (!effect.concerned || effect.flaw == EffectFlaw::noMemory)
        return listed;
    if (makeRoomFor(effect, ls) != 0)
        return -1;
    apply(effect, ls);
    return listed == 0 ? computeRBW(&db, ls.rbw, ls.pbw, ls.bbw, ls.fbw) : -1;
}

int updateLS(DataBase *dataBase, Long src, Long dst, DBLinkState *ls,
             const DBLabelSwitchedPath *lsp, operation op)
{
    if (!dataBase || !ls || !lsp)
        return here.fail("Bad argument (NULL) in %s at line %d");
    Effect effect;
    return updateLink(*dataBase, src, dst, *ls, viewOf(*lsp), op, effect);
}

int evalLS(DataBase *dataBase, Long src, Long dst, DBLinkState *newLS, DBLinkState *oldLS,
           const LSPRequest *req, operation op)
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
                    const LSPRequest *req)
{
    return evalLS(dataBase, src, dst, newLS, oldLS, req, SETUP);
}

int DBevalLSOnRemove(DataBase *dataBase, Long src, Long dst, DBLinkState *newLS, DBLinkState *oldLS,
                     const LSPRequest *req)
{
    return evalLS(dataBase, src, dst, newLS, oldLS, req, REMOVE);
}

int reservationAfterSetup(const DataBase *dataBase, Long src, Long dst, const DBLinkState *ls,
                          Candidate candidate, double rbw[MAXOA][MAXPL])
{
    if (!dataBase || !ls || !rbw)
        return here.fail("Bad argument (NULL) in %s at line %d");
    const DBLabelSwitchedPath *primary = nullptr;
    if (findPrimary(*dataBase, candidate.lsp.type, candidate.primID, primary) != 0)
        return -1;
    candidate.lsp.primPath = primary ? inUse(primary->path) : std::span<const Long>{};
    if (candidate.lsp.path.size() < 2)
        return here.fail("Wrong path in request in %s at line %d");

    Effect effect;
    effectOf(*dataBase, src, dst, candidate.lsp, SETUP, effect);
    if (report(*dataBase, effect) != 0)
        return -1;
    if (!effect.concerned) {
        std::memcpy(rbw, ls->rbw, sizeof ls->rbw);
        return 0;
    }
    effect.slots.sortBySlot();
    for (int oa = 0; oa < MAXOA; ++oa)
        reserveWithEffect(*dataBase, *ls, effect, oa, rbw[oa]);
    return 0;
}
