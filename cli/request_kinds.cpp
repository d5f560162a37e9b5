#include "cli/request_kinds.h"

#include "planning/setup.h"

#include <algorithm>

namespace tarnex::cli
{

namespace
{

using Clock = std::chrono::steady_clock;

/** Far more than any link has. */
constexpr double tooMuch = 1e15;

/** An engine with a level more than needed, if there is one only: somebody has to give way. */
Engine engineFor(const Network &network)
{
    Options options = planning::optionsFor(network, {});
    options.levels = std::max(options.levels, 2);
    return planning::engineOf(network, options);
}

} // namespace

const char *wordsFor(RequestKind kind)
{
    switch (kind) {
    case RequestKind::pathOnly:
        return "path only";
    case RequestKind::placeAndRemove:
        return "place and remove";
    case RequestKind::preemption:
        return "place, others giving way";
    case RequestKind::localProtection:
        return "protect locally";
    case RequestKind::globalProtection:
        return "protect globally";
    case RequestKind::refusal:
        return "refused, with the reason";
    }
    return "";
}

RequestBench::RequestBench(const Network &network, const std::vector<Demand> &demands)
    : all(demands), engine(engineFor(network)), preempting(demands.size())
{
    for (std::size_t i = 0; i < all.size(); ++i)
        if (all[i].ingress != all[i].egress)
            engine.place(requestFor(i));
}

Request RequestBench::requestFor(std::size_t round) const
{
    const Demand &demand = all[round % all.size()];
    return {.ingress = demand.ingress,
            .egress = demand.egress,
            .bandwidth = demand.bandwidth,
            .classType = demand.classType,
            .level = engine.options().levels - 1,
            .mayPreempt = false,
            .id = {}};
}

std::optional<RequestBench::Duration> RequestBench::next(RequestKind kind, std::size_t round)
{
    const Request request = requestFor(round);
    switch (kind) {
    case RequestKind::pathOnly:
        return propose(request);
    case RequestKind::placeAndRemove:
        return placeAndRemove(request);
    case RequestKind::preemption:
        return preempt(request, round);
    case RequestKind::localProtection:
        return protect(request, Scheme::local);
    case RequestKind::globalProtection:
        return protect(request, Scheme::global);
    case RequestKind::refusal:
        return refuse(request);
    }
    return std::nullopt;
}

std::optional<RequestBench::Duration> RequestBench::placeAndRemove(const Request &request)
{
    const auto begin = Clock::now();
    const auto placed = engine.place(request);
    if (!placed)
        return std::nullopt;
    engine.remove(placed->id);
    return Clock::now() - begin;
}

std::optional<RequestBench::Duration> RequestBench::propose(const Request &request)
{
    const auto begin = Clock::now();
    const auto proposed = engine.propose(request);
    const auto end = Clock::now();
    return proposed ? std::optional{end - begin} : std::nullopt;
}

std::optional<double> RequestBench::bandwidthThatPreempts(const Request &request)
{
    Request more = request;
    more.mayPreempt = false;
    more.bandwidth = tooMuch;
    const auto refusal = engine.explain(more);
    if (!refusal)
        return std::nullopt;
    more.mayPreempt = true;
    more.bandwidth = refusal->largestBandwidth + request.bandwidth;
    const auto proposed = engine.propose(more);
    return proposed && !proposed->victims.empty() ? std::optional{more.bandwidth} : std::nullopt;
}

std::optional<RequestBench::Duration> RequestBench::preempt(Request request, std::size_t round)
{
    request.level = 0;
    request.mayPreempt = true;
    auto &bandwidth = preempting[round % preempting.size()];
    if (!bandwidth)
        bandwidth = bandwidthThatPreempts(request).value_or(0.0);
    if (*bandwidth == 0.0)
        return std::nullopt;
    request.bandwidth = *bandwidth;

    const auto begin = Clock::now();
    const auto placed = engine.place(request);
    const auto end = Clock::now();
    if (!placed)
        return std::nullopt;
    engine.remove(placed->id);
    for (const Lsp &victim : placed->victims)
        engine.add({.ingress = victim.path.nodes.front(),
                    .egress = victim.path.nodes.back(),
                    .bandwidth = victim.bandwidth,
                    .classType = victim.classType,
                    .level = victim.level,
                    .mayPreempt = false,
                    .id = victim.id},
                   victim.path.nodes);
    return end - begin;
}

std::optional<RequestBench::Duration> RequestBench::protect(const Request &request, Scheme scheme)
{
    const auto placed = engine.place(request);
    if (!placed)
        return std::nullopt;
    const auto begin = Clock::now();
    const auto protection = engine.protect(placed->id, scheme);
    const auto end = Clock::now();
    engine.remove(placed->id);
    return protection ? std::optional{end - begin} : std::nullopt;
}

std::optional<RequestBench::Duration> RequestBench::refuse(Request request)
{
    request.bandwidth = tooMuch;
    const auto begin = Clock::now();
    const auto placed = engine.place(request);
    const auto end = Clock::now();
    return placed ? std::nullopt : std::optional{end - begin};
}

} // namespace tarnex::cli
