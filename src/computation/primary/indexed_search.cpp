#include "computation/primary/indexed_search.h"

#include "common/layout.h"
#include "common/records.h"
#include "common/setup.h"
#include "common/vector.h"
#include "computation/primary/increments.h"
#include "computation/primary/search.h"
#include "predicate/predicate.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cassert>
#include <cmath>
#include <cstdint>
#include <limits>

namespace
{

constexpr double refused = std::numeric_limits<double>::quiet_NaN();
/** Increments up to this size can be added up along any path without leaving the finite numbers. */
constexpr double largestIncrement = 1e280;

/** The class types that a request's score or admission depends on. */
struct ClassList {
    std::array<int, MAXOA> items{};
    int count = 0;

    void add(int oa) { items[static_cast<std::size_t>(count++)] = oa; }
    const int *begin() const { return items.data(); }
    const int *end() const { return items.data() + count; }
};

bool hasIncrements(const PrimaryComputationConfig &w, int oa)
{
    return w.load[oa] != 0.0 || w.sqLoad[oa] != 0.0 || w.relLoad[oa] != 0.0 ||
           w.sqRelLoad[oa] != 0.0 || w.delay[oa] != 0.0;
}

/** Whether the weights are finite and leave out what depends on more than link and request. */
bool areUsual(const PrimaryComputationConfig &w)
{
    for (int oa = 0; oa < MAXOA; ++oa) {
        const double sum = std::abs(w.load[oa]) + std::abs(w.sqLoad[oa]) + std::abs(w.relLoad[oa]) +
                           std::abs(w.sqRelLoad[oa]) + std::abs(w.delay[oa]) + std::abs(w.Fortz);
        if (!std::isfinite(sum) || w.loadBal[oa] != 0.0 || w.rerouting[oa] != 0.0)
            return false;
    }
    return true;
}

bool isUsual(const LSPRequest &req)
{
    const auto path = inUse(req.path);
    const bool isOpen =
        path.size() > 2 && std::ranges::any_of(path, [](Long id) { return id < 0; });
    const bool isFinite =
        std::ranges::all_of(req.bw, [](double bw) { return std::isfinite(bw) && bw >= 0.0; });
    const PredicateConfig &config = tarnexConfig.predicateConfig;
    return req.type == primaryLSP && isOpen && isFinite && req.rerouteInfo.id < 0 &&
           req.precedence >= 0 && req.precedence < MAXPL &&
           (!config.colorClause || req.forbidLinks.top == 0) &&
           areUsual(tarnexConfig.primaryComputationConfig);
}

/** Decides which links may be used and what each adds to the score. */
class LinkAppraisal
{
public:
    LinkAppraisal(DataBase &database, const LSPRequest &request) : db(database), req(request)
    {
        for (int oa = 0; oa < MAXOA; ++oa) {
            if (req.bw[oa] != 0.0) {
                requested.add(oa);
                requestedBits |= 1U << oa;
            }
            if (hasIncrements(weights, oa) || (weights.Fortz != 0.0 && req.bw[oa] != 0.0))
                scored.add(oa);
        }
    }

    /** How many increments each link has. */
    Long termsPerLink() const
    {
        Long count = 0;
        forEachTerm(0, [&count](double) { ++count; });
        return std::max(count, Long{1});
    }

    /** Fills in the increments of every link, `refused` for one that is not admitted; false when
     * one is no finite number. */
    bool fill(double *terms, Long perLink)
    {
        for (Long link = 0; link < db.index.nbLinks; ++link) {
            double *own = terms + std::ptrdiff_t{link} * perLink;
            own[0] = 0.0;
            if (!admits(link)) {
                own[0] = refused;
                continue;
            }
            double largest = 0.0;
            forEachTerm(link, [&](double term) {
                *own++ = term;
                largest = std::max(largest, std::abs(term));
            });
            if (!(largest <= largestIncrement))
                return false;
        }
        return true;
    }

private:
    template <class Add>
    void forEachTerm(Long link, Add add) const
    {
        for (const int oa : scored) {
            const LinkFigures &figures = db.index.figures[oa][link];
            const LinkTerms terms{figures.load, figures.capacity, req.bw[oa]};
            if (weights.Fortz != 0.0)
                add(fortzIncrement(weights, terms));
            forEachIncrement(weights, oa, terms, add);
        }
    }

    bool admits(Long link)
    {
        if (!config.capacityClause)
            return true;
        const NetworkIndex &index = db.index;
        const unsigned doubtful =
            (index.overfull[link] & ~requestedBits) | (index.ownFailureNeeds[link] & requestedBits);
        Fit fit = doubtful == 0 ? Fit::yes : Fit::unknown;
        for (const int oa : requested) {
            const Fit inClass = fitOf(index.figures[oa][link], req.bw[oa]);
            fit = inClass == Fit::yes ? fit : inClass;
        }
        const bool mustAsk =
            fit == Fit::unknown || (fit == Fit::no && (doubtful != 0 || config.allowReroute));
        assert(mustAsk || ask(link) == (fit == Fit::yes));
        return mustAsk ? ask(link) : fit == Fit::yes;
    }

    bool ask(Long link)
    {
        const NetworkIndex &index = db.index;
        const DBLink &stored = *index.links[link];
        double gain[MAXOA];
        return isValidRequestLink(&db, index.nodeIds[index.source[link]],
                                  index.nodeIds[index.destination[link]], &stored.state, &req,
                                  gain);
    }

    DataBase &db;
    const LSPRequest &req;
    const PredicateConfig &config = tarnexConfig.predicateConfig;
    const PrimaryComputationConfig &weights = tarnexConfig.primaryComputationConfig;
    ClassList requested;
    ClassList scored;
    unsigned requestedBits = 0;
};

/** The label-correcting search in passes, on node and link numbers. */
class PassSearch
{
public:
    PassSearch(const NetworkIndex &networkIndex, Long sourceNode, Long incrementsPerLink)
        : index(networkIndex), src(sourceNode), termsPerLink(incrementsPerLink)
    {
    }

    /** Points the tables into a block; the bytes they take. */
    std::size_t layOut(void *block)
    {
        Layout layout{block};
        layout.place(terms, std::int64_t{index.nbLinks} * termsPerLink);
        layout.place(cost, index.nbNodes);
        layout.place(newCost, index.nbNodes);
        layout.place(predecessor, index.nbNodes);
        layout.place(newPredecessor, index.nbNodes);
        layout.place(order, index.nbNodes);
        layout.place(changed, index.nbNodes);
        layout.place(position, index.nbNodes);
        layout.place(toLookAt, index.nbNodes / 64 + 1);
        return layout.bytes();
    }

    /** Room for the increments of every link, to be filled in before the search. */
    double *increments() { return terms; }

    void run()
    {
        std::fill_n(position, index.nbNodes, notReached);
        std::fill_n(toLookAt, index.nbNodes / 64 + 1, 0);
        cost[src] = newCost[src] = 0.0;
        position[src] = isSource;
        expand(src);
        do {
            done = true;
            const Long top = nbReached;
            for (Long i = nextToLookAt(0, top); i < top; i = nextToLookAt(i + 1, top))
                lookAt(order[i], i);
            commit();
        } while (!done);
    }

    bool isReached(Long node) const { return position[node] >= 0; }
    double costOf(Long node) const { return cost[node]; }
    /** The node before `node` on its path. */
    Long before(Long node) const { return index.source[predecessor[node]]; }

private:
    static constexpr Long notReached = -1;
    static constexpr Long isSource = -2;
    static constexpr Long isExpanded = 1 << 30; ///< added to a position

    double extended(double from, Long link) const
    {
        const double *own = terms + std::ptrdiff_t{link} * termsPerLink;
        for (Long i = 0; i < termsPerLink; ++i)
            from += own[i];
        return from;
    }

    /** First position from `from` on to be looked at in a pass over `top` positions. */
    Long nextToLookAt(Long from, Long top) const
    {
        for (Long word = from / 64; word * 64 < top; ++word) {
            std::uint64_t bits = toLookAt[word];
            if (word == from / 64)
                bits &= ~std::uint64_t{0} << (from % 64);
            if (bits != 0)
                return std::min(top, word * 64 + std::countr_zero(bits));
        }
        return top;
    }

    void mark(Long i) { toLookAt[i / 64] |= std::uint64_t{1} << (i % 64); }
    void unmark(Long i) { toLookAt[i / 64] &= ~(std::uint64_t{1} << (i % 64)); }

    /** The label of `node` has changed: what it leads to is looked at again. */
    void markFollowers(Long node)
    {
        for (Long k = index.firstOut[node]; k < index.firstOut[node + 1]; ++k) {
            const Long to = index.destination[index.outLinks[k]];
            if (position[to] >= 0)
                mark(position[to] & ~isExpanded);
        }
    }

    void lookAt(Long node, Long i)
    {
        unmark(i);
        if (relax(node))
            changed[nbChanged++] = node;
        if (!(position[node] & isExpanded)) {
            position[node] |= isExpanded;
            expand(node);
        }
    }

    /** Chooses the last in-link that lowers the committed cost; whether there is one. A winner that
     * would close a loop has the node looked at again. */
    bool relax(Long node)
    {
        bool hasChosen = false;
        for (Long link = index.firstIn[node]; link < index.firstIn[node + 1]; ++link) {
            const Long from = index.source[link];
            if (position[from] == notReached)
                continue;
            const double score = extended(cost[from], link);
            if (!(score - cost[node] < -improvementMargin))
                continue;
            if (closesLoop(from, node)) {
                mark(position[node] & ~isExpanded);
                continue;
            }
            newCost[node] = score;
            newPredecessor[node] = link;
            hasChosen = true;
        }
        done = done && !hasChosen;
        return hasChosen;
    }

    /** Whether `node` lies on the chain of this pass's choices that leads to `from`. */
    bool closesLoop(Long from, Long node) const
    {
        while (from != src && from != node)
            from = index.source[newPredecessor[from]];
        return from == node;
    }

    void expand(Long node)
    {
        for (Long k = index.firstOut[node]; k < index.firstOut[node + 1]; ++k) {
            const Long link = index.outLinks[k];
            const Long to = index.destination[link];
            if (position[to] == notReached &&
                !std::isnan(terms[std::ptrdiff_t{link} * termsPerLink]))
                reach(to, node, link);
        }
    }

    void reach(Long node, Long from, Long link)
    {
        cost[node] = newCost[node] = extended(cost[from], link);
        predecessor[node] = newPredecessor[node] = link;
        position[node] = nbReached;
        order[nbReached] = node;
        mark(nbReached++);
        markFollowers(node);
        done = false;
    }

    /** Makes the pass's choices the labels of the next pass. */
    void commit()
    {
        for (const Long node : std::span{changed, static_cast<std::size_t>(nbChanged)}) {
            cost[node] = newCost[node];
            predecessor[node] = newPredecessor[node];
            mark(position[node] & ~isExpanded);
            markFollowers(node);
        }
        nbChanged = 0;
    }

    const NetworkIndex &index;
    Long src;
    Long termsPerLink;
    double *terms = nullptr;        ///< increments by link, `refused` first if it is not admitted
    double *cost = nullptr;         ///< by node, committed
    double *newCost = nullptr;      ///< by node, of the pass's choice
    Long *predecessor = nullptr;    ///< by node: its link on the committed path
    Long *newPredecessor = nullptr; ///< by node: its link in the pass's choice
    Long *order = nullptr;          ///< nodes in the order in which they are reached
    Long *changed = nullptr;        ///< nodes with a choice in this pass
    Long *position = nullptr;       ///< by node: its place in `order`, or one of the constants
    std::uint64_t *toLookAt = nullptr; ///< a bit per place in `order`
    Long nbReached = 0;
    Long nbChanged = 0;
    bool done = false;
};

/** Writes the path that ends at node number `node`, whose id is `dst`; false without memory. */
bool writePath(const NetworkIndex &index, const PassSearch &search, Long src, Long node,
               LongList &path)
{
    Long length = 1;
    for (Long i = node; i != src; i = search.before(i))
        ++length;
    if (length > path.size && !vec::grow(path, length))
        return false;
    path.top = length;
    for (Long i = node; length-- > 0; i = length > 0 ? search.before(i) : i)
        path.cont[length] = index.nodeIds[i];
    return true;
}

/** Number of a node that has links; -1 for any other id. */
Long linkedNode(const DataBase &db, Long id)
{
    const DBNode *node = nodeAt(db.nodeVec, id);
    return node && node->inNeighb.top + node->outNeighb.top > 0 ? node->number : -1;
}

} // namespace

IndexedResult searchIndexed(DataBase &db, LSPRequest &req, double &cost)
{
    if (!isUsual(req))
        return IndexedResult::notTried;
    if (!bringUpToDate(db))
        return IndexedResult::noMemory;
    if (!db.index.isConnected)
        return IndexedResult::notTried;
    NetworkIndex &index = db.index;
    const Long src = linkedNode(db, req.path.cont[0]);
    const Long dst = linkedNode(db, req.path.cont[req.path.top - 1]);
    if (src < 0 || dst < 0 || src == dst)
        return IndexedResult::notTried;

    LinkAppraisal appraisal{db, req};
    PassSearch search{index, src, appraisal.termsPerLink()};
    void *workspace = workspaceOf(index, search.layOut(nullptr));
    if (!workspace)
        return IndexedResult::noMemory;
    search.layOut(workspace);
    if (!appraisal.fill(search.increments(), appraisal.termsPerLink()))
        return IndexedResult::notTried;
    search.run();
    if (!search.isReached(dst))
        return IndexedResult::unreachable;
    if (!writePath(index, search, src, dst, req.path))
        return IndexedResult::noMemory;
    cost = search.costOf(dst);
    return IndexedResult::found;
}
