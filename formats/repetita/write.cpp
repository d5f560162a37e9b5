#include "formats/number.h"
#include "formats/words.h"
#include "formats/writers.h"

#include <fmt/ostream.h>

namespace tarnex::formats
{

namespace
{

/** What bandwidths of a network are to be multiplied with to be in kbit/s. */
double toKilobits(const Network &network)
{
    return bitsPerSecond(network.unit).value_or(1e3) / 1e3;
}

} // namespace

void writeRepetitaGraph(std::ostream &out, const Network &network)
{
    const double factor = toKilobits(network);
    const std::vector<std::string> names = nodeWords(network, "");
    fmt::print(out, "NODES {}\nlabel x y\n", network.nodes.size());
    for (std::size_t i = 0; i < names.size(); ++i) {
        const Coordinates at = network.nodes[i].at.value_or(Coordinates{});
        fmt::print(out, "{} {} {}\n", names[i], at.longitude, at.latitude);
    }
    fmt::print(out, "\nEDGES {}\nlabel src dest weight bw delay\n", network.links.size());
    for (std::size_t i = 0; i < network.links.size(); ++i) {
        const Link &link = network.links[i];
        fmt::print(out, "edge_{} {} {} 1 {} 0\n", i, link.from.value, link.to.value,
                   totalCapacity(link) * factor);
    }
}

void writeRepetitaDemands(std::ostream &out, const Network &network,
                          std::span<const Demand> demands)
{
    const double factor = toKilobits(network);
    const std::vector<std::string> names = demandWords(demands, "demand_", "");
    fmt::print(out, "DEMANDS {}\nlabel src dest bw\n", demands.size());
    for (std::size_t i = 0; i < demands.size(); ++i)
        fmt::print(out, "{} {} {} {}\n", names[i], demands[i].ingress.value,
                   demands[i].egress.value, demands[i].bandwidth * factor);
}

} // namespace tarnex::formats
