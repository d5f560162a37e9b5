#include "computation/backup/cost.h"

#include "computation/backup/driver.h"
#include "database/books/lookup.h"
#include "database/reservations/question.h"
#include "error/report.h"

namespace
{

constexpr Unit here{"computation/backup/backup"};

/** Id of the node at which the chain of a search node starts. */
Long startOf(const CPDijkNode *dn)
{
    while (dn->from)
        dn = dn->from;
    return dn->node->id;
}

} // namespace

double costOf(const DBLabelSwitchedPath &lsp, Long dst, const double (&cap)[MAXOA],
              const double (&now)[MAXOA][MAXPL], const double (&then)[MAXOA][MAXPL])
{
    double after = 0.0;
    double before = 0.0;
    for (int oa = 0; oa < MAXOA; ++oa) {
        const double afterInClass = sumOf(then[oa]);
        if (afterInClass > cap[oa])
            return infeasible;
        after += afterInClass;
        before += sumOf(now[oa]);
    }
    return costOf(before, after, hopFactor(lsp, dst), totalBandwidth(lsp));
}

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
    const ReducedPath reduced{startOf(dn), src, dst};
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
    const DBLinkState &state = *lsList[linkID];
    return costOf(*lsp, dst, state.cap, state.rbw, rbw);
}
