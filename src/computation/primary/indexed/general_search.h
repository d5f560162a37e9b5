/**
 * The label-correcting search in passes (plain/search.h), on node and link numbers and whatever the
 * weights (unit "computation/primary/primaryPath").
 *
 * A node chooses as in the plain search, the test for loops included, with the labels that it would
 * find there. But it is looked at only if that can end otherwise than the last time: a label before
 * it, its own label or the reached nodes before it have changed, or a link was refused because of a
 * loop.
 */
#ifndef TARNEX_COMPUTATION_PRIMARY_INDEXED_GENERAL_SEARCH_H
#define TARNEX_COMPUTATION_PRIMARY_INDEXED_GENERAL_SEARCH_H

#include "common/layout.h"
#include "computation/primary/improvement.h"
#include "computation/primary/indexed/link_appraisal.h"
#include "database/indices/network_index.h"

#include <algorithm>

/** One search. */
class GeneralSearch
{
public:
    GeneralSearch(const NetworkIndex &networkIndex, const GeneralTerms &linkTerms, Long sourceNode)
        : index(networkIndex), terms(linkTerms), src(sourceNode)
    {
    }

    /** Lays out the tables that the search works on. */
    void layOut(Layout &layout)
    {
        layout.place(labels, index.nbNodes);
        layout.place(before, index.nbNodes);
        layout.place(order, index.nbNodes);
        layout.place(isToBeLookedAt, index.nbNodes);
        layout.place(sums, index.nbNodes * std::int64_t{terms.nbSums()});
        layout.place(newSums, index.nbNodes * std::int64_t{terms.nbSums()});
    }

    /** Labels all nodes that can be reached; `verdicts` are by link. */
    void run(const unsigned char *verdicts)
    {
        admission = verdicts;
        std::fill_n(labels, index.nbNodes, Label{});
        std::fill_n(isToBeLookedAt, index.nbNodes, false);
        addUpUtilization();
        labels[src] = {0.0, 0.0, none, none, true};
        before[src] = src;
        expand(src);
        Long nbExpanded = 0;
        bool isDone = false;
        while (!isDone) {
            const Long top = nbReached;
            hasChanged = false;
            for (Long i = 0; i < top; ++i) {
                if (isToBeLookedAt[order[i]])
                    lookAt(order[i]);
                if (i >= nbExpanded)
                    expand(order[i]);
            }
            nbExpanded = top;
            commit(top);
            isDone = !hasChanged && nbReached == top;
        }
    }

    bool isReached(Long node) const { return labels[node].isReached; }
    double costOf(Long node) const { return labels[node].cost; }
    /** By node: the one before it on its path. */
    const Long *predecessors() const { return before; }

private:
    static constexpr Long none = -1;

    struct Label {
        double cost = 0.0;    ///< committed
        double newCost = 0.0; ///< of the choice of this pass
        Long link = none;     ///< committed
        Long newLink = none;
        bool isReached = false;
    };

    bool isAdmitted(Long link) const { return admission[link] == admitted; }
    double *sumsOf(double *all, Long node) const
    {
        return all + std::ptrdiff_t{node} * terms.nbSums();
    }
    double scoreOver(Long link) const
    {
        const Long from = index.source[link];
        return terms.extended(labels[from].cost, sumsOf(sums, from), link);
    }

    /** The source starts with the utilization of all links into the nodes that it reaches over any
     * links, added up in the order in which a traversal that goes on from the last node first meets
     * them. */
    void addUpUtilization()
    {
        if (terms.nbSums() == 0)
            return;
        double *total = sumsOf(sums, src);
        std::fill_n(total, terms.nbSums(), 0.0);
        Long *waiting = order; // lists and marks are free until the search begins
        bool *isMet = isToBeLookedAt;
        Long nbWaiting = 0;
        waiting[nbWaiting++] = src;
        isMet[src] = true;
        while (nbWaiting > 0) {
            const Long node = waiting[--nbWaiting];
            for (Long link = index.firstIn[node]; link < index.firstIn[node + 1]; ++link) {
                if (isAdmitted(link))
                    addUtilization(link, total);
            }
            for (Long k = index.firstOut[node]; k < index.firstOut[node + 1]; ++k) {
                const Long to = index.outLinks[k].node;
                if (!isMet[to])
                    waiting[nbWaiting++] = to;
                isMet[to] = true;
            }
        }
        std::fill_n(isMet, index.nbNodes, false);
    }

    void addUtilization(Long link, double *total) const
    {
        for (const int oa : terms.balanced) {
            const LinkFigures &figures = index.figures[oa][link];
            *total++ += figures.load / figures.capacity;
        }
    }

    /** Labels what links of a node lead to for the first time; such a label is final for the pass.
     */
    void expand(Long node)
    {
        for (Long k = index.firstOut[node]; k < index.firstOut[node + 1]; ++k) {
            const auto [to, link] = index.outLinks[k];
            if (labels[to].isReached || !isAdmitted(link))
                continue;
            const double score = scoreOver(link);
            labels[to] = {score, score, link, link, true};
            before[to] = node;
            terms.extendSums(sumsOf(sums, node), link, sumsOf(sums, to));
            std::copy_n(sumsOf(sums, to), terms.nbSums(), sumsOf(newSums, to));
            order[nbReached++] = to;
            isToBeLookedAt[to] = true;
            lookAgainBehind(to);
        }
    }

    void lookAgainBehind(Long node)
    {
        for (Long k = index.firstOut[node]; k < index.firstOut[node + 1]; ++k)
            isToBeLookedAt[index.outLinks[k].node] = true;
    }

    void lookAt(Long node)
    {
        Label &own = labels[node];
        isToBeLookedAt[node] = false;
        for (Long link = index.firstIn[node]; link < index.firstIn[node + 1]; ++link) {
            const Long from = index.source[link];
            if (!isAdmitted(link) || !labels[from].isReached)
                continue;
            const double score = scoreOver(link);
            if (!improves(score, own.cost))
                continue;
            if (isOnWayTo(node, from)) {
                isToBeLookedAt[node] = true;
                continue;
            }
            own.newLink = link;
            own.newCost = score;
            terms.extendSums(sumsOf(sums, from), link, sumsOf(newSums, node));
            hasChanged = true;
        }
    }

    /** Whether `node` is on the way to `end` by the choices of this pass. */
    bool isOnWayTo(Long node, Long end) const
    {
        while (end != node && end != src)
            end = index.source[labels[end].newLink];
        return end == node;
    }

    /** Makes the pass's choices the labels of the next pass. */
    void commit(Long top)
    {
        for (Long i = 0; i < top; ++i) {
            const Long node = order[i];
            Label &label = labels[node];
            if (label.newLink == label.link && label.newCost == label.cost)
                continue;
            label.cost = label.newCost;
            label.link = label.newLink;
            before[node] = index.source[label.link];
            std::copy_n(sumsOf(newSums, node), terms.nbSums(), sumsOf(sums, node));
            isToBeLookedAt[node] = true;
            lookAgainBehind(node);
        }
    }

    const NetworkIndex &index;
    const GeneralTerms &terms;
    Long src;
    const unsigned char *admission = nullptr; ///< by link
    Label *labels = nullptr;                  ///< by node
    Long *before = nullptr;                   ///< by node: its predecessor on the committed path
    Long *order = nullptr;                    ///< nodes in the order in which they are reached
    bool *isToBeLookedAt = nullptr;           ///< by node
    double *sums = nullptr; ///< by node and balanced class type: growth of utilization, committed
    double *newSums = nullptr; ///< likewise, of the choice of this pass
    Long nbReached = 0;
    bool hasChanged = false;
};

#endif
