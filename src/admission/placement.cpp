#include "admission/placement.h"

#include "admission/admission.h"
#include "computation/primary/driver.h"

#include <algorithm>

namespace
{

using OwnedLSP = Owned<DBLabelSwitchedPath, DBlspDestroy>;

/** Record of the LSP that a computed request describes; null when it cannot be made. The colours
 * that its path avoided are not asked about again, so they stay behind. */
OwnedLSP makeRecord(LSPRequest &req)
{
    OwnedLSP lsp{DBlspNew()};
    if (!lsp || longVecCopy(&lsp->path, &req.path) != 0)
        return nullptr;
    lsp->id = req.id;
    lsp->precedence = req.precedence;
    lsp->type = primaryLSP;
    std::ranges::copy(req.bw, lsp->bw);
    return lsp;
}

/** Lists what is in the way of `lsp`, adding it or not. */
Placement admitOrList(DataBase &db, DBLabelSwitchedPath *lsp, PlacementGoal goal,
                      LongList &preempted)
{
    if (goal == PlacementGoal::lsp) {
        const bool isAdded = lsp && DBaddLSP(&db, lsp, &preempted) >= 0;
        return isAdded ? Placement::done : Placement::notAdded;
    }
    if (goal == PlacementGoal::proposal) {
        const bool isAllowed = lsp && proposeLSP(&db, lsp, &preempted) >= 0;
        return isAllowed ? Placement::done : Placement::notAdded;
    }
    const bool isListed = lsp && getpreemptList(&db, lsp, &preempted) >= 0;
    return isListed ? Placement::done : Placement::notListed;
}

/** Drops the repetitions of a sorted list: an LSP may be chosen for more than one reason. */
void dropRepetitions(LongList &list)
{
    const auto ids = inUse(list);
    list.top = static_cast<Long>(std::unique(ids.begin(), ids.end()) - ids.begin());
}

Placement removeAll(DataBase &db, std::span<const Long> ids)
{
    const auto isRemoved = [&db](Long id) { return DBremoveLSP(&db, id) >= 0; };
    return std::ranges::all_of(ids, isRemoved) ? Placement::done : Placement::notRemoved;
}

} // namespace

Placement placePrimary(DataBase *dataBase, LSPRequest *req, PlacementGoal goal,
                       PlacementReport &report)
{
    if (computePrimaryPath(dataBase, req) < 0)
        return Placement::noPath;
    return admitPrimary(dataBase, req, goal, report);
}

Placement admitPrimary(DataBase *dataBase, LSPRequest *req, PlacementGoal goal,
                       PlacementReport &report)
{
    Scoped<LongList, longVecEnd> preempted;
    if (longVecInit(&preempted, -1) != 0)
        return Placement::notListed;
    if (!report.takePath(inUse(req->path)))
        return Placement::notReported;
    if (goal == PlacementGoal::pathOnly)
        return Placement::done;
    const Placement admitted = admitOrList(*dataBase, makeRecord(*req).get(), goal, preempted);
    if (admitted != Placement::done)
        return admitted;
    dropRepetitions(preempted);
    if (preempted.top == 0 || report.takePreempted(inUse(preempted)))
        return goal == PlacementGoal::proposal ? Placement::done
                                               : removeAll(*dataBase, inUse(preempted));
    if (goal == PlacementGoal::lsp)
        static_cast<void>(DBremoveLSP(dataBase, req->id));
    return Placement::notReported;
}

BackupPlacement::BackupPlacement(DataBase &database, DBLabelSwitchedPath &primary, DBLSPType type)
    : db(database), lsp(DBlspNew())
{
    if (!lsp || longVecCopy(&lsp->primPath, &primary.path) != 0) {
        lsp.reset();
        return;
    }
    lsp->type = type;
    lsp->primID = primary.id;
    lsp->precedence = 0;
    lsp->noContentionId = -1;
}

bool BackupPlacement::describe(LSPRequest &found, Long id)
{
    lsp->id = id;
    std::ranges::copy(found.bw, lsp->bw);
    lsp->path.top = 0;
    return longVecCopy(&lsp->path, &found.path) == 0;
}

Placement BackupPlacement::admit(LSPRequest &found, Long id, PlacementGoal goal)
{
    if (!describe(found, id))
        return Placement::notAdded;
    if (goal == PlacementGoal::pathOnly)
        return Placement::done;
    Scoped<LongList, longVecEnd> inTheWay;
    if (longVecInit(&inTheWay, -1) != 0)
        return Placement::notAdded;
    return admitOrList(db, lsp.get(), goal, inTheWay);
}
