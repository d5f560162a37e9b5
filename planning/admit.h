/** Placing one LSP without ever promising more than a link has. */
#ifndef TARNEX_PLANNING_ADMIT_H
#define TARNEX_PLANNING_ADMIT_H

#include <tarnex/engine.h>

#include <vector>

namespace tarnex::planning
{

/** Whether a link reserves more than its capacity in a class type, beyond what rounding does. */
bool isOverbooked(const LinkUse &use);

/** How an admission ended. */
struct Admission {
    Result<Placement> placement;
    bool isTakenBack = false; ///< whether LSPs had given way in vain
    std::vector<LspId> lost;  ///< those of them that rounding kept from coming back, with their
                              ///< backups; nearly always none
};

/**
 * As Engine::place, but an LSP for which others give way must fit. LSPs leave less room than their
 * bandwidth where they would be away in just those failures in which backups of others need the
 * link; if that leaves too little, they come back, and the request is placed without preemption or
 * refused.
 */
Admission admit(Engine &engine, const Request &request);

} // namespace tarnex::planning

#endif
