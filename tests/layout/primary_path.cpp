#include "computation/primary/primaryPath.h"

#include "layout/agreed.h"

TEST(Layout, PrimaryPath)
{
    expectAgreed<int(BKTopology *, Long)>(initTopo, activateNodeInfo);
    expectAgreed<int(DataBase *, LSPRequest *, BKTopology *)>(fillTopo);
    expectAgreed<int(BKTopology *)>(endTopo, printTopo);
    expectAgreed<double(BKTopology *, LSPRequest *, Long, Long, BKConnect *)>(makeScore);
    expectAgreed<int(BKTopology *, LSPRequest *)>(bellmanKalaba, updateRequest);
    expectAgreed<int(Long, BKTopology *)>(initScore);
    expectAgreed<int(BKTopology *, LSPRequest *, Long, Long, BKConnect *)>(updateNodeInfoOnElect);
    expectAgreed<int(BKTopology *, Long, Long)>(noLoop);
    expectAgreed<int(DataBase *, LSPRequest *)>(computePrimaryPath);
    expectAgreed<BKConnectVec *(Long)>(bkConnectVecNew);
    expectAgreed<int(BKConnectVec *, Long)>(bkConnectVecInit, bkConnectVecResize);
    expectAgreed<int(BKConnectVec *)>(bkConnectVecEnd, bkConnectVecDestroy);
    expectAgreed<int(BKConnectVec *, BKConnectVec *)>(bkConnectVecCopy);
    expectAgreed<int(BKConnectVec *, BKConnect *)>(bkConnectVecPushBack, bkConnectVecPopBack);
    expectAgreed<int(BKConnectVec *, Long, BKConnect *)>(bkConnectVecGet, bkConnectVecSet);
    expectAgreed<BKNodeVec *(Long)>(bkNodeVecNew);
    expectAgreed<int(BKNodeVec *, Long)>(bkNodeVecInit, bkNodeVecResize);
    expectAgreed<int(BKNodeVec *)>(bkNodeVecEnd, bkNodeVecDestroy);
    expectAgreed<int(BKNodeVec *, BKNode *)>(bkNodeVecPushBack, bkNodeVecPopBack);
    expectAgreed<int(BKNodeVec *, Long, BKNode *)>(bkNodeVecSet);
    expectAgreed<BKNode *(BKNodeVec *, Long)>(bkNodeVecGet);
    BKConnect connect{.neighbId = 0, .linkState = nullptr, .info = {.gain = {}}};
    expectAgreed<DBLinkState *>(&connect.linkState);
    static_cast<void>(BKTopology{.nodeVec = {.size = 0, .top = 0, .cont = nullptr},
                                 .nodeInd = {},
                                 .nbNodes = 0,
                                 .nbLinks = 0});
    static_cast<void>(
        BKNode{.nodeId = 0,
               .inNeighb = {.size = 0, .top = 0, .cont = nullptr},
               .outNeighb = {},
               .neighbInd = 0,
               .info = {.newNeighbInd = 0, .newCost = 0.0, .cost = 0.0, .newSum = {}, .sum = {}}});
}
