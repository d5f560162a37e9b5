#include "computation/backup/plain/compute_cost.h"

#include "computation/backup/cost.h"
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

double computeCost(DataBase *dataBase, DBLinkState **lsList, Long src, Long dst, CPDijkNode *dn,
                   DBLabelSwitchedPath *lsp, BackupType type)
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
