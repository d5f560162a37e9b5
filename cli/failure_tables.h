/** What failures did, for people and files. */
#ifndef TARNEX_CLI_FAILURE_TABLES_H
#define TARNEX_CLI_FAILURE_TABLES_H

#include "cli/document.h"
#include "formats/plan.h"
#include "planning/failure_tally.h"

#include <cstddef>

namespace tarnex::cli
{

/** What is shown of failures. */
struct FailureShow {
    std::size_t nbRows = 5;   ///< of a table, for people
    bool isForPeople = false; ///< then large tables have no other rows
    bool hasRerouted = false; ///< whether lost LSPs were placed anew
    bool listsLost = false;   ///< whether LSPs that are lost are listed
};

/** When a command that prints failures ends with findings. */
inline constexpr const char *failureFindings = "done, and LSPs were lost or links too full";

/** How many failures did harm. */
Facts verdictOn(const planning::FailureTally &tally);

/** All about failures of a plan. */
Document failureDocument(const Plan &plan, const planning::FailureTally &tally,
                         const FailureShow &show);

} // namespace tarnex::cli

#endif
