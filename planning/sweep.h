/** Trying many failures, in as many processes and on as many machines as there are. */
#ifndef TARNEX_PLANNING_SWEEP_H
#define TARNEX_PLANNING_SWEEP_H

#include "planning/fail.h"
#include "planning/progress.h"

#include <cstddef>
#include <functional>

namespace tarnex::planning
{

/** A part of a row: the positions `number`, `number + of`, `number + 2 of` and so on. */
struct Shard {
    std::size_t number = 0; ///< below `of`
    std::size_t of = 1;

    /** How many of `all` positions it has. */
    std::size_t size(std::size_t all) const
    {
        return all < number ? 0 : (all - number + of - 1) / of;
    }
    /** The position of its k-th. */
    std::size_t operator[](std::size_t k) const { return number + k * of; }

    friend bool operator==(const Shard &, const Shard &) = default;
};

/** How failures are tried. */
struct SweepOptions {
    Reroute reroute = Reroute::no;
    bool listsLost = false; ///< whether effects list the LSPs that are lost
    Shard shard{};
    std::size_t done = 0; ///< so many of the shard have been tried before
    std::size_t jobs = 1; ///< processes
};

/** A failure that was tried. */
struct TriedFailure {
    std::size_t position = 0; ///< in the list of all
    FailureName name;
    FailureEffect effect; ///< its `lsps`: those lost or displaced, if they are to be listed
};

/** Takes what came of a failure. */
using TakeTried = std::function<void(TriedFailure tried)>;

/**
 * Tries the failures of a shard and hands their effects on in order. A process that dies is
 * replaced by another one, which goes on where it was.
 *
 * @param study of the plan, with `options.reroute`; nothing has been tried on it
 * @throws std::runtime_error when a failure cannot be tried
 */
void sweep(FailureStudy &study, const Plan &plan, const FailureList &failures,
           const SweepOptions &options, const TakeTried &take, Progress &progress);

} // namespace tarnex::planning

#endif
