#include "planning/link_finder.h"

#include <cstddef>

namespace tarnex::planning
{

namespace
{

std::uint64_t keyOf(NodeId from, NodeId to)
{
    return std::uint64_t{static_cast<std::uint32_t>(from.value)} << 32 |
           static_cast<std::uint32_t>(to.value);
}

} // namespace

LinkFinder::LinkFinder(const Network &network)
{
    links.reserve(network.links.size());
    for (std::size_t i = 0; i < network.links.size(); ++i)
        links.emplace(keyOf(network.links[i].from, network.links[i].to),
                      LinkId{static_cast<std::int32_t>(i)});
}

std::optional<LinkId> LinkFinder::between(NodeId from, NodeId to) const
{
    const auto found = links.find(keyOf(from, to));
    return found == links.end() ? std::nullopt : std::optional{found->second};
}

std::optional<std::vector<LinkId>> LinkFinder::along(std::span<const NodeId> path) const
{
    std::vector<LinkId> found;
    for (std::size_t i = 1; i < path.size(); ++i) {
        const auto link = between(path[i - 1], path[i]);
        if (!link)
            return std::nullopt;
        found.push_back(*link);
    }
    return found;
}

} // namespace tarnex::planning
