#include "planning/failures.h"

#include "planning/link_finder.h"
#include "planning/names.h"

#include <algorithm>
#include <optional>

namespace tarnex::planning
{

namespace
{

LinkId linkAt(std::size_t index) { return LinkId{static_cast<std::int32_t>(index)}; }

std::vector<Failure> everyLink(const Network &network)
{
    std::vector<Failure> failures;
    for (std::size_t i = 0; i < network.links.size(); ++i) {
        const Link &link = network.links[i];
        failures.push_back({network.nameOf(link.from) + " > " + network.nameOf(link.to),
                            FailureSet::links,
                            {linkAt(i)},
                            {}});
    }
    return failures;
}

std::vector<Failure> everyDuplex(const Network &network)
{
    const LinkFinder finder{network};
    std::vector<Failure> failures;
    for (std::size_t i = 0; i < network.links.size(); ++i) {
        const Link &link = network.links[i];
        const std::optional<LinkId> back = finder.between(link.to, link.from);
        if (back && back->index() < i)
            continue; // came with the other direction
        Failure failure{network.nameOf(link.from) + (back ? " - " : " > ") +
                            network.nameOf(link.to),
                        FailureSet::duplex,
                        {linkAt(i)},
                        {}};
        if (back)
            failure.links.push_back(*back);
        failures.push_back(std::move(failure));
    }
    return failures;
}

std::vector<Failure> everyNode(const Network &network)
{
    std::vector<Failure> failures;
    for (std::size_t i = 0; i < network.nodes.size(); ++i)
        failures.push_back(
            {network.nodes[i].name, FailureSet::nodes, {}, {NodeId{static_cast<std::int32_t>(i)}}});
    for (std::size_t i = 0; i < network.links.size(); ++i) {
        failures[network.links[i].from.index()].links.push_back(linkAt(i));
        failures[network.links[i].to.index()].links.push_back(linkAt(i));
    }
    return failures;
}

std::vector<Failure> everyPair(const Network &network)
{
    const std::vector<Failure> singles = everyDuplex(network);
    std::vector<Failure> failures;
    failures.reserve(singles.size() * (singles.size() - 1) / 2);
    for (std::size_t i = 0; i < singles.size(); ++i)
        for (std::size_t j = i + 1; j < singles.size(); ++j) {
            Failure both{singles[i].name + " + " + singles[j].name, FailureSet::pairs, {}, {}};
            std::ranges::merge(singles[i].links, singles[j].links, std::back_inserter(both.links));
            failures.push_back(std::move(both));
        }
    return failures;
}

} // namespace

std::string_view nameOf(FailureSet set)
{
    switch (set) {
    case FailureSet::links:
        return "links";
    case FailureSet::duplex:
        return "duplex";
    case FailureSet::nodes:
        return "nodes";
    case FailureSet::pairs:
        return "pairs";
    }
    return {};
}

std::vector<Failure> failuresOf(const Network &network, FailureSet set)
{
    switch (set) {
    case FailureSet::links:
        return everyLink(network);
    case FailureSet::duplex:
        return everyDuplex(network);
    case FailureSet::nodes:
        return everyNode(network);
    case FailureSet::pairs:
        return everyPair(network);
    }
    return {};
}

} // namespace tarnex::planning
