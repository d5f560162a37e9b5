#include "database/reservations/question.h"

#include "common/records.h"
#include "database/reservations/needs.h"
#include "error/report.h"

#include <algorithm>
#include <cassert>
#include <cstring>

namespace
{

constexpr Unit here{"database/database"};

/** Whether the capacity suffices for the reservations up to any level. */
bool isNeverOverfull(const double (&rbw)[MAXPL], double capacity)
{
    double total = 0.0;
    bool suffices = !(total > capacity);
    for (const double reserved : rbw) {
        total += reserved;
        suffices = suffices && !(total > capacity);
    }
    return suffices;
}

/** What a class type that an effect changes reserves with the effect, sorted, over the tables. */
void reserveWithEffect(const DataBase &db, const DBLinkState &ls, LinkSummary *summary,
                       const Effect &effect, int oa, double (&rbw)[MAXPL])
{
    const StateTables present = tablesOf(ls, summary);
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

/** Whether what the tables themselves give leaves room at every level; for debug builds. */
[[maybe_unused]] bool isNeverOverfullByTables(const DataBase &db, const DBLinkState &ls, int oa)
{
    double rbw[MAXPL];
    reservePresent(db, ls, nullptr, oa, rbw);
    return isNeverOverfull(rbw, ls.cap[oa]);
}

/**
 * Writes what a link reserves with an effect, or, with `neverOverfull`, only the class types that
 * matter to whether it has the capacity; 0, or -1 after a message.
 */
int evaluate(const DataBase &db, const DBLinkState &ls, LinkSummary *summary, const Effect &effect,
             double rbw[MAXOA][MAXPL], ClassTypes *neverOverfull)
{
    if (!effect.concerned) {
        std::memcpy(rbw, ls.rbw, sizeof ls.rbw);
        return 0;
    }
    if (report(effect) != 0)
        return -1;
    if (summary)
        bringToTopology(*summary, db.topology);
    for (int oa = 0; oa < MAXOA; ++oa) {
        const bool isChanged = effect.changes(oa);
        if (isChanged)
            reserveWithEffect(db, ls, summary, effect, oa, rbw[oa]);
        else if (!neverOverfull && summary && summary->settled.has(oa))
            std::ranges::copy(ls.rbw[oa], rbw[oa]);
        else if (!neverOverfull || !summary || !summary->neverOverfull.has(oa))
            reservePresent(db, ls, summary, oa, rbw[oa]);
        if (neverOverfull)
            neverOverfull->set(oa, !isChanged && summary && summary->neverOverfull.has(oa));
        assert(!neverOverfull || !neverOverfull->has(oa) || isNeverOverfullByTables(db, ls, oa));
    }
    return 0;
}

} // namespace

void reservePresent(const DataBase &db, const DBLinkState &ls, LinkSummary *summary, int oa,
                    double (&rbw)[MAXPL])
{
    Needs largest;
    presentLargest(db, tablesOf(ls, summary), summary, oa, largest);
    spreadOverLevels(ls.pbw[oa], largest, rbw);
    if (summary)
        summary->neverOverfull.set(oa, isNeverOverfull(rbw, ls.cap[oa]));
}

int computeRBW(DataBase *dataBase, double rbw[MAXOA][MAXPL], double pbw[MAXOA][MAXPL],
               DoubleVec bbw[MAXOA][MAXPL], DoubleVec fbw[MAXOA][MAXPL])
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

int findPrimary(const DataBase &db, DBLSPType type, Long primID, DBLabelSwitchedPath *&primary)
{
    primary = nullptr;
    if (type == primaryLSP)
        return 0;
    if (type != localBackupLSP && type != globalBackupLSP)
        return here.fail("Unknown request type (NULL) in %s at line %d");
    primary = lspAt(db.lspVec, primID);
    return primary ? 0 : here.fail("Impossible to determine the primary path in %s at line %d");
}

int reservationWithEffect(const DataBase &db, DBLink &link, const Effect &effect,
                          double (&rbw)[MAXOA][MAXPL], ClassTypes *neverOverfull)
{
    return evaluate(db, link.state, trustedSummary(&link), effect, rbw, neverOverfull);
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
    return evaluate(*dataBase, *ls, trustedSummary(linkStoring(*dataBase, src, dst, *ls)),
                    effects.on(src, dst), rbw, nullptr);
}
