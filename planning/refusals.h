/** Refusals in names. */
#ifndef TARNEX_PLANNING_REFUSALS_H
#define TARNEX_PLANNING_REFUSALS_H

#include "formats/plan.h"

#include <string>
#include <vector>

namespace tarnex::planning
{

/** A link in the way, by name. */
struct NamedLink {
    LinkId link;
    std::string name;
    double room = 0.0;     ///< the largest bandwidth that it would take on the same terms
    double capacity = 0.0; ///< in the class type asked for
};

/** Why not. */
struct NamedRefusal {
    Reason reason = Reason::noRoom;
    std::string sentence; ///< with names in place of ids
    double largestBandwidth = 0.0;
    std::vector<NamedLink> inTheWay; ///< by id
};

/** "no room for 70 from Rome to Oslo: at most 12.5 would fit". */
std::string sentenceOf(const Network &network, const Demand &demand, const Refusal &refusal);

/** A refusal of a demand, from an engine or out of a plan, with names. */
NamedRefusal named(const Network &network, const Demand &demand, const Refusal &refusal);

} // namespace tarnex::planning

#endif
