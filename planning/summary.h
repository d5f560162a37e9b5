/** The figures of a plan. Bandwidths are in the network's unit. */
#ifndef TARNEX_PLANNING_SUMMARY_H
#define TARNEX_PLANNING_SUMMARY_H

#include "formats/plan.h"

#include <array>
#include <cstddef>
#include <vector>

namespace tarnex::planning
{

/** So many, with so much bandwidth altogether. */
struct Amount {
    std::size_t number = 0;
    double bandwidth = 0.0;

    void add(double more)
    {
        ++number;
        bandwidth += more;
    }
    Amount &operator+=(const Amount &other)
    {
        number += other.number;
        bandwidth += other.bandwidth;
        return *this;
    }
    friend bool operator==(const Amount &, const Amount &) = default;
};

/** How well LSPs are protected. */
struct Coverage {
    Amount nodes; ///< against the failure of every link of the path and every node between its ends
    Amount links; ///< against that of every link, but not of every node
    Amount some;  ///< against that of some links
    Amount none;

    friend bool operator==(const Coverage &, const Coverage &) = default;
};

/** What became of demands. The first is the sum of the others, `placed` that of `coverage`. */
struct Fates {
    Amount demanded;
    Amount placed;
    Amount refused;
    Amount preempted; ///< placed once, and had to give way
    Amount leftOut;   ///< not tried
    Coverage coverage;

    friend bool operator==(const Fates &, const Fates &) = default;
};

/** How full a link is in one class type. */
struct LinkLoad {
    LinkId link;
    int classType = 0;
    double primary = 0.0;  ///< reserved by primaries, all levels
    double reserved = 0.0; ///< altogether
    double capacity = 0.0;

    /** Reserved over capacity; 0 when nothing is reserved, infinite without capacity. */
    double utilization() const;
    friend bool operator==(const LinkLoad &, const LinkLoad &) = default;
};

/** Bandwidths summed over the links. */
struct ProtectionCost {
    double primary = 0.0;
    double dedicated = 0.0; ///< what backups would reserve if nothing were shared
    double shared = 0.0;    ///< what they do reserve

    friend bool operator==(const ProtectionCost &, const ProtectionCost &) = default;
};

inline constexpr std::size_t nbReasons = 6;

/** A plan in figures. */
struct Summary {
    Fates all;
    std::vector<Fates> levels;             ///< by level
    std::vector<LinkLoad> fullest;         ///< by utilization, fullest first; then by id and class
    ProtectionCost cost;                   ///< over all class types
    std::array<Amount, nbReasons> refused; ///< by Reason: demands that never had an LSP
    std::array<Amount, nbReasons> unprotected; ///< by Reason: LSPs whose backups were refused
    std::size_t nbBackups = 0;
};

/** Adds a plan up; `nbFullest`: how many links to list at most. */
Summary summaryOf(const Plan &plan, std::size_t nbFullest);

/** Which share of an LSP's path is protected: the first three members of Coverage in order, or
 * none. */
enum class Cover { nodes, links, some, none };
Cover coverOf(const PlannedLsp &lsp);

} // namespace tarnex::planning

#endif
