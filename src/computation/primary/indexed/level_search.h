/**
 * The label-correcting search (plain/search.h) where all links add the same to a score (unit
 * "computation/primary/primaryPath").
 *
 * The first label of a node is then final: a later one has at least as many links behind it. Each
 * pass is a level of a breadth-first search.
 */
#ifndef TARNEX_COMPUTATION_PRIMARY_INDEXED_LEVEL_SEARCH_H
#define TARNEX_COMPUTATION_PRIMARY_INDEXED_LEVEL_SEARCH_H

#include "common/layout.h"
#include "computation/primary/indexed/link_appraisal.h"
#include "database/indices/network_index.h"

#include <algorithm>

/** One search. */
class LevelSearch
{
public:
    LevelSearch(const NetworkIndex &networkIndex, Long sourceNode)
        : index(networkIndex), src(sourceNode)
    {
    }

    /** Lays out the tables that the search works on. */
    void layOut(Layout &layout)
    {
        layout.place(before, index.nbNodes);
        layout.place(order, index.nbNodes);
    }

    /** Reaches nodes until `dst` is among them, whether or not it ever is; `verdicts` are by link.
     */
    bool run(const unsigned char *verdicts, Long dst)
    {
        std::fill_n(before, index.nbNodes, notReached);
        before[src] = src;
        order[0] = src;
        Long nbReached = 1;
        for (Long i = 0; i < nbReached && before[dst] == notReached; ++i) {
            const Long node = order[i];
            for (Long k = index.firstOut[node]; k < index.firstOut[node + 1]; ++k) {
                const auto [to, link] = index.outLinks[k];
                if (before[to] != notReached || verdicts[link] == refused)
                    continue;
                before[to] = node;
                order[nbReached++] = to;
            }
        }
        return before[dst] != notReached;
    }

    /** By node: the one before it on its path. */
    const Long *predecessors() const { return before; }

private:
    static constexpr Long notReached = -1;

    const NetworkIndex &index;
    Long src;
    Long *before = nullptr;
    Long *order = nullptr; ///< nodes in the order in which they are reached
};

#endif
