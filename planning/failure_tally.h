/** What a row of failures does to a plan, added up failure by failure. */
#ifndef TARNEX_PLANNING_FAILURE_TALLY_H
#define TARNEX_PLANNING_FAILURE_TALLY_H

#include "planning/fail.h"

#include <cstddef>
#include <optional>
#include <utility>
#include <vector>

namespace tarnex::planning
{

/** The figures of failures, which go by the order in which they were added. */
class FailureTally
{
public:
    /** Counts nothing yet. `unbroken`: by link, as FailureStudy::normal. `nbLevels`: of the plan.
     */
    FailureTally(std::vector<LinkPeak> unbroken, std::size_t nbLevels)
        : normal(std::move(unbroken)), worst(normal), worstFailure(normal.size()), levels(nbLevels)
    {
    }

    /** Takes out of an effect the peaks that failures counted before reach as well. */
    void dropLowPeaks(FailureEffect &effect) const;
    /** Adds the next failure. */
    void add(FailureName name, const FailureEffect &effect);

    /** What one failure did, without lists. */
    struct Figures {
        FailureName name;
        BrokenLsps all;
        std::size_t nbOverloads = 0;
    };

    /** Whether no failure left an LSP lost, displaced or a link too full. */
    bool isHarmless() const;

    std::vector<LinkPeak> normal; ///< by link: without a failure
    std::vector<LinkPeak> worst;  ///< by link: the fullest, with a failure or without
    std::vector<std::optional<std::size_t>>
        worstFailure;               ///< by link: the first such; none: without
    std::vector<BrokenLsps> levels; ///< over all failures
    std::vector<Figures> failures;
    std::vector<std::pair<std::size_t, Overload>> overloads; ///< by failure
    std::vector<std::pair<std::size_t, FailedLsp>> lost;     ///< those that effects list
};

} // namespace tarnex::planning

#endif
