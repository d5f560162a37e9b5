#include "planning/explain.h"

#include "planning/admit.h"
#include "planning/names.h"
#include "planning/setup.h"

#include <cstddef>
#include <utility>

namespace tarnex::planning
{

namespace
{

std::vector<Victim> named(const Plan &plan, const std::vector<Lsp> &lsps)
{
    std::vector<Victim> victims;
    for (const Lsp &lsp : lsps) {
        if (lsp.isBackup()) {
            ++victims.back().nbBackups; // a victim's backups follow it
            continue;
        }
        const DemandId id = demandOf(lsp.id);
        victims.push_back(
            {.demand = id, .name = nameOf(plan.network, plan.demands, id), .nbBackups = 0});
    }
    return victims;
}

} // namespace

Explanation explain(const Plan &plan, const Question &question)
{
    // The engine is thrown away afterwards, so the LSP is placed in earnest: what it takes is then
    // gone when its backups are sought.
    Engine engine = setUp(plan);
    Request request = requestOf(question.demand, DemandId{}, question.mayPreempt);
    request.id = LspId{};
    auto [placement, isTakenBack, lost] = admit(engine, request);
    Explanation explanation;
    if (!placement) {
        const auto inFull = engine.explain(request);
        explanation.refusal =
            planning::named(plan.network, question.demand, inFull ? *inFull : placement.refusal());
        return explanation;
    }
    explanation.victims = named(plan, placement->victims);
    PlannedLsp &lsp = explanation.lsp.emplace();
    lsp.path = placement->path.nodes;
    lsp.score = placement->score;
    if (!question.protection)
        return explanation;
    const auto protection = engine.protect(placement->id, *question.protection);
    if (!protection) {
        const auto inFull = engine.explainProtection(placement->id, *question.protection);
        lsp.unprotected = inFull ? *inFull : protection.refusal();
        explanation.unprotected = planning::named(plan.network, question.demand, *lsp.unprotected);
        return explanation;
    }
    for (const Lsp &backup : protection->backups)
        lsp.backups.push_back(plannedBackup(backup));
    return explanation;
}

} // namespace tarnex::planning
