/**
 * The label-correcting search in passes (plain/search.h), on node and link numbers and under
 * increments of at least 0 (unit "computation/primary/primaryPath").
 *
 * The plain search looks at every link into every reached node in every pass, and most of what it
 * sees is as it was in the pass before. A node can choose anew only after a node before it has got
 * another label. So a node whose label changes offers it over its out-links, and a pass looks only
 * at the nodes that have an offer.
 *
 * The result is that of the plain passes, to the bit:
 * - Nodes are looked at in the order in which they were reached, with the labels that the pass
 *   before committed, and of several links that improve a label the last one wins.
 * - The test for loops is left out: it cannot fail. No link lowers a score, so a node's label is at
 *   most that of any node behind it, and what it is offered from there improves nothing.
 * - The passes end as soon as nothing that is on offer can lower the labels on the path to the
 *   destination by the margin. No other label is asked for.
 */
#ifndef TARNEX_COMPUTATION_PRIMARY_INDEXED_PASS_SEARCH_H
#define TARNEX_COMPUTATION_PRIMARY_INDEXED_PASS_SEARCH_H

#include "common/layout.h"
#include "computation/primary/improvement.h"
#include "database/indices/network_index.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <limits>

/** One search; `Terms` says what a link adds to a score (link_terms.h). */
template <class Terms>
class PassSearch
{
public:
    PassSearch(const NetworkIndex &networkIndex, const Terms &linkTerms, Long sourceNode)
        : index(networkIndex), terms(linkTerms), src(sourceNode)
    {
    }

    /** Lays out the tables that the search works on. */
    void layOut(Layout &layout)
    {
        layout.place(cost, index.nbNodes);
        layout.place(before, index.nbNodes);
        layout.place(order, index.nbNodes);
        layout.place(offers, index.nbNodes);
        layout.place(changes, index.nbNodes);
        layout.place(toLookAt, index.nbNodes / 64 + 1);
        layout.place(toExpand, index.nbNodes / 64 + 1);
    }

    /** Labels nodes until the label of `dst`, and those on its path, are final; `bounds`, unless it
     * is null, has by node what the links from there to `dst` add at least. */
    void run(Long dst, const double *bounds = nullptr)
    {
        remaining = bounds;
        std::fill_n(cost, index.nbNodes, notReached);
        std::fill_n(toLookAt, index.nbNodes / 64 + 1, 0);
        std::fill_n(toExpand, index.nbNodes / 64 + 1, 0);
        cost[src] = 0.0;
        expand(src, 0);
        Long top = 0;
        do {
            top = nbReached;
            nbChanged = 0;
            least = infinity;
            for (Long i = nextToLookAt(0, top); i < top; i = nextToLookAt(i + 1, top))
                lookAt(order[i], i);
            commit();
        } while ((nbReached > top || nbChanged > 0) && !isFinal(dst));
    }

    bool isReached(Long node) const { return cost[node] >= 0.0; }
    double costOf(Long node) const { return cost[node]; }
    /** By node: the one before it on its path. */
    const Long *predecessors() const { return before; }

private:
    static constexpr double infinity = std::numeric_limits<double>::infinity();
    /** As a cost it neither improves another nor is improved. */
    static constexpr double notReached = std::numeric_limits<double>::quiet_NaN();
    static constexpr Long none = -1;
    /** For the last link of an offer: all links are to be compared; no offer takes its place. */
    static constexpr Long unknown = std::numeric_limits<Long>::max();

    /** What a node was offered since it was looked at. */
    struct Offer {
        double least;  ///< of the scores
        Long last;     ///< the last link into the node that improves its label
        Long position; ///< of the node in `order`
    };

    /** A choice of this pass. */
    struct Change {
        double score;
        double least; ///< of all that was offered
        Long node;
        Long link; ///< that it is reached over
    };

    /** First position from `from` on to be looked at in a pass over `top` positions. */
    Long nextToLookAt(Long from, Long top) const
    {
        auto word = static_cast<std::uint32_t>(from) / 64;
        std::uint64_t bits = toLookAt[word] & (~std::uint64_t{0} << (from & 63));
        const std::uint32_t end = static_cast<std::uint32_t>(top) / 64;
        while (bits == 0 && word < end)
            bits = toLookAt[++word];
        return bits == 0 ? top
                         : std::min(top, static_cast<Long>(word * 64) + std::countr_zero(bits));
    }

    static std::uint64_t bitOf(Long i) { return std::uint64_t{1} << (i & 63); }
    static std::uint64_t &wordOf(std::uint64_t *bits, Long i)
    {
        return bits[static_cast<std::uint32_t>(i) / 64];
    }
    static void mark(std::uint64_t *bits, Long i) { wordOf(bits, i) |= bitOf(i); }
    static void unmark(std::uint64_t *bits, Long i) { wordOf(bits, i) &= ~bitOf(i); }
    static bool isMarked(std::uint64_t *bits, Long i) { return (wordOf(bits, i) & bitOf(i)) != 0; }

    /** Whether nothing that is on offer, and no node that is yet to be reached, can lead to a lower
     * label of `node` or of one on its path: it would have to lower that of `node` by the margin,
     * but for rounding. */
    bool isFinal(Long node) const
    {
        const double rounding = 1e-15 * index.nbNodes * cost[node];
        return cost[node] + rounding < least + 0.5 * improvementMargin;
    }

    /** Lowers `least` to what a score that a node has or is offered can lead to. */
    void lowerLeast(double score, Long node)
    {
        least = std::min(least, remaining ? score + remaining[node] : score);
    }

    double scoreOver(Long link) const { return terms.extended(cost[index.source[link]], link); }

    void lookAt(Long node, Long i)
    {
        unmark(toLookAt, i);
        Offer offer = offers[node];
        offers[node].last = none;
        offers[node].least = infinity;
        if (offer.last == unknown)
            compareAll(node, offer);
        if (offer.last != none)
            changes[nbChanged++] = {scoreOver(offer.last), offer.least, node, offer.last};
        if (isMarked(toExpand, i))
            expand(node, i);
    }

    /** Works out what all links into a node offer. */
    void compareAll(Long node, Offer &offer) const
    {
        const double own = cost[node];
        const Long end = index.firstIn[node + 1];
        Long last = none;
        double lowest = infinity;
        for (Long link = index.firstIn[node]; link < end; ++link) {
            const double score = scoreOver(link);
            lowest = std::min(lowest, score);
            last = improves(score, own) ? link : last;
        }
        offer.last = last;
        offer.least = lowest;
    }

    /** Offers the label of a node to all that its links lead to; whether all of them are reached.
     */
    bool offerOn(Long node)
    {
        const double own = cost[node];
        bool allReached = true;
        const OutLink *end = index.outLinks + index.firstOut[node + 1];
        for (const OutLink *out = index.outLinks + index.firstOut[node]; out < end; ++out) {
            const double score = terms.extended(own, out->link);
            const double present = cost[out->node];
            allReached &= present >= 0.0;
            if (improves(score, present))
                offer(*out, score);
        }
        return allReached;
    }

    void offer(const OutLink &out, double score)
    {
        Offer &offered = offers[out.node];
        offered.last = std::max(offered.last, out.link);
        offered.least = std::min(offered.least, score);
        lowerLeast(score, out.node);
        mark(toLookAt, offered.position);
    }

    /** Reaches what links of a node lead to, and offers its label to what was reached behind it. */
    void expand(Long node, Long i)
    {
        unmark(toExpand, i);
        const double own = cost[node];
        const OutLink *end = index.outLinks + index.firstOut[node + 1];
        for (const OutLink *out = index.outLinks + index.firstOut[node]; out < end; ++out) {
            const double score = terms.extended(own, out->link);
            if (isReached(out->node)) {
                if (improves(score, cost[out->node]) && offers[out->node].position > i)
                    offer(*out, score);
            } else if (score >= 0.0) {
                reach(out->node, node, score);
            }
        }
    }

    void reach(Long node, Long from, double score)
    {
        const Long i = nbReached++;
        cost[node] = score;
        before[node] = from;
        order[i] = node;
        offers[node] = {infinity, none, i};
        lowerLeast(score, node);
        mark(toLookAt, i);
        if (!offerOn(node))
            mark(toExpand, i);
    }

    /** Makes the pass's choices the labels of the next pass. */
    void commit()
    {
        for (Long i = 0; i < nbChanged; ++i) {
            const Change &change = changes[i];
            Offer &offer = offers[change.node];
            cost[change.node] = change.score;
            before[change.node] = index.source[change.link];
            const bool mayImprove = improves(change.least, change.score);
            if (mayImprove)
                lowerLeast(change.least, change.node);
            if (mayImprove || isMarked(toLookAt, offer.position)) {
                offer.last = unknown;
                mark(toLookAt, offer.position);
            }
        }
        for (Long i = 0; i < nbChanged; ++i)
            offerOn(changes[i].node);
    }

    const NetworkIndex &index;
    const Terms &terms;
    Long src;
    const double *remaining = nullptr; ///< by node: added on the way to the destination at least
    double *cost = nullptr;            ///< by node, committed
    Long *before = nullptr;            ///< by node: its predecessor on the committed path
    Long *order = nullptr;             ///< nodes in the order in which they are reached
    Offer *offers = nullptr;           ///< by node
    Change *changes = nullptr;         ///< of this pass
    std::uint64_t *toLookAt = nullptr; ///< a bit per position in `order`
    std::uint64_t *toExpand = nullptr; ///< likewise: links lead to nodes that are not reached yet
    Long nbReached = 0;
    Long nbChanged = 0;
    double least = 0.0; ///< of what is known to come to the destination by way of the scores that
                        ///< this pass and the next choose from
};

#endif
