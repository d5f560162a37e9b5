#include "planning/refusals.h"

#include "formats/bandwidth.h"
#include "planning/names.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <string>

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

/** Of the capacities in the network; what is less is rounding, and not worth mentioning. */
constexpr double negligibleShare = 1e-12;

/** A bandwidth in six digits that say no more than there is. */
std::string roundedDown(double bandwidth)
{
    const double unit = std::pow(10.0, std::floor(std::log10(bandwidth)) - 5.0);
    const double nearest = std::round(bandwidth / unit);
    const bool isNearest = std::abs(bandwidth / unit - nearest) < 1e-6;
    return formats::formatBandwidth((isNearest ? nearest : std::floor(bandwidth / unit)) * unit);
}

double largestCapacity(const Network &network, int classType)
{
    double largest = 0.0;
    for (std::size_t i = 0; i < network.links.size(); ++i)
        largest =
            std::max(largest, capacityOf(network, LinkId{static_cast<std::int32_t>(i)}, classType));
    return largest;
}

} // namespace

std::string sentenceOf(const Network &network, const Demand &demand, const Refusal &refusal)
{
    const std::string unit = network.unit.empty() ? "" : " " + network.unit;
    const std::string ends =
        fmt::format("from {} to {}", nameOf(network, std::vector{demand.ingress}),
                    nameOf(network, std::vector{demand.egress}));
    const std::string amount =
        fmt::format("{}{}", formats::formatBandwidth(demand.bandwidth), unit);
    const bool doesLessFit =
        refusal.largestBandwidth > negligibleShare * largestCapacity(network, demand.classType);
    const std::string fits = doesLessFit ? fmt::format(": at most {}{} would fit",
                                                       roundedDown(refusal.largestBandwidth), unit)
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
