/**
 * What the LSPs of a plan reserve, by plain addition over LSPs, links and failures, with nothing
 * from an engine.
 *
 * Primaries reserve their bandwidth on their links, at their level. For the failure of a link, or
 * of a node, that is of all links into it, a link needs what the backups take that it activates
 * less what the primaries leave that it breaks; backups count at level 0. The largest need over all
 * failures, level 0 to p together, is reserved on top for these levels.
 */
#ifndef TARNEX_PLANNING_RESERVATIONS_H
#define TARNEX_PLANNING_RESERVATIONS_H

#include "formats/plan.h"

#include <vector>

namespace tarnex::planning
{

/** What a link reserves. */
struct Reservation {
    PlannedUse use;
    std::vector<double> handled; ///< by class type: everything that was added up for it, without
                                 ///< signs; roundings are in proportion to it
};

/** The reservations of a plan by link. Its network, demands, paths and backups are sound. */
std::vector<Reservation> reservationsOf(const Plan &plan);

/** What the plan says that its links reserve or, if it was made by hand and does not tell, what
 * they do. */
std::vector<PlannedUse> usesOf(const Plan &plan);

} // namespace tarnex::planning

#endif
