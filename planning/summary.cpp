#include "planning/summary.h"

#include <algorithm>
#include <cstdint>
#include <functional>
#include <limits>
#include <numeric>
#include <tuple>
#include <utility>
#include <variant>

namespace tarnex::planning
{

namespace
{

double sum(const std::vector<double> &values)
{
    return std::accumulate(values.begin(), values.end(), 0.0);
}

Amount &amountOf(Coverage &coverage, Cover cover)
{
    switch (cover) {
    case Cover::nodes:
        return coverage.nodes;
    case Cover::links:
        return coverage.links;
    case Cover::some:
        return coverage.some;
    case Cover::none:
        break;
    }
    return coverage.none;
}

void count(Fates &fates, const Demand &demand, const Outcome &outcome)
{
    fates.demanded.add(demand.bandwidth);
    if (const auto *lsp = std::get_if<PlannedLsp>(&outcome)) {
        fates.placed.add(demand.bandwidth);
        amountOf(fates.coverage, coverOf(*lsp)).add(demand.bandwidth);
    } else if (std::holds_alternative<PreemptedLsp>(outcome)) {
        fates.preempted.add(demand.bandwidth);
    } else if (std::holds_alternative<Refusal>(outcome)) {
        fates.refused.add(demand.bandwidth);
    } else {
        fates.leftOut.add(demand.bandwidth);
    }
}

void countReasons(Summary &summary, const Demand &demand, const Outcome &outcome)
{
    const auto at = [](const Refusal &refusal) { return static_cast<std::size_t>(refusal.reason); };
    if (const auto *refusal = std::get_if<Refusal>(&outcome))
        summary.refused.at(at(*refusal)).add(demand.bandwidth);
    const auto *lsp = std::get_if<PlannedLsp>(&outcome);
    if (lsp && lsp->unprotected)
        summary.unprotected.at(at(*lsp->unprotected)).add(demand.bandwidth);
}

void countBackups(Summary &summary, const Demand &demand, const Outcome &outcome)
{
    const auto *lsp = std::get_if<PlannedLsp>(&outcome);
    if (!lsp)
        return;
    summary.nbBackups += lsp->backups.size();
    for (const PlannedBackup &backup : lsp->backups)
        summary.cost.dedicated += demand.bandwidth * static_cast<double>(backup.path.size() - 1);
}

std::vector<LinkLoad> loadsOf(const Plan &plan)
{
    std::vector<LinkLoad> loads;
    for (std::size_t i = 0; i < plan.use.size(); ++i) {
        for (std::size_t c = 0; c < plan.use[i].total.size(); ++c) {
            const auto &capacity = plan.network.links[i].capacity;
            loads.push_back({.link = LinkId{static_cast<std::int32_t>(i)},
                             .classType = static_cast<int>(c),
                             .primary = sum(plan.use[i].primary[c]),
                             .reserved = sum(plan.use[i].total[c]),
                             .capacity = c < capacity.size() ? capacity[c] : 0.0});
        }
    }
    return loads;
}

} // namespace

double LinkLoad::utilization() const
{
    if (reserved == 0.0)
        return 0.0;
    return capacity > 0.0 ? reserved / capacity : std::numeric_limits<double>::infinity();
}

Cover coverOf(const PlannedLsp &lsp)
{
    std::vector<LinkId> links;
    std::vector<NodeId> nodes;
    for (const PlannedBackup &backup : lsp.backups) {
        links.insert(links.end(), backup.protectedLinks.begin(), backup.protectedLinks.end());
        nodes.insert(nodes.end(), backup.protectedNodes.begin(), backup.protectedNodes.end());
    }
    const auto nbDifferent = [](auto &ids) {
        std::ranges::sort(ids);
        return static_cast<std::size_t>(std::unique(ids.begin(), ids.end()) - ids.begin());
    };
    const std::size_t nbLinks = nbDifferent(links);
    if (nbLinks == 0)
        return Cover::none;
    if (nbLinks + 1 < lsp.path.size())
        return Cover::some;
    return nbDifferent(nodes) + 2 < lsp.path.size() ? Cover::links : Cover::nodes;
}

Summary summaryOf(const Plan &plan, std::size_t nbFullest)
{
    Summary summary;
    summary.levels.resize(plan.network.levels.size());
    for (std::size_t i = 0; i < plan.demands.size(); ++i) {
        const Demand &demand = plan.demands[i];
        const Outcome &outcome = plan.outcomes[i];
        count(summary.all, demand, outcome);
        count(summary.levels.at(static_cast<std::size_t>(demand.level)), demand, outcome);
        countReasons(summary, demand, outcome);
        countBackups(summary, demand, outcome);
    }
    summary.fullest = loadsOf(plan);
    for (const LinkLoad &load : summary.fullest) {
        summary.cost.primary += load.primary;
        summary.cost.shared += load.reserved - load.primary;
    }
    std::ranges::stable_sort(summary.fullest, std::greater{}, &LinkLoad::utilization);
    summary.fullest.resize(std::min(nbFullest, summary.fullest.size()));
    return summary;
}

} // namespace tarnex::planning
