#include "computation/primary/driver.h"

#include "common/records.h"
#include "common/setup.h"
#include "computation/primary/indexed/search.h"
#include "computation/primary/plain/search.h"
#include "error/report.h"

#include <algorithm>

namespace
{

constexpr Unit here{"computation/primary/primaryPath"};

/** Topology node of an id; null, after a message, when the lookup fails. */
BKNode *lookUp(BKTopology &topo, Long id)
{
    Long position = 0;
    if (longVecGet(&topo.nodeInd, id, &position) != 0)
        return nullptr;
    return bkNodeVecGet(&topo.nodeVec, position);
}

/** Appends the nodes from `nd` back to `src`, both included. */
int walkBack(BKTopology &topo, Long src, Long nd, LongList &path)
{
    const BKNode *node = lookUp(topo, nd);
    while (node && nd != src) {
        if (node->neighbInd < 0)
            return here.fail("Destination unreachable in %s at line %d");
        if (longVecPushBack(&path, nd) != 0)
            return here.fail("Undetermined error in %s at line %d");
        nd = node->inNeighb.cont[node->neighbInd].neighbId;
        node = lookUp(topo, nd);
    }
    if (!node || longVecPushBack(&path, src) != 0)
        return here.fail("Undetermined error in %s at line %d");
    return 0;
}

/** Computes the path by way of the working topology; 0, or -1 after a message. */
int searchTopology(DataBase &db, LSPRequest &req)
{
    BKTopology topo{};
    if (initTopo(&topo, -1) != 0)
        return here.fail("Unable to initialize the topology structure in %s at line %d");
    const Guard<BKTopology, endTopo> guard{&topo};
    if (fillTopo(&db, &req, &topo) != 0)
        return here.fail("Unable to build topology in %s at line %d");
    if (bellmanKalaba(&topo, &req) != 0)
        return here.fail("Bellman-Kalaba failure in %s at line %d");
    if (updateRequest(&topo, &req) != 0)
        return here.fail("Unable to update requested path in %s at line %d");

    const Long dst = getRequestDst(&req);
    if (dst < 0)
        return -1;
    const BKNode *egress = lookUp(topo, dst);
    if (!egress)
        return here.fail("Unable to get egress node in %s at line %d");
    COST += egress->info.cost;
    return 0;
}

} // namespace

int computePrimaryPath(DataBase *dataBase, LSPRequest *req)
{
    if (!dataBase || !req)
        return here.fail("Bad argument (NULL) in %s at line %d");
    if (getRequestSrc(req) < 0)
        return here.fail("Unable to get requested source in %s at line %d");

    double cost = 0.0;
    switch (searchIndexed(*dataBase, *req, cost)) {
    case IndexedResult::found:
        COST += cost;
        return 0;
    case IndexedResult::unreachable:
        req->path.top = 0;
        here.push(CRITICAL, "Destination unreachable in %s at line %d");
        return here.fail("Unable to update requested path in %s at line %d");
    case IndexedResult::noMemory:
        here.push(CRITICAL, "Critical lack of memory in %s at line %d");
        return here.fail("Unable to build topology in %s at line %d");
    case IndexedResult::notTried:
        return searchTopology(*dataBase, *req);
    }
    return -1;
}

int updateRequest(BKTopology *topo, LSPRequest *req)
{
    if (!topo || !req)
        return here.fail("Bad argument (NULL) in %s at line %d");
    const Long src = getRequestSrc(req);
    if (src < 0)
        return here.fail("Unable to get requested source in %s at line %d");
    const Long dst = getRequestDst(req);
    if (dst < 0)
        return -1;

    req->path.top = 0;
    if (dst >= topo->nodeInd.top)
        return here.fail("Destination unreachable in %s at line %d");
    if (walkBack(*topo, src, dst, req->path) != 0)
        return -1;
    std::ranges::reverse(inUse(req->path));
    return 0;
}
