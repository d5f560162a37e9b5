#include "computation/primary/plain/topology.h"

#include "common/records.h"
#include "database/books/lookup.h"
#include "error/report.h"
#include "predicate/predicate.h"

#include <algorithm>
#include <cstdio>

namespace
{

constexpr Unit here{"computation/primary/primaryPath"};

/** Whether a node has been met by the traversal. */
enum Stage : int { notMet = 0, waiting = 1, added = 2 };

/** At which end of a link the node stands that is being added. */
enum class Side { in, out };

BKConnectVec &connections(BKNode &node, Side side)
{
    return side == Side::in ? node.inNeighb : node.outNeighb;
}

/**
 * Builds a topology by a traversal from the source along out-links, refused ones included. The
 * working storage is made once and reused for every node.
 */
class TopologyBuilder
{
public:
    TopologyBuilder(DataBase *dataBase, LSPRequest *request, BKTopology *topology)
        : db(dataBase), req(request), topo(topology)
    {
    }
    ~TopologyBuilder()
    {
        if (activeFlags)
            myfree(activeFlags);
        if (tmpNode.inNeighb.cont)
            bkConnectVecEnd(&tmpNode.inNeighb);
        if (tmpNode.outNeighb.cont)
            bkConnectVecEnd(&tmpNode.outNeighb);
    }
    TopologyBuilder(const TopologyBuilder &) = delete;
    TopologyBuilder &operator=(const TopologyBuilder &) = delete;

    int build(Long src)
    {
        if (makeWorkingStorage() != 0 || enqueue(src) != 0)
            return -1;
        while (toDoNodes.top > 0) {
            Long nd = 0;
            if (longVecPopBack(&toDoNodes, &nd) != 0)
                return here.fail("Unable to pop back on list of longs in %s at line %d");
            if (add(nd) != 0)
                return -1;
        }
        topo->nbNodes = DBgetNbNodes(db);
        topo->nbLinks = DBgetNbLinks(db);
        if (topo->nbNodes < 0 || topo->nbLinks < 0)
            return here.fail("Unable to get number of nodes and links in %s at line %d");
        return 0;
    }

private:
    int makeWorkingStorage()
    {
        nbIds = DBgetMaxNodeID(db) + 1;
        if (longVecInit(&toDoNodes, nbIds) != 0)
            return here.fail("Unable to initialize the active nodes list in %s at line %d");
        activeFlags =
            static_cast<Stage *>(mycalloc(static_cast<std::size_t>(nbIds), sizeof(Stage)));
        if (!activeFlags)
            return here.fail("Critical lack of memory in %s at line %d");
        if (bkConnectVecInit(&tmpNode.inNeighb, 1) != 0 ||
            bkConnectVecInit(&tmpNode.outNeighb, 1) != 0)
            return here.fail("Unable to initialize the temporary node in %s at line %d");
        return 0;
    }

    /** Queues a node; an id beyond the network is queued too and has no neighbour lists later. */
    int enqueue(Long nd)
    {
        if (longVecPushBack(&toDoNodes, nd) != 0)
            return here.fail("Unable to push back on list of longs in %s at line %d");
        if (nd < nbIds)
            activeFlags[nd] = waiting;
        return 0;
    }

    int add(Long nd)
    {
        const LongList *in = DBgetNodeInNeighb(db, nd);
        if (!in)
            return here.fail("Unable to get the list of neighbours in %s at line %d");
        const LongList *out = DBgetNodeOutNeighb(db, nd);
        if (!out)
            return here.fail("Unable to get the list of neighbours in %s at line %d");
        if (connectAll(nd, *in, Side::in) != 0 || connectAll(nd, *out, Side::out) != 0)
            return -1;
        tmpNode.nodeId = nd;
        tmpNode.neighbInd = -1;
        const Long position = topo->nodeVec.top;
        if (bkNodeVecPushBack(&topo->nodeVec, &tmpNode) != 0)
            return here.fail("Unable to push back node in %s at line %d");
        if (longVecSet(&topo->nodeInd, nd, position) != 0)
            return here.fail("Unable to set node index in %s at line %d");
        activeFlags[nd] = added;
        return 0;
    }

    /** Fills one list of the scratch node with the admitted links of `nd` on that side. */
    int connectAll(Long nd, const LongList &neighbours, Side side)
    {
        connections(tmpNode, side).top = 0;
        for (const Long nb : inUse(neighbours)) {
            const int result =
                activeFlags[nb] == added ? copyAnswer(nd, nb, side) : askPredicate(nd, nb, side);
            if (result != 0)
                return -1;
            if (side == Side::out && activeFlags[nb] == notMet && enqueue(nb) != 0)
                return -1;
        }
        return 0;
    }

    /** The link was put to the predicate when its other end was added. */
    int copyAnswer(Long nd, Long nb, Side side)
    {
        BKNode &other = placedNode(*topo, nb);
        const auto seen = inUse(connections(other, side == Side::in ? Side::out : Side::in));
        const auto same = std::ranges::find(seen, nd, &BKConnect::neighbId);
        return same == seen.end() ? 0 : append({nb, same->linkState, same->info}, side);
    }

    int askPredicate(Long nd, Long nb, Side side)
    {
        const Long src = side == Side::in ? nb : nd;
        const Long dst = side == Side::in ? nd : nb;
        DBLink *link = linkAt(db->linkTab, src, dst);
        BKConnect connect{nb, link ? &link->state : nullptr, {}};
        if (!isValidRequestLink(db, src, dst, connect.linkState, req, connect.info.gain))
            return 0;
        return append(connect, side);
    }

    int append(BKConnect connect, Side side)
    {
        if (bkConnectVecPushBack(&connections(tmpNode, side), &connect) != 0)
            return here.fail("Unable to push back neighbour in %s at line %d");
        return 0;
    }

    DataBase *db;
    LSPRequest *req;
    BKTopology *topo;
    Long nbIds = 0;
    Scoped<LongList, longVecEnd> toDoNodes;
    Stage *activeFlags = nullptr;
    BKNode tmpNode{};
};

void printNeighbours(const BKConnectVec &connects)
{
    for (const BKConnect &connect : inUse(connects))
        std::printf("%ld ", long{connect.neighbId});
}

} // namespace

int initTopo(BKTopology *topo, Long size)
{
    if (!topo)
        return here.fail("Bad argument (NULL) in %s at line %d");
    if (bkNodeVecInit(&topo->nodeVec, -1) != 0)
        return here.fail("Unable to initialize node vector in %s at line %d");
    if (longVecInit(&topo->nodeInd, size) != 0) {
        bkNodeVecEnd(&topo->nodeVec);
        return here.fail("Unable to initialize long vector in %s at line %d");
    }
    return 0;
}

int fillTopo(DataBase *dataBase, LSPRequest *req, BKTopology *topo)
{
    if (!dataBase || !req || !topo)
        return here.fail("Bad argument (NULL) in %s at line %d");
    const Long src = getRequestSrc(req);
    if (src < 0)
        return here.fail("Unable to get requested source in %s at line %d");
    return TopologyBuilder{dataBase, req, topo}.build(src);
}

int endTopo(BKTopology *topo)
{
    if (!topo)
        return here.fail("Bad argument (NULL) in %s at line %d");
    bkNodeVecEnd(&topo->nodeVec);
    longVecEnd(&topo->nodeInd);
    return 0;
}

int printTopo(BKTopology *topo)
{
    if (!topo)
        return here.fail("Bad argument (NULL) in %s at line %d");
    for (Long i = 0; i < topo->nodeInd.top; ++i) {
        const BKNode *node = bkNodeVecGet(&topo->nodeVec, topo->nodeInd.cont[i]);
        if (!node)
            continue;
        if (node->nodeId != i)
            return here.fail("Topology unconsistancy in %s at line %d");
        std::printf("Node %ld\n--------\n", long{i});
        std::printf("Incoming neighboors : \n");
        printNeighbours(node->inNeighb);
        std::printf("\nOutgoing neighboors : \n");
        printNeighbours(node->outNeighb);
        std::printf("\nChosen Neighbour Index: %ld \n\n", long{node->neighbInd});
    }
    return 0;
}
