#include "database/update/update.h"

#include "common/records.h"
#include "database/followers/followers.h"
#include "database/reservations/apply_effect.h"
#include "database/reservations/needs.h"
#include "database/reservations/question.h"
#include "error/report.h"

#include <algorithm>
#include <bit>
#include <cassert>
#include <cmath>

namespace
{

constexpr Unit here{"database/database"};

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

/** Whether no value is -0.0, the only one that adding 0.0 changes. */
bool hasNoNegativeZero(const double (&values)[MAXPL])
{
    return std::ranges::none_of(values,
                                [](double value) { return value == 0.0 && std::signbit(value); });
}

/** Has the reservation of a stored link follow its tables; in settled class types it does. */
void settle(const DataBase &db, DBLink &link)
{
    DBLinkState &ls = link.state;
    LinkSummary *summary = trustedSummary(&link);
    for (int oa = 0; oa < MAXOA; ++oa) {
        if (!summary || !summary->settled.has(oa)) {
            reservePresent(db, ls, summary, oa, ls.rbw[oa]);
            if (summary)
                summary->settled.set(oa, hasNoNegativeZero(ls.pbw[oa]));
        }
        assert(followsTables(db, ls, oa));
    }
}

/** Gives a table so many slots; false after a message. */
bool growTo(DoubleVec &table, Long slots)
{
    return slots <= table.size || dblVecResize(&table, slots) == 0;
}

} // namespace

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
        if (!growTo(ls.bbw[oa][effect.level], longest[0]) ||
            !growTo(ls.fbw[oa][effect.level], longest[1]))
            return here.fail("Critical lack of memory in %s at line %d");
    }
    return 0;
}

void updateLink(DataBase &db, DBLink &link, const Effect &effect)
{
    applyToStored(db, link, effect);
    if (effect.isWhole())
        settle(db, link);
}

int updateLS(DataBase *dataBase, Long src, Long dst, DBLinkState *ls, DBLabelSwitchedPath *lsp,
             operation op)
{
    if (!dataBase || !ls || !lsp)
        return here.fail("Bad argument (NULL) in %s at line %d");
    Effect effect;
    effectOf(*dataBase, src, dst, viewOf(*lsp), op, effect);
    const int listed = report(effect);
    if (!effect.concerned || !effect.isApplicable())
        return listed;
    if (makeRoomFor(effect, *ls) != 0)
        return -1;
    if (DBLink *link = linkStoring(*dataBase, src, dst, *ls)) {
        updateLink(*dataBase, *link, effect);
        return listed;
    }
    applyEffect(effect, *ls, {}, [](int, const SlotChange &, double) {});
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
                      DBLabelSwitchedPath *lsp)
{
    return updateLS(dataBase, src, dst, ls, lsp, SETUP);
}

int DBupdateLSOnRemove(DataBase *dataBase, Long src, Long dst, DBLinkState *ls,
                       DBLabelSwitchedPath *lsp)
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
