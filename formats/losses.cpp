#include "formats/number.h"
#include "formats/words.h"
#include "formats/writers.h"

#include <fmt/format.h>

#include <algorithm>

namespace tarnex::formats
{

namespace
{

/** What a format has a place for. */
struct Holds {
    bool networkName = true;
    bool classes = true;
    bool levels = true;
    bool demands = true;
    bool hosts = false;
    bool anyName = true; ///< of nodes and demands, else single words
    bool anyUnit = true; ///< else kbit/s
};

Holds whatHolds(Format format)
{
    switch (format) {
    case Format::sndlibNative:
        return {.classes = false, .levels = false, .anyName = false};
    case Format::repetita:
        return {.networkName = false,
                .classes = false,
                .levels = false,
                .anyName = false,
                .anyUnit = false};
    case Format::graphml:
        return {.demands = false};
    case Format::dot:
        return {.demands = false, .hosts = true};
    default:
        return {.hosts = true};
    }
}

void noteNames(const Network &network, std::span<const Demand> demands, Remarks &remarks)
{
    const std::vector<std::string> words = nodeWords(network, "()#");
    for (std::size_t i = 0; i < words.size(); ++i)
        if (words[i] != network.nodes[i].name)
            remarks.note("names of nodes", "written as single words", network.nodes[i].name, false);
    const std::vector<std::string> ids = demandWords(demands, "D", "()");
    for (std::size_t i = 0; i < ids.size(); ++i)
        if (!demands[i].name.empty() && ids[i] != demands[i].name)
            remarks.note("names of demands", "written as single words", demands[i].name, false);
}

void noteUnit(const Network &network, Remarks &remarks)
{
    if (network.unit == "kbit/s")
        return;
    const std::string what = network.unit.empty() ? "bandwidths without a unit"
                                                  : fmt::format("bandwidths in {}", network.unit);
    remarks.choose(what, bitsPerSecond(network.unit) ? "converted to kbit/s"
                                                     : "written as if they were kbit/s");
}

} // namespace

void noteLosses(Format format, const Network &network, std::span<const Demand> demands,
                Remarks &remarks)
{
    const Holds holds = whatHolds(format);
    const auto lose = [&](bool isHeld, bool isThere, const std::string &what,
                          const std::string &done) {
        if (!isHeld && isThere)
            remarks.choose(what, done);
    };
    const bool hasHosts = std::any_of(network.nodes.begin(), network.nodes.end(),
                                      [](const Node &node) { return !node.hosts.empty(); });
    lose(holds.networkName, !network.name.empty(), "name of the network", "left out");
    lose(holds.classes, hasClasses(network), counted(network.classes.size(), "class type"),
         "left out; a link gets the sum of their capacities");
    lose(holds.levels, hasLevels(network), counted(network.levels.size(), "level"), "left out");
    lose(holds.demands, !demands.empty(), counted(demands.size(), "demand"), "left out");
    lose(holds.hosts, hasHosts, "hosts", "left out");
    if (!holds.anyName)
        noteNames(network, demands, remarks);
    if (!holds.anyUnit)
        noteUnit(network, remarks);
    if (format == Format::repetita)
        remarks.choose("weights and delays", "written as 1 and 0");
}

} // namespace tarnex::formats
