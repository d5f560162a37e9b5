/** Finding the links of a network by their ends. */
#ifndef TARNEX_PLANNING_LINK_FINDER_H
#define TARNEX_PLANNING_LINK_FINDER_H

#include "formats/network.h"

#include <cstdint>
#include <optional>
#include <span>
#include <unordered_map>
#include <vector>

namespace tarnex::planning
{

/** The links of one network, which it does not hold on to. */
class LinkFinder
{
public:
    explicit LinkFinder(const Network &network);

    /** The link from a node to another; none when there is none. */
    std::optional<LinkId> between(NodeId from, NodeId to) const;

    /** The links along a path; none when one is missing. */
    std::optional<std::vector<LinkId>> along(std::span<const NodeId> path) const;

private:
    std::unordered_map<std::uint64_t, LinkId> links;
};

} // namespace tarnex::planning

#endif
