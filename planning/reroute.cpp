#include "planning/reroute.h"

#include "planning/admit.h"
#include "planning/child.h"
#include "planning/reservations.h"
#include "planning/setup.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <map>
#include <numeric>
#include <set>
#include <string>
#include <utility>

namespace tarnex::planning
{

namespace
{

using Numbers = std::vector<std::int32_t>;

/** Of each: the id, the reason, how many links, the links. */
std::string packed(const std::vector<ReroutedLsp> &lsps)
{
    Numbers numbers;
    for (const ReroutedLsp &lsp : lsps) {
        numbers.insert(numbers.end(), {lsp.id.value, static_cast<std::int32_t>(lsp.reason),
                                       static_cast<std::int32_t>(lsp.links.size())});
        for (const LinkId link : lsp.links)
            numbers.push_back(link.value);
    }
    return {reinterpret_cast<const char *>(numbers.data()), numbers.size() * sizeof(numbers[0])};
}

std::vector<ReroutedLsp> unpacked(const std::string &bytes)
{
    Numbers numbers(bytes.size() / sizeof(Numbers::value_type));
    std::memcpy(numbers.data(), bytes.data(), bytes.size());
    std::vector<ReroutedLsp> lsps;
    for (auto at = numbers.begin(); at != numbers.end();) {
        ReroutedLsp &lsp =
            lsps.emplace_back(ReroutedLsp{DemandId{at[0]}, {}, static_cast<Reason>(at[1])});
        const auto links = at + 3;
        at = links + at[2];
        std::transform(links, at, std::back_inserter(lsp.links),
                       [](std::int32_t id) { return LinkId{id}; });
    }
    return lsps;
}

double sum(const std::vector<double> &levels)
{
    return std::accumulate(levels.begin(), levels.end(), 0.0);
}

/** What a class type has left on a link, as far as sums that round differently can tell. */
double roomLeft(const Engine &engine, const Link &link, LinkId id, std::size_t classType)
{
    const auto &total = engine.use(id).total[classType];
    const double free = link.capacity[classType] - std::accumulate(total.begin(), total.end(), 0.0);
    return std::max(0.0, free * (1.0 - 1e-12));
}

/** For many requests: nobody asks what would fit, nor for backups. */
Options inBrief(Options options)
{
    options.explainsRefusals = false;
    options.allowsBackups = false;
    return options;
}

} // namespace

std::string_view nameOf(Reroute reroute)
{
    switch (reroute) {
    case Reroute::no:
        return "no";
    case Reroute::gently:
        return "gently";
    case Reroute::preempting:
        return "preempting";
    }
    return {};
}

Rerouter::Rerouter(const Plan &borrowed, Reroute reroute)
    : plan(borrowed), preempts(reroute == Reroute::preempting),
      engine(setUpPrimaries(borrowed, inBrief(borrowed.options.engine)))
{
    reserveForBackups();
}

void Rerouter::reserveForBackups()
{
    LspId next{static_cast<std::int32_t>(plan.demands.size())};
    const std::vector<PlannedUse> uses = usesOf(plan);
    for (std::size_t i = 0; i < plan.network.links.size(); ++i) {
        const Link &link = plan.network.links[i];
        const std::array<NodeId, 2> hop{link.from, link.to};
        for (std::size_t c = 0; c < plan.network.classes.size(); ++c) {
            const PlannedUse &use = uses[i];
            Request request{.ingress = link.from,
                            .egress = link.to,
                            .bandwidth = std::max(0.0, sum(use.total[c]) - sum(use.primary[c])),
                            .classType = static_cast<int>(c),
                            .id = next};
            ++next.value;
            if (request.bandwidth == 0.0 || engine.add(request, hop))
                continue;
            request.bandwidth = roomLeft(engine, link, LinkId{static_cast<std::int32_t>(i)}, c);
            static_cast<void>(engine.add(request, hop)); // or else the link is full without it
        }
    }
}

std::vector<ReroutedLsp> Rerouter::reroute(std::span<const DemandId> lost,
                                           std::span<const DemandId> ended,
                                           std::span<const LinkId> failed)
{
    if (lost.empty())
        return {};
    // Taking LSPs out and putting them back leaves sums that differ in the last bits. In a process
    // of its own nothing has to be put back, and no failure depends on those tried before.
    return unpacked(inChild([&] { return packed(tryOut(lost, ended, failed)); }));
}

std::vector<ReroutedLsp> Rerouter::tryOut(std::span<const DemandId> lost,
                                          std::span<const DemandId> ended,
                                          std::span<const LinkId> failed)
{
    for (const auto &gone : {lost, ended}) {
        for (const DemandId id : gone)
            engine.remove(lspOf(id));
    }
    const auto place = [this](DemandId id) {
        return std::pair{plan.demands[id.index()].level, id};
    };
    std::set<std::pair<int, DemandId>> waiting;
    for (const DemandId id : lost)
        waiting.insert(place(id));
    std::map<DemandId, ReroutedLsp> tried;
    while (!waiting.empty()) {
        const DemandId id = waiting.extract(waiting.begin()).value().second;
        Request request = requestOf(plan.demands[id.index()], id, preempts);
        request.avoid = failed;
        const Admission admission = admit(engine, request);
        ReroutedLsp &lsp = tried[id];
        lsp = {id, {}, Reason::noRoom};
        if (admission.placement)
            lsp.links = admission.placement->path.links;
        else
            lsp.reason = admission.placement.refusal().reason;
        for (const LspId out : admission.lost)
            waiting.insert(place(demandOf(out)));
        if (!admission.placement)
            continue;
        for (const Lsp &victim : admission.placement->victims) {
            if (!victim.isBackup())
                waiting.insert(place(demandOf(victim.id)));
        }
    }
    std::vector<ReroutedLsp> all;
    all.reserve(tried.size());
    for (auto &[id, lsp] : tried)
        all.push_back(std::move(lsp));
    return all;
}

} // namespace tarnex::planning
