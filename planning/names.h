/** What people call the parts of a network and its demands. */
#ifndef TARNEX_PLANNING_NAMES_H
#define TARNEX_PLANNING_NAMES_H

#include "formats/plan.h"

#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace tarnex::planning
{

/** "Rome - Oslo". */
std::string nameOf(const Network &network, LinkId link);

/** A demand's name, or "Rome - Oslo (7)" with its id when it has none. */
std::string nameOf(const Network &network, std::span<const Demand> demands, DemandId demand);

/** "Rome - Bern - Oslo". */
std::string nameOf(const Network &network, std::span<const NodeId> path);

/** The node of a name; none when there is none. */
std::optional<NodeId> nodeNamed(const Network &network, std::string_view name);

} // namespace tarnex::planning

#endif
