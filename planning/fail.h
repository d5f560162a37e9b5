/**
 * What failures do to a plan: which LSPs they break, which backups take over, what is lost and how
 * full the links are after the switch. Worked out from the paths by plain addition, without an
 * engine.
 *
 * An LSP follows its path. Where its next link has failed, its local backup for that link takes it
 * to the node where the backup rejoins the path; the failure must leave the backup whole. Where
 * that does not lead to the egress, a global backup that is whole takes over from the ingress. Else
 * the LSP is lost. What an LSP no longer passes it releases.
 */
#ifndef TARNEX_PLANNING_FAIL_H
#define TARNEX_PLANNING_FAIL_H

#include "planning/failures.h"
#include "planning/summary.h"

#include <memory>
#include <vector>

namespace tarnex::planning
{

/** What becomes of LSPs that a failure breaks. `hit` is the sum of the others. */
struct BrokenLsps {
    Amount hit;
    Amount local;  ///< taken over by local backups
    Amount global; ///< taken over by a global backup
    Amount lost;
    Amount ended; ///< they begin or end at a node that has failed

    BrokenLsps &operator+=(const BrokenLsps &other);
    friend bool operator==(const BrokenLsps &, const BrokenLsps &) = default;
};

/** A link that carries more than its capacity in a class type. */
struct Overload {
    LinkId link;
    int classType = 0;
    double use = 0.0;
    double capacity = 0.0;
};

/** How an LSP came through a failure that broke it. */
enum class Fate { local, global, lost, ended };

/** What one failure does. */
struct FailureEffect {
    BrokenLsps all;
    std::vector<BrokenLsps> levels;
    std::vector<std::pair<DemandId, Fate>> lsps; ///< that were broken, ascending
    std::vector<Overload> overloads;             ///< by link and class type
};

/** The fullest that a link gets: what it carries over its capacity, in its fullest class type. */
struct WorstUse {
    double normal = 0.0;                   ///< without a failure
    double worst = 0.0;                    ///< with one, or without if that is more
    int classType = 0;                     ///< in which `worst` is reached
    double before = 0.0;                   ///< without a failure, in that class type
    std::size_t failure = ~std::size_t{0}; ///< the first of those with it, by number; none: normal
};

/** Tries failures on a plan, which it borrows. Its demands, paths and backups are sound. */
class FailureStudy
{
public:
    explicit FailureStudy(const Plan &plan);
    ~FailureStudy();
    FailureStudy(const FailureStudy &) = delete;
    FailureStudy &operator=(const FailureStudy &) = delete;

    /** What a failure does to the plan; nothing stays of it but its part in `worst`. */
    FailureEffect effectOf(const Failure &failure);

    /** By link: over all failures tried so far. */
    const std::vector<WorstUse> &worst() const;

private:
    struct State;
    std::unique_ptr<State> state;
};

} // namespace tarnex::planning

#endif
