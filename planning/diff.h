/**
 * What differs between two plans. Nodes are the same by their names, links by the names of their
 * ends, demands by their names or, without one, by ends, class and level by name and their place
 * among those that agree in all of these.
 */
#ifndef TARNEX_PLANNING_DIFF_H
#define TARNEX_PLANNING_DIFF_H

#include "formats/plan.h"

#include <optional>
#include <string>
#include <vector>

namespace tarnex::planning
{

/** What happened to a demand from one plan to the other. */
enum class Change {
    moved,       ///< placed in both, on other paths
    gained,      ///< placed in the second alone
    lost,        ///< placed in the first alone
    reprotected, ///< placed on the same path, with other backups
    resized,     ///< placed on the same path, with another bandwidth
    added,       ///< a demand of the second alone, not placed
    removed      ///< a demand of the first alone, not placed
};

/** A change in words: "other backups". */
const char *wordsFor(Change change);

/** A demand that differs. Its bandwidth, path and backups count as in the first of the changes
 * above that applies. */
struct DemandChange {
    Change change = Change::moved;
    std::string name;
    std::optional<DemandId> before; ///< in the first plan
    std::optional<DemandId> after;  ///< in the second
};

/** A link that reserves more or less in a class type. */
struct LinkChange {
    std::string name;
    std::string className;
    std::optional<LinkId> before; ///< in the first plan
    std::optional<LinkId> after;  ///< in the second
    double reservedBefore = 0.0;
    double reservedAfter = 0.0;
    double capacity = 0.0; ///< in the second plan, or else the first

    /** Reservation gained, as a share of the capacity. */
    double gain() const;
};

/** All differences: demands in the order of the second plan, then those of the first alone; links
 * likewise. */
struct PlanDiff {
    std::vector<DemandChange> demands;
    std::vector<LinkChange> links;
    std::vector<std::string> nodesGained; ///< nodes of the second plan alone
    std::vector<std::string> nodesLost;   ///< nodes of the first plan alone

    bool isEmpty() const
    {
        return demands.empty() && links.empty() && nodesGained.empty() && nodesLost.empty();
    }
};

/** Compares two plans. Links count when they gained or lost more than `share` of the capacity in a
 * class type, 0 to 1, or are in one plan alone. */
PlanDiff diff(const Plan &before, const Plan &after, double share);

} // namespace tarnex::planning

#endif
