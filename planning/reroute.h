/**
 * Placing anew what a failure has taken the path from, on the network that is left.
 *
 * Lost LSPs release what they had reserved and are placed by level, then by id, around what has
 * failed. What the others have reserved stays reserved, also of those that run over a backup now,
 * and so does what is reserved for backups. Nothing is protected anew.
 */
#ifndef TARNEX_PLANNING_REROUTE_H
#define TARNEX_PLANNING_REROUTE_H

#include "formats/plan.h"

#include <tarnex/engine.h>

#include <optional>
#include <span>
#include <vector>

namespace tarnex::planning
{

/** Whether lost LSPs are placed anew, and whether less important ones have to give way for that. */
enum class Reroute { no, gently, preempting };

/** "no", "gently" or "preempting". */
std::string_view nameOf(Reroute reroute);

/** What became of an LSP that was to be placed anew. */
struct ReroutedLsp {
    DemandId id;
    std::vector<LinkId> links;      ///< of its new path; none: it stays lost
    Reason reason = Reason::noRoom; ///< why, if so
};

/** Reroutes for one failure after the other, each beginning with the plan as it is. Its engine has
 * no backups, but in their place on every link an LSP of as much as is reserved for them. */
class Rerouter
{
public:
    /** Sets the plan up, which it borrows; SetUpError. */
    Rerouter(const Plan &plan, Reroute reroute);

    /**
     * What becomes of LSPs that have lost their path, and of those that gave way to them; by id.
     *
     * @param ended LSPs that are gone for good
     * @param failed links that cannot be used
     * @throws std::runtime_error when no process can be started to try it in
     */
    std::vector<ReroutedLsp> reroute(std::span<const DemandId> lost,
                                     std::span<const DemandId> ended,
                                     std::span<const LinkId> failed);

private:
    void reserveForBackups();
    std::vector<ReroutedLsp> tryOut(std::span<const DemandId> lost, std::span<const DemandId> ended,
                                    std::span<const LinkId> failed);

    const Plan &plan;
    bool preempts;
    Engine engine;
};

} // namespace tarnex::planning

#endif
