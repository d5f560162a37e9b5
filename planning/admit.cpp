#include "planning/admit.h"

#include <algorithm>
#include <cstddef>
#include <numeric>
#include <utility>

namespace tarnex::planning
{

namespace
{

constexpr double rounding = 1e-9; ///< of the capacity

/** Sets LSPs up again as they were; returns the primaries that the engine does not take back. */
std::vector<LspId> takeBack(Engine &engine, const std::vector<Lsp> &lsps)
{
    std::vector<LspId> lost;
    const auto isLost = [&lost](LspId primary) {
        return std::ranges::find(lost, primary) != lost.end();
    };
    for (const Lsp &lsp : lsps) {
        if (!lsp.isBackup()) {
            const Request request{.ingress = lsp.path.nodes.front(),
                                  .egress = lsp.path.nodes.back(),
                                  .bandwidth = lsp.bandwidth,
                                  .classType = lsp.classType,
                                  .level = lsp.level,
                                  .id = lsp.id};
            if (!engine.add(request, lsp.path.nodes))
                lost.push_back(lsp.id);
        } else if (!isLost(lsp.protects.primary)) {
            if (!engine.add({.primary = lsp.protects.primary,
                             .kind = lsp.kind,
                             .path = lsp.path.nodes,
                             .id = lsp.id})) {
                engine.remove(lsp.protects.primary);
                lost.push_back(lsp.protects.primary);
            }
        }
    }
    return lost;
}

} // namespace

bool isOverbooked(const LinkUse &use)
{
    for (std::size_t c = 0; c < use.capacity.size(); ++c) {
        const double reserved = std::accumulate(use.total[c].begin(), use.total[c].end(), 0.0);
        if (reserved > use.capacity[c] * (1.0 + rounding))
            return true;
    }
    return false;
}

Admission admit(Engine &engine, const Request &request)
{
    Result<Placement> placement = engine.place(request);
    if (!placement || placement->victims.empty() || !engine.options().testsCapacity)
        return {.placement = std::move(placement), .lost = {}};
    const auto isFull = [&engine](LinkId link) { return isOverbooked(engine.use(link)); };
    if (std::ranges::none_of(placement->path.links, isFull))
        return {.placement = std::move(placement), .lost = {}};
    engine.remove(placement->id);
    std::vector<LspId> lost = takeBack(engine, placement->victims);
    Request gentle = request;
    gentle.mayPreempt = false;
    return {.placement = engine.place(gentle), .isTakenBack = true, .lost = std::move(lost)};
}

} // namespace tarnex::planning
