/**
 * What failures do to a plan: which LSPs they break, which backups take over, what is lost and how
 * full the links are after the switch. Worked out from the paths by plain addition, without an
 * engine, unless what is lost is to be placed anew.
 *
 * An LSP follows its path. Where its next link has failed, its local backup for that link takes it
 * to the node where the backup rejoins the path; the failure must leave the backup whole. Where
 * that does not lead to the egress, a global backup that is whole takes over from the ingress. Else
 * the LSP is lost, or placed anew (planning/reroute.h). What an LSP no longer passes it releases.
 */
#ifndef TARNEX_PLANNING_FAIL_H
#define TARNEX_PLANNING_FAIL_H

#include "planning/failures.h"
#include "planning/reroute.h"
#include "planning/summary.h"

#include <memory>
#include <optional>
#include <vector>

namespace tarnex::planning
{

/** What becomes of LSPs that a failure breaks. `hit` is the sum of `local` to `ended`. */
struct BrokenLsps {
    Amount hit;
    Amount local;    ///< taken over by local backups
    Amount global;   ///< taken over by a global backup
    Amount rerouted; ///< placed anew
    Amount lost;
    Amount ended;     ///< they begin or end at a node that has failed
    Amount displaced; ///< not hit, but gave way to rerouted ones and found no other place

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

/** How an LSP came through a failure; the names of the members of BrokenLsps. */
enum class Fate { local, global, rerouted, lost, ended, displaced };

/** "local", "global" and so on. */
std::string_view nameOf(Fate fate);

/** An LSP that a failure concerns. */
struct FailedLsp {
    DemandId id;
    Fate fate = Fate::lost;
    std::optional<Reason> reason; ///< why it could not be placed anew, if that was tried
};

/** How full a link is: what it carries over its capacity, in its fullest class type. */
struct LinkPeak {
    LinkId link;
    int classType = 0;
    double share = 0.0;
    double before = 0.0; ///< without a failure, in that class type
};

/** What one failure does. */
struct FailureEffect {
    BrokenLsps all;
    std::vector<BrokenLsps> levels;
    std::vector<FailedLsp> lsps;     ///< ascending
    std::vector<Overload> overloads; ///< by link and class type
    std::vector<LinkPeak> peaks;     ///< by link: where it is fuller than in all failures before
};

/** Tries failures on a plan, which it borrows. Its demands, paths and backups are sound. */
class FailureStudy
{
public:
    /** `reroute`: whether what is lost is placed anew; then SetUpError when the plan cannot be set
     * up. */
    explicit FailureStudy(const Plan &plan, Reroute reroute = Reroute::no);
    ~FailureStudy();
    FailureStudy(const FailureStudy &) = delete;
    FailureStudy &operator=(const FailureStudy &) = delete;

    /** What a failure does to the plan. The same whatever was tried before, but for `peaks`, which
     * tell less the more was tried. */
    FailureEffect effectOf(const Failure &failure);

    /** By link: its use without a failure, in its fullest class type. */
    const std::vector<LinkPeak> &normal() const;

private:
    struct State;
    std::unique_ptr<State> state;
};

} // namespace tarnex::planning

#endif
