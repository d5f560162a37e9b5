#include "planning/names.h"

#include <algorithm>
#include <cstddef>

#include <fmt/format.h>

namespace tarnex::planning
{

namespace
{

/** A node's name, or what stands for it where there is no such node. */
std::string safeName(const Network &network, NodeId node)
{
    const bool isThere = node.isValid() && node.index() < network.nodes.size();
    return isThere ? network.nameOf(node) : fmt::format("node {}", node.value);
}

} // namespace

std::string nameOf(const Network &network, LinkId link)
{
    if (!link.isValid() || link.index() >= network.links.size())
        return fmt::format("link {}", link.value);
    const Link &found = network.links[link.index()];
    return nameOf(network, std::vector{found.from, found.to});
}

std::string nameOf(const Network &network, std::span<const Demand> demands, DemandId demand)
{
    if (!demand.isValid() || demand.index() >= demands.size())
        return fmt::format("demand {}", demand.value);
    const Demand &found = demands[demand.index()];
    if (!found.name.empty())
        return found.name;
    return fmt::format("{} ({})", nameOf(network, std::vector{found.ingress, found.egress}),
                       demand.value);
}

std::string nameOf(const Network &network, std::span<const NodeId> path)
{
    std::string text;
    for (const NodeId node : path) {
        text += text.empty() ? "" : " > ";
        text += safeName(network, node);
    }
    return text;
}

std::optional<NodeId> nodeNamed(const Network &network, std::string_view name)
{
    const auto found = std::ranges::find(network.nodes, name, &Node::name);
    if (found == network.nodes.end())
        return std::nullopt;
    return NodeId{static_cast<std::int32_t>(found - network.nodes.begin())};
}

} // namespace tarnex::planning
