#include "planning/refusals.h"

#include "planning/names.h"

#include <cstddef>

#include <fmt/format.h>

namespace tarnex::planning
{

namespace
{

double capacityOf(const Network &network, LinkId link, int classType)
{
    const auto &capacity = network.links[link.index()].capacity;
    const auto at = static_cast<std::size_t>(classType);
    return at < capacity.size() ? capacity[at] : 0.0;
}

} // namespace

std::string sentenceOf(const Network &network, const Demand &demand, const Refusal &refusal)
{
    const std::string unit = network.unit.empty() ? "" : " " + network.unit;
    const std::string ends =
        fmt::format("from {} to {}", nameOf(network, std::vector{demand.ingress}),
                    nameOf(network, std::vector{demand.egress}));
    const std::string amount = fmt::format("{}{}", demand.bandwidth, unit);
    const std::string fits =
        refusal.largestBandwidth > 0.0
            ? fmt::format(": at most {}{} would fit", refusal.largestBandwidth, unit)
            : "";
    switch (refusal.reason) {
    case Reason::noSuchNode:
        return fmt::format("no such node {}", ends);
    case Reason::sameEnds:
        return fmt::format("same ends {}", ends);
    case Reason::notConnected:
        return fmt::format("not connected {}", ends);
    case Reason::noRoom:
        return fmt::format("no room for {} {}{}", amount, ends, fits);
    case Reason::noDisjointPath:
        return fmt::format("no disjoint path for a backup {}", ends);
    case Reason::noRoomForDisjointPath:
        return fmt::format("no room for a disjoint path for a backup of {} {}{}", amount, ends,
                           fits);
    }
    return {};
}

NamedRefusal named(const Network &network, const Demand &demand, const Refusal &refusal)
{
    NamedRefusal result{.reason = refusal.reason,
                        .sentence = sentenceOf(network, demand, refusal),
                        .largestBandwidth = refusal.largestBandwidth,
                        .inTheWay = {}};
    for (const auto &[link, room] : refusal.inTheWay)
        result.inTheWay.push_back({.link = link,
                                   .name = nameOf(network, link),
                                   .room = room,
                                   .capacity = capacityOf(network, link, demand.classType)});
    return result;
}

} // namespace tarnex::planning
