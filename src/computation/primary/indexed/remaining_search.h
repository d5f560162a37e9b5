/**
 * What remains from each node to a destination at least (unit "computation/primary/primaryPath"):
 * a search against the links and in ascending order (Dijkstra, 1959), up to a source.
 */
#ifndef TARNEX_COMPUTATION_PRIMARY_INDEXED_REMAINING_SEARCH_H
#define TARNEX_COMPUTATION_PRIMARY_INDEXED_REMAINING_SEARCH_H

#include "common/layout.h"
#include "database/indices/network_index.h"

#include <algorithm>
#include <limits>

/** One search; `Terms` says what a link adds to a score, `Frontier` suits them. */
template <class Terms, class Frontier>
class RemainingSearch
{
public:
    RemainingSearch(const NetworkIndex &networkIndex, const Terms &linkTerms, Long sourceNode)
        : index(networkIndex), terms(linkTerms), src(sourceNode), frontier(linkTerms)
    {
    }

    /** Lays out the tables that the search works on. */
    void layOut(Layout &layout)
    {
        layout.place(remaining, index.nbNodes);
        frontier.layOut(layout, index);
    }

    /** By node: what remains to `dst`, or as much as from the source; null when that is not
     * reached. */
    const double *run(Long dst)
    {
        std::fill_n(remaining, index.nbNodes, infinity);
        frontier.clear();
        remaining[dst] = 0.0;
        Long node = dst;
        for (; node != src && node != none; node = takeNearest())
            reachBackFrom(node);
        if (node == none)
            return nullptr;
        const double farthest = remaining[src];
        std::transform(remaining, remaining + index.nbNodes, remaining,
                       [farthest](double one) { return std::min(one, farthest); });
        return remaining;
    }

private:
    static constexpr double infinity = std::numeric_limits<double>::infinity();
    static constexpr Long none = -1;

    void reachBackFrom(Long node)
    {
        const double own = remaining[node];
        const Long end = index.firstIn[node + 1];
        for (Long link = index.firstIn[node]; link < end; ++link) {
            const double score = terms.extended(own, link);
            const Long from = index.source[link];
            if (!(score < remaining[from]))
                continue;
            remaining[from] = score;
            frontier.push(score, from, link);
        }
    }

    /** Takes the node from which least remains out of the frontier. */
    Long takeNearest()
    {
        for (;;) {
            const auto [score, node] = frontier.take();
            if (score == infinity)
                return none;
            if (score == remaining[node])
                return node;
        }
    }

    const NetworkIndex &index;
    const Terms &terms;
    Long src;
    Frontier frontier;
    double *remaining = nullptr; ///< by node: the least score from it to the destination so far
};

#endif
