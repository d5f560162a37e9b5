/**
 * The nodes that a search in ascending order may come to next (unit
 * "computation/primary/primaryPath").
 */
#ifndef TARNEX_COMPUTATION_PRIMARY_INDEXED_FRONTIER_H
#define TARNEX_COMPUTATION_PRIMARY_INDEXED_FRONTIER_H

#include "common/layout.h"
#include "computation/primary/indexed/link_terms.h"
#include "database/indices/network_index.h"

#include <algorithm>
#include <array>
#include <limits>

/** A node and the score of some way to or from it; of no finite score: no node. */
struct FrontierEntry {
    double score;
    Long node;
};

/**
 * For links that add one of a few increments. The nodes come in ascending order, so the scores that
 * grew by the same increment do, too: a plain queue for each takes the place of a heap.
 */
template <class Terms>
class GradedFrontier
{
public:
    explicit GradedFrontier(const Terms &linkTerms) : terms(linkTerms) {}

    void layOut(Layout &layout, const NetworkIndex &index)
    {
        for (Queue &queue : queues)
            layout.place(queue.front, index.nbNodes + 1);
    }

    void clear()
    {
        for (Queue &queue : queues) {
            queue.end = queue.front;
            queue.front->score = infinity;
        }
    }

    /** Adds a node that was come to over a link from the one taken last, at its lowest score so
     * far: so none enters a queue twice. */
    void push(double score, Long node, Long link)
    {
        Queue &queue = queues[terms.gradeOf(link)];
        *queue.end++ = {score, node};
        queue.end->score = infinity;
    }

    /** Takes the entry of the least score out. */
    FrontierEntry take()
    {
        Queue *nearest = queues.data();
        for (Queue &queue : queues)
            nearest = queue.front->score < nearest->front->score ? &queue : nearest;
        if (nearest->front->score == infinity)
            return *nearest->front;
        return *nearest->front++;
    }

private:
    static constexpr double infinity = std::numeric_limits<double>::infinity();

    /** Entries in ascending order, and one of no finite score behind them. */
    struct Queue {
        FrontierEntry *front = nullptr;
        FrontierEntry *end = nullptr;
    };

    const Terms &terms;
    std::array<Queue, GradedTerms::noGrade> queues; ///< by grade
};

/** For any increments: a heap. */
class ListedFrontier
{
public:
    template <class Terms>
    explicit ListedFrontier(const Terms & /*terms*/)
    {
    }

    void layOut(Layout &layout, const NetworkIndex &index)
    {
        layout.place(heap, std::int64_t{index.nbLinks} + 1);
    }

    void clear() { size = 0; }

    /** Adds a node; each link does so once at most. */
    void push(double score, Long node, Long /*link*/)
    {
        heap[size++] = {score, node};
        std::push_heap(heap, heap + size, isFarther);
    }

    /** Takes the entry of the least score out. */
    FrontierEntry take()
    {
        if (size == 0)
            return {std::numeric_limits<double>::infinity(), 0};
        std::pop_heap(heap, heap + size, isFarther);
        return heap[--size];
    }

private:
    static bool isFarther(const FrontierEntry &a, const FrontierEntry &b)
    {
        return a.score > b.score;
    }

    FrontierEntry *heap = nullptr;
    Long size = 0;
};

#endif
