/** What can be said of a network and demands before anything is placed. */
#ifndef TARNEX_PLANNING_NETWORK_FACTS_H
#define TARNEX_PLANNING_NETWORK_FACTS_H

#include "formats/network.h"
#include "planning/summary.h"

#include <cstddef>
#include <span>
#include <vector>

namespace tarnex::planning
{

/** Capacities of the links in one class type; all 0 without links. */
struct CapacityFacts {
    double total = 0.0;
    double smallest = 0.0;
    double largest = 0.0;
};

/** A network in figures. */
struct NetworkFacts {
    std::size_t nbNodes = 0;
    std::size_t nbLinks = 0;
    std::vector<CapacityFacts> capacity;      ///< by class type
    std::vector<std::vector<Amount>> demands; ///< `[classType][level]`
    Amount allDemands;
    /** Nodes that all reach each other over directed links, largest set first; equal ones by their
     * first node. */
    std::vector<std::vector<NodeId>> components;
    std::size_t diameter = 0;   ///< links on the longest of the shortest paths within the largest
    double averageDegree = 0.0; ///< links out of a node
    std::vector<LinkId> linksWithoutReverse; ///< no link leads back
    std::size_t nbIsolated = 0;              ///< nodes without any link
};

/** Looks a network over. The diameter costs a walk over the network per node. */
NetworkFacts factsOf(const Network &network, std::span<const Demand> demands);

} // namespace tarnex::planning

#endif
