/** What can fail at once in a network. */
#ifndef TARNEX_PLANNING_FAILURES_H
#define TARNEX_PLANNING_FAILURES_H

#include "formats/network.h"

#include <string>
#include <string_view>
#include <vector>

namespace tarnex::planning
{

/** Which failures are looked at. */
enum class FailureSet {
    links,  ///< every link, in its one direction
    duplex, ///< every pair of nodes with links: these in both directions
    nodes,  ///< every node, with all its links
    pairs   ///< every two of `duplex` at once
};

/** Links and nodes that fail at once. */
struct Failure {
    std::string name; ///< "Rome > Oslo", "Rome - Oslo", "Rome", or two with " + " in between
    FailureSet kind = FailureSet::links;
    std::vector<LinkId> links; ///< those of the nodes among them, ascending
    std::vector<NodeId> nodes;

    /** Whether one link or one node fails, against which backups share bandwidth. */
    bool isSingle() const { return kind == FailureSet::nodes || links.size() == 1; }
};

/** "links", "duplex", "nodes" or "pairs". */
std::string_view nameOf(FailureSet set);

/** The failures of a set, in the order of the links or nodes. */
std::vector<Failure> failuresOf(const Network &network, FailureSet set);

} // namespace tarnex::planning

#endif
