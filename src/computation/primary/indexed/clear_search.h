/**
 * The search for the one path that is clearly the best (unit "computation/primary/primaryPath").
 *
 * Passes (plain/search.h) stop when no link improves a label by more than the margin. The score
 * that they end with is therefore above the least by no more than the margin for each link, and
 * rounding; which of the paths that near the least they end with depends on the order of their
 * work. Mostly there is just one such path. The passes end with it whatever their order, so it need
 * only be found, and any faster search will do:
 *
 * First, find what remains from each node to the destination at least, against the links and in
 * ascending order (Dijkstra, 1959).
 *
 * Then follow the links from the source that lead to the destination at nearly the least score.
 * Where a node has two of them the outcome is in doubt, and the passes have to decide.
 *
 * Last, add the score up over the path from the source on, as the passes do: the bits are the same.
 */
#ifndef TARNEX_COMPUTATION_PRIMARY_INDEXED_CLEAR_SEARCH_H
#define TARNEX_COMPUTATION_PRIMARY_INDEXED_CLEAR_SEARCH_H

#include "computation/primary/improvement.h"
#include "computation/primary/indexed/frontier.h"
#include "database/indices/network_index.h"

#include <algorithm>
#include <limits>

/** How a search ended. */
enum class Clearness { found, unreachable, doubtful };

/** One search; `Terms` says what a link adds to a score, `Frontier` suits them. */
template <class Terms, class Frontier>
class ClearSearch
{
public:
    ClearSearch(const NetworkIndex &networkIndex, const Terms &linkTerms, Long sourceNode)
        : index(networkIndex), terms(linkTerms), src(sourceNode), frontier(linkTerms)
    {
    }

    /** Lays out the tables that the search works on. */
    void layOut(Layout &layout)
    {
        layout.place(remaining, index.nbNodes);
        layout.place(before, index.nbNodes);
        frontier.layOut(layout, index);
    }

    /** Finds the path to `dst` unless several are about as good. */
    Clearness run(Long dst)
    {
        if (!findRemaining(dst))
            return Clearness::unreachable;
        return follow(dst) ? Clearness::found : Clearness::doubtful;
    }

    /** Of the path that was found. */
    double cost() const { return pathScore; }
    /** By node on the path that was found: the one before it. */
    const Long *predecessors() const { return before; }
    /** After a doubtful outcome, by node: what remains to the destination, or as much as from the
     * source. */
    const double *bounds()
    {
        const double farthest = remaining[src];
        std::transform(remaining, remaining + index.nbNodes, remaining,
                       [farthest](double one) { return std::min(one, farthest); });
        return remaining;
    }

private:
    static constexpr double infinity = std::numeric_limits<double>::infinity();
    static constexpr Long none = -1;

    /** Works out what remains from the nodes up to the source; whether the source is among them. */
    bool findRemaining(Long dst)
    {
        std::fill_n(remaining, index.nbNodes, infinity);
        frontier.clear();
        remaining[dst] = 0.0;
        Long node = dst;
        for (; node != src && node != none; node = takeNearest())
            reachBackFrom(node);
        return node == src;
    }

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
            const FrontierEntry entry = frontier.take();
            if (entry.score == infinity)
                return none;
            if (entry.score == remaining[entry.node])
                return entry.node;
        }
    }

    /** Follows the path of the least score; false where another comes near to it. */
    bool follow(Long dst)
    {
        const double nearness = index.nbNodes * (2.0 * improvementMargin +
                                                 1e-15 * terms.nbAdditions() * remaining[src]);
        // What remains is final only where it is less than from the source. With increments this
        // large no other node is near enough to be followed.
        if (!(terms.leastIncrement() > 2.0 * nearness))
            return false;
        for (Long node = src; node != dst;) {
            const OutLink *next = nullptr;
            const OutLink *end = index.outLinks + index.firstOut[node + 1];
            for (const OutLink *out = index.outLinks + index.firstOut[node]; out < end; ++out) {
                const double offered = terms.extended(remaining[out->node], out->link);
                if (!(offered <= remaining[node] + nearness))
                    continue;
                if (next)
                    return false;
                next = out;
            }
            pathScore = terms.extended(pathScore, next->link);
            before[next->node] = node;
            node = next->node;
        }
        return true;
    }

    const NetworkIndex &index;
    const Terms &terms;
    Long src;
    Frontier frontier;
    double *remaining = nullptr; ///< by node: the least score from it to the destination so far
    Long *before = nullptr;
    double pathScore = 0.0;
};

#endif
