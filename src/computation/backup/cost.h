/**
 * What one more link costs a backup path: 10/11 of the reservation that the backup adds to the link
 * plus 1/11 of the LSP's bandwidth times a factor for the link's place (unit
 * "computation/backup/backup").
 */
#ifndef TARNEX_COMPUTATION_BACKUP_COST_H
#define TARNEX_COMPUTATION_BACKUP_COST_H

#include "common/records.h"
#include "database/books/link_state.h"
#include "database/books/lsp.h"

#include <algorithm>
#include <array>
#include <cstddef>

/** The cost of a link that has no room. */
inline constexpr double infeasible = -1.0;

/** What the LSP reserves in all class types together. */
inline double totalBandwidth(const DBLabelSwitchedPath &lsp) { return sumOf(lsp.bw); }

/** One more than the number of entries from `dst` to the end of the protected path of `lsp`. */
inline std::ptrdiff_t hopFactor(const DBLabelSwitchedPath &lsp, Long dst)
{
    const auto primPath = inUse(lsp.primPath);
    return primPath.end() - std::ranges::find(primPath, dst) + 1;
}

/**
 * Cost of a link on which the levels and class types together reserve `before` and would reserve
 * `after`, for an LSP with `bandwidth` in all class types.
 */
inline double costOf(double before, double after, std::ptrdiff_t factor, double bandwidth)
{
    constexpr double alpha = 10.0 / 11.0;
    constexpr double beta = 1.0 / 11.0;
    const double growth = after - before;
    return alpha * (growth < 0.0 ? 0.0 : growth) + beta * static_cast<double>(factor) * bandwidth;
}

/**
 * The cost of the link to `dst` with capacities `cap` that reserves `now` and would reserve `then`,
 * indexed `[oa][p]`; `infeasible` when a class type would exceed its capacity.
 */
double costOf(const DBLabelSwitchedPath &lsp, Long dst, const double (&cap)[MAXOA],
              const double (&now)[MAXOA][MAXPL], const double (&then)[MAXOA][MAXPL]);

/**
 * The path of a backup that leads from `start` to `src` and on to `dst`, reduced to what an
 * evaluation of that hop reads: where it starts, the hop itself, and where it ends.
 */
class ReducedPath
{
public:
    ReducedPath(Long start, Long src, Long dst) : nodes{start, src, dst} {}

    std::span<const Long> path() const
    {
        const bool startsAtHop = nodes[0] == nodes[1];
        return std::span{nodes}.subspan(startsAtHop ? 1 : 0);
    }

private:
    std::array<Long, 3> nodes;
};

#endif
