#include "computation/backup/backup.h"

#include "common/records.h"
#include "database/reservation.h"
#include "error/report.h"

#include <algorithm>
#include <array>
#include <numeric>

namespace
{

constexpr Unit here{"computation/backup/backup"};

constexpr double alpha = 10.0 / 11.0; ///< on the extra reservation
constexpr double beta = 1.0 / 11.0;   ///< on the bandwidth charge
constexpr double infeasible = -1.0;

double sumOf(const double (&levels)[MAXPL]) { return std::accumulate(levels, levels + MAXPL, 0.0); }

/**
 * The path of a backup that reaches `src` over the chain of `dn` and goes on to `dst`, reduced to
 * what an evaluation of the link reads: where it starts, the hop itself, and where it ends.
 */
class ReducedPath
{
public:
    ReducedPath(const CPDijkNode *dn, Long src, Long dst) : nodes{startOf(dn), src, dst} {}

    std::span<const Long> path() const
    {
        const bool startsAtHop = nodes[0] == nodes[1];
        return std::span{nodes}.subspan(startsAtHop ? 1 : 0);
    }

private:
    static Long startOf(const CPDijkNode *dn)
    {
        while (dn->from)
            dn = dn->from;
        return dn->node->id;
    }

    std::array<Long, 3> nodes;
};

/** One more than the number of entries from `dst` to the end of the protected path of `lsp`. */
std::ptrdiff_t hopFactor(const DBLabelSwitchedPath &lsp, Long dst)
{
    const auto primPath = inUse(lsp.primPath);
    return primPath.end() - std::ranges::find(primPath, dst) + 1;
}

/** Extra reservation over all class types, at least 0; negative when one exceeds its capacity. */
double extraReservation(const DBLinkState &now, const double (&rbw)[MAXOA][MAXPL])
{
    double after = 0.0;
    double before = 0.0;
    for (int oa = 0; oa < MAXOA; ++oa) {
        const double afterInClass = sumOf(rbw[oa]);
        if (afterInClass > now.cap[oa])
            return infeasible;
        after += afterInClass;
        before += sumOf(now.rbw[oa]);
    }
    return std::max(0.0, after - before);
}

} // namespace

int backupPrecedence(const DBLabelSwitchedPath &primary)
{
    return primary.precedence + 1 < MAXPL ? primary.precedence + 1 : primary.precedence;
}

double computeCost(DataBase *dataBase, DBLinkState *const *lsList, Long src, Long dst,
                   const CPDijkNode *dn, const DBLabelSwitchedPath *lsp, BackupType type)
{
    if (type != LOCAL_BACKUP && type != GLOBAL_BACKUP) {
        here.push(WARNING, "Unknown backup type in %s at line %d");
        return infeasible;
    }
    const ReducedPath reduced{dn, src, dst};
    const Candidate backup{{.path = reduced.path(),
                            .primPath = {},
                            .bw = lsp->bw,
                            .precedence = backupPrecedence(*lsp),
                            .type = type,
                            .noContentionId = -1},
                           lsp->id};
    const Long linkID = DBgetLinkID(dataBase, src, dst);
    const bool hasState = linkID >= 0 && linkID < dataBase->linkSrcVec.top;
    double rbw[MAXOA][MAXPL];
    if (!hasState || reservationAfterSetup(dataBase, src, dst, lsList[linkID], backup, rbw) != 0) {
        here.push(WARNING, "Error while computing new link state in %s at line %d");
        return infeasible;
    }
    const double inc = extraReservation(*lsList[linkID], rbw);
    if (inc < 0.0)
        return infeasible;
    const double bandwidth = std::accumulate(lsp->bw, lsp->bw + MAXOA, 0.0);
    return alpha * inc + beta * static_cast<double>(hopFactor(*lsp, dst)) * bandwidth;
}
