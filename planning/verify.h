/**
 * Checking a plan against nothing but its own network, demands and LSPs. Reservations are worked
 * out anew by plain addition, failure by failure; only at the end, and only where nothing was found
 * until then, the LSPs are set up in an engine too and its tables are compared.
 */
#ifndef TARNEX_PLANNING_VERIFY_H
#define TARNEX_PLANNING_VERIFY_H

#include "formats/plan.h"

#include <string>
#include <string_view>
#include <vector>

namespace tarnex::planning
{

/** What is wrong. */
enum class Fault {
    options,       ///< options that no engine takes, or not those of the network
    network,       ///< a node, link or capacity that is not sound
    demand,        ///< a demand's ends, class, level or bandwidth are not sound
    outcome,       ///< outcomes are not one per demand, or one contradicts the demand or another
    path,          ///< a path that the network does not have, or that does not join the ends
    loop,          ///< a path that passes a node twice
    backupKind,    ///< a primary among the backups, or not a whole set of them
    backupEnds,    ///< a backup that does not leave and join its primary where it must
    backupOverlap, ///< a backup that uses what it is to protect against
    claim,         ///< a backup claims more or less than it protects
    setUpOrder,    ///< `setUp` does not list every placed demand once
    capacity,      ///< more is reserved than there is
    primaryUse,    ///< a link's stated reservation by primaries is not theirs
    totalUse,      ///< a link's stated reservation altogether is not what its LSPs need
    engine,        ///< an engine refuses the LSPs, or reserves something else
    unfinished     ///< nothing is said of a demand, as in a plan that was stopped
};

/** "options", "network", ..., "backup kind", ..., "unfinished". */
std::string_view nameOf(Fault fault);

/** One thing that is wrong. */
struct Deviation {
    Fault fault = Fault::options;
    std::string sentence; ///< for people, with names
};

/** Relative difference up to which two sums of the same bandwidths are taken as the same: they may
 * have been added in different orders. */
inline constexpr double sameSum = 1e-9;

/**
 * Everything that is wrong with a plan; empty when it is right. What depends on something that was
 * found wrong is not checked: reservations when a path, demand or the network is not sound.
 *
 * Costs, for every link, the number of failures that anything on it depends on.
 */
std::vector<Deviation> verify(const Plan &plan);

} // namespace tarnex::planning

#endif
