#include "planning/setup.h"

#include "planning/names.h"

#include <algorithm>
#include <cstddef>
#include <set>
#include <utility>
#include <variant>

#include <fmt/format.h>

namespace tarnex::planning
{

namespace
{

void require(const Plan &plan, DemandId id, const std::optional<Refusal> &refusal)
{
    if (refusal)
        throw SetUpError(fmt::format("{} cannot be set up: {}",
                                     nameOf(plan.network, plan.demands, id),
                                     textOf(refusal->reason)));
}

} // namespace

Options optionsFor(const Network &network, Options options)
{
    if (network.classes.empty() || network.classes.size() > maxClassTypes)
        throw WrongUse(fmt::format("a network has 1 to {} classes", maxClassTypes));
    if (network.levels.empty() || network.levels.size() > maxLevels)
        throw WrongUse(fmt::format("a network has 1 to {} levels", maxLevels));
    options.classTypes = static_cast<int>(network.classes.size());
    options.levels = static_cast<int>(network.levels.size());
    return options;
}

Engine engineOf(const Network &network, const Options &options)
{
    Engine engine{options};
    for (std::size_t i = 0; i < network.nodes.size(); ++i)
        engine.addNode(NodeId{static_cast<std::int32_t>(i)});
    for (std::size_t i = 0; i < network.links.size(); ++i) {
        const Link &link = network.links[i];
        engine.addLink({.id = LinkId{static_cast<std::int32_t>(i)},
                        .from = link.from,
                        .to = link.to,
                        .capacity = link.capacity});
    }
    return engine;
}

Request requestOf(const Demand &demand, DemandId id, bool mayPreempt)
{
    return {.ingress = demand.ingress,
            .egress = demand.egress,
            .bandwidth = demand.bandwidth,
            .classType = demand.classType,
            .level = demand.level,
            .mayPreempt = mayPreempt,
            .id = lspOf(id)};
}

std::optional<Refusal> setUpPrimary(Engine &engine, const Demand &demand, DemandId id,
                                    const PlannedLsp &lsp)
{
    const auto placed = engine.add(requestOf(demand, id, false), lsp.path);
    return placed ? std::nullopt : std::optional{placed.refusal()};
}

std::optional<Refusal> setUpBackups(Engine &engine, DemandId id, const PlannedLsp &lsp, LspId first)
{
    LspId next = first;
    for (const PlannedBackup &backup : lsp.backups) {
        const auto added = engine.add(
            {.primary = lspOf(id), .kind = backup.kind, .path = backup.path, .id = next});
        if (!added) {
            while (next > first)
                engine.remove(LspId{--next.value});
            return added.refusal();
        }
        ++next.value;
    }
    return std::nullopt;
}

Engine setUp(const Plan &plan)
{
    Engine engine = setUpPrimaries(plan, plan.options.engine);
    LspId firstBackup{static_cast<std::int32_t>(plan.demands.size())};
    for (const DemandId id : plan.setUp) {
        const auto &lsp = std::get<PlannedLsp>(plan.outcomes[id.index()]);
        require(plan, id, setUpBackups(engine, id, lsp, firstBackup));
        firstBackup.value += static_cast<std::int32_t>(lsp.backups.size());
    }
    return engine;
}

Engine setUpPrimaries(const Plan &plan, const Options &options)
{
    Engine engine = engineOf(plan.network, optionsFor(plan.network, options));
    const auto nbPlaced = std::ranges::count_if(plan.outcomes, [](const Outcome &outcome) {
        return std::holds_alternative<PlannedLsp>(outcome);
    });
    const std::set<DemandId> named(plan.setUp.begin(), plan.setUp.end());
    if (named.size() != plan.setUp.size() || !std::cmp_equal(named.size(), nbPlaced))
        throw SetUpError(
            fmt::format("the order of setting up names {} demands {} times, of {} that "
                        "are placed",
                        named.size(), plan.setUp.size(), nbPlaced));
    for (const DemandId id : plan.setUp) {
        const auto *lsp = std::get_if<PlannedLsp>(&plan.outcomes.at(id.index()));
        if (!lsp)
            throw SetUpError(fmt::format("{} is to be set up, but was not placed",
                                         nameOf(plan.network, plan.demands, id)));
        require(plan, id, setUpPrimary(engine, plan.demands.at(id.index()), id, *lsp));
    }
    return engine;
}

PlannedBackup plannedBackup(const Lsp &backup)
{
    return {.kind = backup.kind,
            .path = backup.path.nodes,
            .protectedLinks = backup.protects.links,
            .protectedNodes = backup.protects.nodes};
}

PlannedUse plannedUse(const Engine &engine, LinkId link)
{
    const LinkUse use = engine.use(link);
    const auto levels = static_cast<std::ptrdiff_t>(engine.options().levels);
    const auto used = [&](const PerLevel &table) {
        std::vector<std::vector<double>> rows;
        for (std::size_t c = 0; c < static_cast<std::size_t>(engine.options().classTypes); ++c)
            rows.emplace_back(table[c].begin(), table[c].begin() + levels);
        return rows;
    };
    return {.primary = used(use.primary), .total = used(use.total)};
}

} // namespace tarnex::planning
