/**
 * Placing and protecting demands.
 *
 * Placed by level, the LSPs of a level are protected before the next level is placed: the
 * protection of an important LSP comes before the path of an unimportant one. In any other order
 * all demands are placed first, and LSPs that had to give way placed again in rounds; then the LSPs
 * are protected, most important level first. Backups sit at level 0, where nothing makes them give
 * way: made at once, those of an unimportant LSP would keep out an important one that comes later,
 * and those of an LSP that gives way would be made for nothing.
 */
#ifndef TARNEX_PLANNING_PLACE_H
#define TARNEX_PLANNING_PLACE_H

#include "formats/plan.h"
#include "planning/progress.h"

#include <vector>

namespace tarnex::planning
{

/**
 * Places demands on a network.
 *
 * A demand whose ends are the same is refused; one without bandwidth is left out, as is one that
 * was not reached before `progress` had the operation stop. What comes back is a plan in any case:
 * `setUp` has the LSPs in the order in which each was set up last, and `use` is what an engine
 * reserves that sets them up in this order.
 *
 * `options.engine.classTypes` and `levels` are taken from the network. WrongUse when the network or
 * a demand is not sound: a node, class or level that the network does not have, a bandwidth that is
 * no number or below 0.
 */
Plan place(Network network, std::vector<Demand> demands, PlanOptions options, Progress &progress);

/**
 * Goes on from a plan, on its options: sets up its LSPs as they are, then places and protects more
 * demands, whose ids follow those of the plan. LSPs of the plan that have to give way are placed
 * again and protected like the others; its other demands are not looked at again. SetUpError when
 * its LSPs cannot be set up.
 */
Plan placeMore(Plan plan, std::vector<Demand> more, Progress &progress);

} // namespace tarnex::planning

#endif
