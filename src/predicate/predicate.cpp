#include "predicate/predicate.h"

#include "common/records.h"
#include "common/setup.h"
#include "database/reservations/question.h"
#include "error/report.h"

#include <algorithm>
#include <array>

namespace
{

constexpr Unit here{"predicate/predicate"};

/**
 * The capacity test on reservations `rbw[oa][p]` that include the newcomer's own; the
 * `neverOverfull` class types are not in there and known to fit.
 */
bool fitsCapacity(const double rbw[MAXOA][MAXPL], ClassTypes neverOverfull, const double cap[MAXOA],
                  int precedence, double *gain)
{
    for (int oa = 0; oa < MAXOA; ++oa) {
        if (neverOverfull.has(oa)) {
            gain[oa] = 0.0;
            continue;
        }
        double occupied = 0.0;
        double total = 0.0;
        for (int p = 0; p < MAXPL; ++p) {
            total += rbw[oa][p];
            if (!tarnexConfig.predicateConfig.allowReroute || p <= precedence)
                occupied += rbw[oa][p];
        }
        if (occupied > cap[oa])
            return false;
        gain[oa] = total > cap[oa] ? total - cap[oa] : 0.0;
    }
    return true;
}

/** The colour test. */
bool avoidsColor(const LongList &forbidden, Long color)
{
    return std::ranges::find(inUse(forbidden), color) == inUse(forbidden).end();
}

/** The tests that are switched on, of a link that would reserve `rbw` with the newcomer. */
bool passesTests(const double rbw[MAXOA][MAXPL], ClassTypes neverOverfull, const DBLinkState &ls,
                 int precedence, const LongList &forbidLinks, double *gain)
{
    const PredicateConfig &config = tarnexConfig.predicateConfig;
    if (config.capacityClause && !fitsCapacity(rbw, neverOverfull, ls.cap, precedence, gain))
        return false;
    return !config.colorClause || avoidsColor(forbidLinks, ls.color);
}

/** Refuses a link that cannot be evaluated. */
bool refuseUnknown()
{
    here.push(CRITICAL, "Unable to update link state in %s at line %d");
    return false;
}

/** Runs the tests for a candidate on one link. */
bool admits(const DataBase *db, Long src, Long dst, const DBLinkState *ls,
            const Candidate &candidate, const LongList &forbidLinks, double *gain)
{
    double rbw[MAXOA][MAXPL];
    if (reservationAfterSetup(db, src, dst, ls, candidate, rbw) != 0)
        return refuseUnknown();
    return passesTests(rbw, {}, *ls, candidate.lsp.precedence, forbidLinks, gain);
}

/** The path of a candidate if it is known in full, else the one hop that is asked about. */
std::span<const Long> pathOrHop(const LongList &path, const std::array<Long, 2> &hop)
{
    const bool isComplete = std::ranges::all_of(inUse(path), [](Long node) { return node >= 0; });
    return isComplete ? std::span<const Long>{inUse(path)} : hop;
}

bool refuseNull()
{
    here.push(CRITICAL, "Bad argument (NULL) in %s at line %d");
    return false;
}

} // namespace

bool isValidRequestLink(DataBase *dataBase, Long src, Long dst, DBLinkState *ls, LSPRequest *req,
                        double *gain)
{
    if (!ls || !req || !gain)
        return refuseNull();
    const std::array hop{src, dst};
    const LSPrerouteInfo &rerouted = req->rerouteInfo;
    const Candidate candidate{{.path = pathOrHop(req->path, hop),
                               .primPath = {},
                               .bw = req->bw,
                               .precedence = req->precedence,
                               .type = req->type,
                               .noContentionId = rerouted.id},
                              req->primID};
    const bool isAdmitted = admits(dataBase, src, dst, ls, candidate, req->forbidLinks, gain);
    const bool isRerouted = rerouted.id >= 0 && rerouted.src == src && rerouted.dst == dst;
    return isAdmitted && !isRerouted;
}

bool isValidLSPLink(DataBase *dataBase, Long src, Long dst, DBLinkState *ls,
                    DBLabelSwitchedPath *lsp, double *gain)
{
    if (!ls || !lsp || !gain)
        return refuseNull();
    const std::array hop{src, dst};
    Candidate candidate{viewOf(*lsp), lsp->primID};
    candidate.lsp.path = pathOrHop(lsp->path, hop);
    return admits(dataBase, src, dst, ls, candidate, lsp->forbidLinks, gain);
}

bool isValidWithEffect(const DataBase &db, DBLink &link, const Effect &effect,
                       const DBLabelSwitchedPath &lsp, double *gain)
{
    double rbw[MAXOA][MAXPL];
    ClassTypes neverOverfull{};
    if (reservationWithEffect(db, link, effect, rbw, &neverOverfull) != 0)
        return refuseUnknown();
    return passesTests(rbw, neverOverfull, link.state, lsp.precedence, lsp.forbidLinks, gain);
}

bool capacityClause(DBLinkState *ls, LSPRequest *req, double *gain)
{
    return fitsCapacity(ls->rbw, {}, ls->cap, req->precedence, gain);
}

bool colorClause(DBLinkState *ls, LSPRequest *req)
{
    return avoidsColor(req->forbidLinks, ls->color);
}
