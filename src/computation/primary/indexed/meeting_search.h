/**
 * The label-correcting search (plain/search.h) where all links add the same to a score (unit
 * "computation/primary/primaryPath").
 *
 * The first label of a node is then final: a later one has at least as many links behind it. Each
 * pass is a level of a breadth-first search, and of two nodes of a level the one that was reached
 * first is expanded first. So of the shortest paths to a node the passes end with the one whose
 * links stand first among those out of their nodes, compared from the source on.
 *
 * This path is found from both ends, level by level, with much fewer nodes met: nodes from the
 * source on in the order of the passes, nodes from the destination in any. Where the two meet the
 * first node in order decides; from there on the first link that leads a level closer.
 */
#ifndef TARNEX_COMPUTATION_PRIMARY_INDEXED_MEETING_SEARCH_H
#define TARNEX_COMPUTATION_PRIMARY_INDEXED_MEETING_SEARCH_H

#include "common/layout.h"
#include "computation/primary/indexed/link_appraisal.h"
#include "database/indices/network_index.h"

#include <algorithm>
#include <limits>

/** One search. */
class MeetingSearch
{
public:
    MeetingSearch(NetworkIndex &networkIndex, LinkAppraisal &linkAppraisal)
        : index(networkIndex), appraisal(linkAppraisal)
    {
    }

    /** Lays out the tables that the search works on. */
    void layOut(Layout &layout)
    {
        layout.place(ahead, index.nbNodes);
        layout.place(behind, index.nbNodes);
        layout.place(before, index.nbNodes);
    }

    /** Finds the path from `src` to another node; whether there is one. */
    bool run(Long src, Long dst)
    {
        fromSource = takeStamps(index, 2);
        toDestination = fromSource + 1;
        index.visits[src] = {fromSource, 0};
        index.visits[dst] = {toDestination, 0};
        ahead[nbAhead++] = {src, 0};
        behind[nbBehind++] = dst;
        bool met = false;
        while (!met && nextAhead < nbAhead && nextBehind < nbBehind)
            met = nbAhead - nextAhead < nbBehind - nextBehind ? goAhead() : goBack();
        return met;
    }

    /** By node on the path that was found: the one before it. */
    const Long *predecessors() const { return before; }

private:
    /** A node reached from the source. */
    struct Reached {
        Long node;
        Long from; ///< position of the one before it
    };

    /** Reaches one more level from the source; whether the two ends have met. */
    bool goAhead()
    {
        for (const Long end = nbAhead; nextAhead < end; ++nextAhead) {
            const Long node = ahead[nextAhead].node;
            for (Long k = index.firstOut[node]; k < index.firstOut[node + 1]; ++k) {
                const auto [to, link] = index.outLinks[k];
                Visit &visit = index.visits[to];
                if (visit.stamp == fromSource || !appraisal.admits(link))
                    continue;
                if (visit.stamp == toDestination) {
                    before[to] = node;
                    write(nextAhead, to, visit.place);
                    return true;
                }
                visit = {fromSource, nbAhead};
                ahead[nbAhead++] = {to, nextAhead};
            }
        }
        return false;
    }

    /** Reaches one more level against the links; whether the two ends have met. */
    bool goBack()
    {
        constexpr Long none = std::numeric_limits<Long>::max();
        Long first = none;
        for (const Long end = nbBehind; nextBehind < end; ++nextBehind) {
            const Long node = behind[nextBehind];
            for (Long link = index.firstIn[node]; link < index.firstIn[node + 1]; ++link) {
                const Long from = index.source[link];
                Visit &visit = index.visits[from];
                if (visit.stamp == toDestination || !appraisal.admits(link))
                    continue;
                if (visit.stamp == fromSource) {
                    first = std::min(first, visit.place);
                    continue;
                }
                visit = {toDestination, level + 1};
                behind[nbBehind++] = from;
            }
        }
        ++level;
        if (first != none)
            write(first, ahead[first].node, level);
        return first != none;
    }

    /** Notes the path by way of `node`, `left` links before the destination; before it, the nodes
     * up to position `last`. */
    void write(Long last, Long node, Long left)
    {
        for (; last > 0; last = ahead[last].from)
            before[ahead[last].node] = ahead[ahead[last].from].node;
        while (left-- > 0) {
            const Long next = firstCloser(node, left);
            before[next] = node;
            node = next;
        }
    }

    /** What the first link from `node` that leads to within `left` links of the destination leads
     * to. */
    Long firstCloser(Long node, Long left)
    {
        const OutLink *out = index.outLinks + index.firstOut[node];
        const auto leadsThere = [&] {
            const Visit &visit = index.visits[out->node];
            return visit.stamp == toDestination && visit.place == left &&
                   appraisal.admits(out->link);
        };
        while (!leadsThere())
            ++out;
        return out->node;
    }

    NetworkIndex &index;
    LinkAppraisal &appraisal;
    std::uint32_t fromSource = 0;    ///< stamp; the place of a node is its position in `ahead`
    std::uint32_t toDestination = 0; ///< stamp; the place of a node is its level
    Reached *ahead = nullptr;        ///< in the order in which they are reached
    Long *behind = nullptr;          ///< likewise, against the links
    Long *before = nullptr;
    Long nbAhead = 0;
    Long nbBehind = 0;
    Long nextAhead = 0;
    Long nextBehind = 0;
    Long level = 0; ///< of the nodes reached last against the links
};

#endif
