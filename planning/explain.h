/** What would become of one more LSP on a plan. */
#ifndef TARNEX_PLANNING_EXPLAIN_H
#define TARNEX_PLANNING_EXPLAIN_H

#include "formats/plan.h"
#include "planning/refusals.h"

#include <optional>
#include <string>
#include <vector>

namespace tarnex::planning
{

/** What is asked. */
struct Question {
    Demand demand;
    bool mayPreempt = false;
    std::optional<Scheme> protection; ///< none: whether it could be protected is not asked
};

/** An LSP that would have to give way. */
struct Victim {
    DemandId demand;
    std::string name;
    std::size_t nbBackups = 0; ///< that would go with it
};

/** The answer: a path or a refusal, and for a path whether it could be protected. */
struct Explanation {
    std::optional<PlannedLsp> lsp; ///< with the backups that it would get
    std::vector<Victim> victims;   ///< by id
    std::optional<NamedRefusal> refusal;
    std::optional<NamedRefusal> unprotected; ///< why it could not be protected, if that was asked
};

/** Sets a plan up and asks. SetUpError when it cannot be set up, WrongUse when the demand is not
 * sound for the plan's network. */
Explanation explain(const Plan &plan, const Question &question);

} // namespace tarnex::planning

#endif
