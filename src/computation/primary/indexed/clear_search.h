/**
 * The search for the one path that is clearly the best (unit "computation/primary/primaryPath").
 *
 * Passes (plain/search.h) stop when no link improves a label by more than the margin. The score
 * that they end with is therefore above the least by no more than the margin for each link, and
 * rounding; which of the paths that near the least they end with depends on the order of their
 * work. Mostly there is just one such path. The passes end with it whatever their order, so it need
 * only be found, and any faster search will do:
 *
 * First, go from both ends in ascending order (Dijkstra, 1959; Pohl, 1971), judging links when they
 * are met, until the scores of both sides together pass the least score of a way from end to end,
 * and what comes near to it. Every near path then has a link from a node that is final on the
 * source's side to one that is final on the destination's; these crossings are noted on the way.
 *
 * Then follow the best crossing's path back to both ends. Where another link leads to one of its
 * nodes at nearly the least score, or a near crossing is not on it, the outcome is in doubt, and
 * the passes have to decide.
 *
 * Last, add the score up over the path from the source on, as the passes do: the bits are the same.
 */
#ifndef TARNEX_COMPUTATION_PRIMARY_INDEXED_CLEAR_SEARCH_H
#define TARNEX_COMPUTATION_PRIMARY_INDEXED_CLEAR_SEARCH_H

#include "computation/primary/improvement.h"
#include "computation/primary/indexed/frontier.h"
#include "database/indices/network_index.h"

#include <algorithm>
#include <array>
#include <limits>
#include <span>

/** How a search ended. */
enum class Clearness { found, unreachable, doubtful };

/** One search; `Terms` says what a link adds to a score if it is admitted (link_terms.h),
 * `Frontier` suits them. */
template <class Terms, class Frontier>
class ClearSearch
{
public:
    ClearSearch(const NetworkIndex &networkIndex, const Terms &linkTerms)
        : index(networkIndex), terms(linkTerms), ahead(linkTerms), behind(linkTerms)
    {
    }

    /** Lays out the tables that the search works on. */
    void layOut(Layout &layout)
    {
        ahead.layOut(layout, index);
        behind.layOut(layout, index);
        layout.place(before, index.nbNodes);
        layout.place(via, index.nbNodes);
    }

    /** Finds the path from `src` to another node unless several are about as good. */
    Clearness run(Long src, Long dst)
    {
        ahead.begin(index.nbNodes, src);
        behind.begin(index.nbNodes, dst);
        goAhead();
        goBack();
        while (!(ahead.next.score + behind.next.score > best + slack)) {
            if (ahead.next.score == infinity || behind.next.score == infinity)
                return Clearness::unreachable;
            if (ahead.nbWaiting < behind.nbWaiting)
                goAhead();
            else
                goBack();
        }
        return isClear(src, dst) ? Clearness::found : Clearness::doubtful;
    }

    /** Of the path that was found. */
    double cost() const { return pathScore; }
    /** By node on the path that was found: the one before it. */
    const Long *predecessors() const { return before; }

private:
    static constexpr double infinity = std::numeric_limits<double>::infinity();
    static constexpr Long none = -1;

    /** What one end has reached. */
    struct Side {
        explicit Side(const Terms &terms) : frontier(terms) {}

        void layOut(Layout &layout, const NetworkIndex &network)
        {
            layout.place(scores, network.nbNodes);
            frontier.layOut(layout, network);
        }
        void begin(Long nbNodes, Long node)
        {
            std::fill_n(scores, nbNodes, infinity);
            frontier.clear();
            scores[node] = 0.0;
            next = {0.0, node};
        }
        void reach(Long node, double score, Long link)
        {
            scores[node] = score;
            frontier.push(score, node, link);
            ++nbWaiting;
        }
        /** Takes the nearest node out of the frontier as the next one. */
        void advance()
        {
            do {
                next = frontier.take();
                --nbWaiting;
            } while (next.score != infinity && next.score != scores[next.node]);
        }
        bool isFinal(Long node) const { return scores[node] < next.score; }
        /** What a node is from the end at least, whether its score is final or not. */
        double atLeast(Long node) const { return std::min(scores[node], next.score); }

        double *scores = nullptr; ///< by node: the least from or to the end so far
        Frontier frontier;
        FrontierEntry next{}; ///< to be gone on from
        Long nbWaiting = 0;   ///< entries of the frontier
    };

    /** A link from a node that one end has reached to one that the other end has. */
    struct Crossing {
        Long from;
        Long to;
        Long link;
        double score; ///< from end to end
    };

    /** Reaches what the links out of the source's next node lead to. */
    void goAhead()
    {
        const auto [own, node] = ahead.next;
        const OutLink *end = index.outLinks + index.firstOut[node + 1];
        for (const OutLink *out = index.outLinks + index.firstOut[node]; out < end; ++out) {
            const double score = goOver(own, out->link, ahead, behind, out->node);
            if (behind.scores[out->node] < infinity)
                note({node, out->node, out->link, score + behind.scores[out->node]});
        }
        ahead.advance();
    }

    /** Reaches what the links into the destination's next node come from. */
    void goBack()
    {
        const auto [own, node] = behind.next;
        const Long end = index.firstIn[node + 1];
        for (Long link = index.firstIn[node]; link < end; ++link) {
            const Long from = index.source[link];
            const double score = goOver(own, link, behind, ahead, from);
            if (ahead.scores[from] < infinity)
                note({from, node, link, score + ahead.scores[from]});
        }
        behind.advance();
    }

    /** Goes over a link to a node if that is of use; the score there. */
    double goOver(double own, Long link, Side &side, const Side &other, Long node)
    {
        const double nearest = best + slack - other.scores[node];
        const double useful = other.scores[node] < infinity ? std::max(side.scores[node], nearest)
                                                            : side.scores[node];
        const double score = terms.extendedBelow(useful, own, link);
        if (score < side.scores[node])
            side.reach(node, score, link);
        return score;
    }

    /** Notes a crossing that comes near to the best one. */
    void note(const Crossing &crossing)
    {
        if (crossing.score == infinity || !(crossing.score <= best + slack))
            return;
        if (crossing.score < best) {
            best = crossing.score;
            slack = 2.0 * index.nbNodes *
                    (2.0 * improvementMargin + 1e-15 * terms.nbAdditions() * best);
            const auto isFar = [this](const Crossing &one) { return one.score > best + slack; };
            nbCrossings =
                std::remove_if(crossings.begin(), crossings.begin() + nbCrossings, isFar) -
                crossings.begin();
        }
        if (nbCrossings < std::ssize(crossings))
            crossings[static_cast<std::size_t>(nbCrossings++)] = crossing;
        else
            isCrowded = true;
    }

    /** Whether the path over the best crossing is the only one near its score; it is followed. */
    bool isClear(Long src, Long dst)
    {
        // Where the slack is as large as this nearly all is near.
        if (isCrowded || !(best > 2.0 * slack))
            return false;
        const std::span noted = std::span{crossings}.first(static_cast<std::size_t>(nbCrossings));
        const Crossing *crossing = nullptr;
        for (Crossing &one : noted) {
            one.score = scoreOver(one);
            if (one.score < infinity && !(crossing && crossing->score <= one.score))
                crossing = &one;
        }
        if (!crossing || !followBack(crossing->from, src) || !followOn(crossing->to, dst))
            return false;
        via[crossing->from] = crossing->link;
        writePath(src, dst);
        return std::ranges::all_of(noted, [&](const Crossing &one) {
            return !(one.score <= best + slack) || isOnPath(one, src, dst);
        });
    }

    /** Of a way over a crossing whose ends are final; infinity for others. */
    double scoreOver(const Crossing &crossing) const
    {
        if (!ahead.isFinal(crossing.from) || !behind.isFinal(crossing.to))
            return infinity;
        return terms.extended(ahead.scores[crossing.from], crossing.link) +
               behind.scores[crossing.to];
    }

    /** Notes the links up to a node on the source's side; false where several come near. */
    bool followBack(Long node, Long src)
    {
        while (node != src) {
            const double near = ahead.scores[node] + slack;
            Long nearLink = none;
            const Long end = index.firstIn[node + 1];
            for (Long link = index.firstIn[node]; link < end; ++link) {
                const Long from = index.source[link];
                if (!(terms.extendedBelow(near, ahead.atLeast(from), link) < near))
                    continue;
                if (nearLink != none || !ahead.isFinal(from))
                    return false;
                nearLink = link;
            }
            if (nearLink == none)
                return false;
            node = index.source[nearLink];
            via[node] = nearLink;
        }
        return true;
    }

    /** Notes the links from a node on the destination's side; false where several come near. */
    bool followOn(Long node, Long dst)
    {
        while (node != dst) {
            const double near = behind.scores[node] + slack;
            Long nearLink = none;
            const OutLink *end = index.outLinks + index.firstOut[node + 1];
            for (const OutLink *out = index.outLinks + index.firstOut[node]; out < end; ++out) {
                if (!(terms.extendedBelow(near, behind.atLeast(out->node), out->link) < near))
                    continue;
                if (nearLink != none || !behind.isFinal(out->node))
                    return false;
                nearLink = out->link;
            }
            if (nearLink == none)
                return false;
            via[node] = nearLink;
            node = index.destination[nearLink];
        }
        return true;
    }

    /** Goes along the links of the path, which is there in full. */
    void writePath(Long src, Long dst)
    {
        for (Long node = src; node != dst;) {
            const Long link = via[node];
            pathScore = terms.extended(pathScore, link);
            before[index.destination[link]] = node;
            node = index.destination[link];
        }
    }

    bool isOnPath(const Crossing &crossing, Long src, Long dst) const
    {
        Long node = src;
        while (node != dst && node != crossing.from)
            node = index.destination[via[node]];
        return node != dst && via[node] == crossing.link;
    }

    const NetworkIndex &index;
    const Terms &terms;
    Side ahead;  ///< of the source
    Side behind; ///< of the destination
    Long *before = nullptr;
    Long *via = nullptr;     ///< by node on the path: the link out of it
    double best = infinity;  ///< of a way from end to end so far
    double slack = infinity; ///< what is above the best by no more comes near to it
    std::array<Crossing, 64> crossings;
    std::ptrdiff_t nbCrossings = 0;
    bool isCrowded = false;
    double pathScore = 0.0;
};

#endif
