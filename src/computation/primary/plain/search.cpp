#include "computation/primary/plain/search.h"

#include "common/records.h"
#include "common/setup.h"
#include "computation/primary/improvement.h"
#include "computation/primary/plain/score.h"
#include "error/report.h"

#include <algorithm>

namespace
{

constexpr Unit here{"computation/primary/primaryPath"};

/** How far the search has come with a node. */
enum Stage : int { notReached = 0, reached = 1, expanded = 2 };

bool isLoadBalanced(int oa) { return tarnexConfig.primaryComputationConfig.loadBal[oa] != 0.0; }

class Search
{
public:
    Search(BKTopology *topology, LSPRequest *request, Long source)
        : topo(topology), req(request), src(source), size(topology->nodeInd.top)
    {
    }
    ~Search()
    {
        if (activeFlags)
            myfree(activeFlags);
    }
    Search(const Search &) = delete;
    Search &operator=(const Search &) = delete;

    int run()
    {
        if (makeWorkingLists() != 0 || start() != 0)
            return -1;
        bool done = false;
        while (!done) {
            // Nodes reached during this pass are looked at from the next one on.
            const Long top = activeNodes.top;
            done = true;
            for (Long i = 0; i < top; ++i) {
                const Long nd = activeNodes.cont[i];
                if (relax(nd, done) != 0 || expand(nd, done) != 0)
                    return -1;
            }
            commit(top);
        }
        return 0;
    }

private:
    int makeWorkingLists()
    {
        if (longVecInit(&activeNodes, size) != 0)
            return here.fail("Unable to initialize the active nodes list in %s at line %d");
        activeFlags = static_cast<Stage *>(mycalloc(static_cast<std::size_t>(size), sizeof(Stage)));
        return activeFlags ? 0 : here.fail("Critical lack of memory in %s at line %d");
    }

    /** The first hop: reaches every out-neighbour of the source but the source itself. */
    int start()
    {
        if (src >= size)
            return here.fail("Inexistent node in %s at line %d");
        if (initScore(src, topo) != 0)
            return here.fail("Unable to initialize scores in %s at line %d");
        for (const BKConnect &out : inUse(placedNode(*topo, src).outNeighb)) {
            if (out.neighbId >= size)
                return here.fail("Inexistent node in %s at line %d");
            if (out.neighbId != src && reach(src, out.neighbId) != 0)
                return -1;
        }
        activeFlags[src] = expanded;
        return 0;
    }

    /** Labels `nd` for the first time, from `from`; the label is final for the pass. */
    int reach(Long from, Long nd)
    {
        if (longVecPushBack(&activeNodes, nd) != 0)
            return here.fail("Undetermined error in %s at line %d");
        BKNode *node = bkNodeVecGet(&topo->nodeVec, topo->nodeInd.cont[nd]);
        if (!node)
            return here.fail("Undetermined error in %s at line %d");
        const auto in = inUse(node->inNeighb);
        const auto link = std::ranges::find(in, from, &BKConnect::neighbId);
        if (link == in.end())
            return here.fail("Topology unconsistancy in %s at line %d");
        node->info.cost = makeScore(topo, req, from, nd, &*link);
        node->info.newCost = node->info.cost;
        node->neighbInd = static_cast<Long>(link - in.begin());
        node->info.newNeighbInd = node->neighbInd;
        updateNodeInfoOnElect(topo, req, from, nd, &*link);
        activateNodeInfo(topo, nd);
        activeFlags[nd] = reached;
        return 0;
    }

    /** Re-examines a reached node against all its in-links. */
    int relax(Long nd, bool &done)
    {
        BKNode &node = placedNode(*topo, nd);
        for (Long j = 0; j < node.inNeighb.top; ++j) {
            BKConnect &in = node.inNeighb.cont[j];
            if (in.neighbId >= size)
                return here.fail("Inexistent node in %s at line %d");
            if (activeFlags[in.neighbId] == notReached || !noLoop(topo, in.neighbId, nd))
                continue;
            const double score = makeScore(topo, req, in.neighbId, nd, &in);
            if (improves(score, node.info.cost)) {
                node.info.newNeighbInd = j;
                node.info.newCost = score;
                done = false;
                updateNodeInfoOnElect(topo, req, in.neighbId, nd, &in);
            }
        }
        return 0;
    }

    /** Follows the out-links of a reached node, once. */
    int expand(Long nd, bool &done)
    {
        if (activeFlags[nd] == expanded)
            return 0;
        if (activeFlags[nd] == notReached)
            return here.fail("Internal unconsistancy in %s at line %d");
        for (const BKConnect &out : inUse(placedNode(*topo, nd).outNeighb)) {
            if (out.neighbId >= size)
                return here.fail("Inexistent node in %s at line %d");
            if (activeFlags[out.neighbId] != notReached)
                continue;
            done = false;
            if (reach(nd, out.neighbId) != 0)
                return -1;
        }
        activeFlags[nd] = expanded;
        return 0;
    }

    /** Makes the pass's choices the labels of the next pass. */
    void commit(Long top)
    {
        for (Long i = 0; i < top; ++i) {
            const Long nd = activeNodes.cont[i];
            BKNode &node = placedNode(*topo, nd);
            node.info.cost = node.info.newCost;
            node.neighbInd = node.info.newNeighbInd;
            activateNodeInfo(topo, nd);
        }
    }

    BKTopology *topo;
    LSPRequest *req;
    Long src;
    Long size; ///< one more than the largest placed id
    Scoped<LongList, longVecEnd> activeNodes;
    Stage *activeFlags = nullptr;
};

} // namespace

int bellmanKalaba(BKTopology *topo, LSPRequest *req)
{
    if (!topo)
        return here.fail("Bad argument (NULL) in %s at line %d");
    const Long src = getRequestSrc(req);
    if (src < 0)
        return here.fail("Unable to get requested source in %s at line %d");
    return Search{topo, req, src}.run();
}

int initScore(Long src, BKTopology *topo)
{
    if (!topo)
        return here.fail("Bad argument (NULL) in %s at line %d");
    bool anyLoadBalanced = false;
    for (int oa = 0; oa < MAXOA; ++oa)
        anyLoadBalanced |= isLoadBalanced(oa);
    if (!anyLoadBalanced)
        return 0;

    BKNodeInfo &source = placedNode(*topo, src).info;
    for (int oa = 0; oa < MAXOA; ++oa) {
        source.sum[oa] = 0.0;
        for (const BKNode &node : inUse(topo->nodeVec)) {
            for (const BKConnect &in : inUse(node.inNeighb))
                source.sum[oa] += primaryLoad(*in.linkState, oa) / in.linkState->cap[oa];
        }
    }
    return 0;
}

int updateNodeInfoOnElect(BKTopology *topo, LSPRequest *req, Long src, Long dst, BKConnect *connect)
{
    if (!topo || !connect)
        return here.fail("Bad argument (NULL) in %s at line %d");
    const BKNodeInfo &from = placedNode(*topo, src).info;
    BKNodeInfo &to = placedNode(*topo, dst).info;
    for (int oa = 0; oa < MAXOA; ++oa) {
        if (isLoadBalanced(oa))
            to.newSum[oa] = req->bw[oa] / connect->linkState->cap[oa] + from.sum[oa];
    }
    return 0;
}

int activateNodeInfo(BKTopology *topo, Long nd)
{
    if (!topo)
        return here.fail("Bad argument (NULL) in %s at line %d");
    BKNodeInfo &info = placedNode(*topo, nd).info;
    for (int oa = 0; oa < MAXOA; ++oa) {
        if (isLoadBalanced(oa))
            info.sum[oa] = info.newSum[oa];
    }
    return 0;
}

int noLoop(BKTopology *topo, Long src, Long dst)
{
    const BKNode *node = &placedNode(*topo, src);
    while (node->neighbInd != -1) {
        if (node->nodeId == dst)
            return 0;
        node = &placedNode(*topo, node->inNeighb.cont[node->info.newNeighbInd].neighbId);
    }
    return node->nodeId != dst ? 1 : 0;
}
