#include "planning/network_facts.h"

#include "planning/link_finder.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace tarnex::planning
{

namespace
{

using Neighbours = std::vector<std::vector<std::size_t>>; ///< by node

/** Neighbours over the links, or against them. */
Neighbours neighboursOf(const Network &network, bool isForwards)
{
    Neighbours neighbours(network.nodes.size());
    for (const Link &link : network.links) {
        const auto [from, to] = std::pair{link.from.index(), link.to.index()};
        neighbours[isForwards ? from : to].push_back(isForwards ? to : from);
    }
    return neighbours;
}

/** The nodes in the order in which a walk in depth is done with them. */
std::vector<std::size_t> finishingOrder(const Neighbours &neighbours)
{
    std::vector<std::size_t> finished;
    std::vector<bool> isSeen(neighbours.size());
    std::vector<std::pair<std::size_t, std::size_t>> way; ///< node, and which neighbour is next
    for (std::size_t root = 0; root < neighbours.size(); ++root) {
        if (isSeen[root])
            continue;
        isSeen[root] = true;
        way.emplace_back(root, 0);
        while (!way.empty()) {
            auto &[node, next] = way.back();
            if (next == neighbours[node].size()) {
                finished.push_back(node);
                way.pop_back();
                continue;
            }
            const std::size_t neighbour = neighbours[node][next++];
            if (!isSeen[neighbour]) {
                isSeen[neighbour] = true;
                way.emplace_back(neighbour, 0);
            }
        }
    }
    return finished;
}

/** Strongly connected components by two walks, over the links and then against them. */
std::vector<std::vector<NodeId>> componentsOf(const Network &network)
{
    std::vector<std::size_t> order = finishingOrder(neighboursOf(network, true));
    std::ranges::reverse(order);
    const Neighbours backwards = neighboursOf(network, false);
    std::vector<bool> isTaken(network.nodes.size());
    std::vector<std::vector<NodeId>> components;
    for (const std::size_t root : order) {
        if (isTaken[root])
            continue;
        isTaken[root] = true;
        std::vector<std::size_t> members{root};
        for (std::size_t i = 0; i < members.size(); ++i) {
            for (const std::size_t neighbour : backwards[members[i]]) {
                if (!isTaken[neighbour]) {
                    isTaken[neighbour] = true;
                    members.push_back(neighbour);
                }
            }
        }
        std::ranges::sort(members);
        auto &component = components.emplace_back();
        for (const std::size_t member : members)
            component.emplace_back(static_cast<std::int32_t>(member));
    }
    std::ranges::sort(components, [](const auto &a, const auto &b) {
        return std::pair{b.size(), a.front()} < std::pair{a.size(), b.front()};
    });
    return components;
}

/** The largest number of links on a shortest path from one of `nodes` to another. */
std::size_t diameterOf(const Neighbours &neighbours, const std::vector<NodeId> &nodes)
{
    constexpr auto notSeen = std::numeric_limits<std::size_t>::max();
    std::size_t diameter = 0;
    for (const NodeId start : nodes) {
        std::vector<std::size_t> hops(neighbours.size(), notSeen);
        std::vector<std::size_t> seen{start.index()};
        hops[start.index()] = 0;
        for (std::size_t i = 0; i < seen.size(); ++i) {
            for (const std::size_t neighbour : neighbours[seen[i]]) {
                if (hops[neighbour] == notSeen) {
                    hops[neighbour] = hops[seen[i]] + 1;
                    seen.push_back(neighbour);
                }
            }
        }
        for (const NodeId end : nodes)
            diameter = std::max(diameter, hops[end.index()]);
    }
    return diameter;
}

CapacityFacts capacityFacts(const Network &network, std::size_t classType)
{
    CapacityFacts facts;
    for (const Link &link : network.links) {
        const double capacity = classType < link.capacity.size() ? link.capacity[classType] : 0.0;
        const bool isFirst = &link == &network.links.front();
        facts.total += capacity;
        facts.smallest = isFirst ? capacity : std::min(facts.smallest, capacity);
        facts.largest = std::max(facts.largest, capacity);
    }
    return facts;
}

} // namespace

NetworkFacts factsOf(const Network &network, std::span<const Demand> demands)
{
    NetworkFacts facts;
    facts.nbNodes = network.nodes.size();
    facts.nbLinks = network.links.size();
    for (std::size_t c = 0; c < network.classes.size(); ++c)
        facts.capacity.push_back(capacityFacts(network, c));
    facts.demands.assign(network.classes.size(), std::vector<Amount>(network.levels.size()));
    for (const Demand &demand : demands) {
        facts.demands.at(static_cast<std::size_t>(demand.classType))
            .at(static_cast<std::size_t>(demand.level))
            .add(demand.bandwidth);
        facts.allDemands.add(demand.bandwidth);
    }
    facts.components = componentsOf(network);
    const Neighbours out = neighboursOf(network, true);
    if (!facts.components.empty())
        facts.diameter = diameterOf(out, facts.components.front());
    if (facts.nbNodes > 0)
        facts.averageDegree =
            static_cast<double>(facts.nbLinks) / static_cast<double>(facts.nbNodes);
    const Neighbours in = neighboursOf(network, false);
    for (std::size_t node = 0; node < facts.nbNodes; ++node)
        facts.nbIsolated += out[node].empty() && in[node].empty() ? 1 : 0;
    const LinkFinder finder{network};
    for (std::size_t i = 0; i < network.links.size(); ++i) {
        if (!finder.between(network.links[i].to, network.links[i].from))
            facts.linksWithoutReverse.emplace_back(static_cast<std::int32_t>(i));
    }
    return facts;
}

} // namespace tarnex::planning
