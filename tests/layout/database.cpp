#include "database/database.h"

#include "layout/agreed.h"

TEST(Layout, Database)
{
    expectAgreed<DataBase *(Long)>(DBnew);
    expectAgreed<int(DataBase *)>(DBdestroy);
    expectAgreed<Long(DataBase *)>(DBgetID, DBgetNbNodes, DBgetMaxNodeID, DBgetNbLinks);
    expectAgreed<int(DataBase *, Long)>(DBaddNode, DBremoveNode, DBremoveLSP);
    expectAgreed<int(DataBase *, Long, Long, Long, DBLinkState *)>(DBaddLink);
    expectAgreed<int(DataBase *, Long, Long)>(DBremoveLink);
    expectAgreed<Long(DataBase *, Long, Long)>(DBgetLinkID);
    expectAgreed<Long(DataBase *, Long)>(DBgetLinkSrc, DBgetLinkDst);
    expectAgreed<DBLabelSwitchedPath *(DataBase *, Long)>(DBgetLSP);
    expectAgreed<DBLSPList *(DataBase *, Long, Long)>(DBgetLinkLSPs);
    expectAgreed<DBLinkState *(DataBase *, Long, Long)>(DBgetLinkState);
    expectAgreed<int(DataBase *, Long, Long, DBLinkState *)>(DBsetLinkState);
    expectAgreed<LongList *(DataBase *, Long)>(DBgetNodeInNeighb, DBgetNodeOutNeighb);
    expectAgreed<DBLabelSwitchedPath *()>(DBlspNew);
    expectAgreed<int(DBLabelSwitchedPath *)>(DBlspInit, DBlspEnd, DBlspDestroy);
    expectAgreed<int(DBLabelSwitchedPath *, DBLabelSwitchedPath *)>(DBlspCopy);
    expectAgreed<int(const DBLabelSwitchedPath *, const DBLabelSwitchedPath *)>(DBlspCompare);
    expectAgreed<DBLSPList *(Long)>(DBlspListNew);
    expectAgreed<int(DBLSPList *, Long)>(DBlspListInit);
    expectAgreed<int(DBLSPList *)>(DBlspListEnd, DBlspListDestroy);
    expectAgreed<int(DBLSPList *, DBLabelSwitchedPath *)>(DBlspListInsert, DBlspListRemove);
    expectAgreed<DBLinkState *()>(DBlinkStateNew);
    expectAgreed<int(DBLinkState *)>(DBlinkStateInit, DBlinkStateEnd, DBlinkStateDestroy);
    expectAgreed<int(DBLinkState *, DBLinkState *)>(DBlinkStateCopy);
    expectAgreed<int(DataBase *, Long, Long, DBLinkState *, DBLabelSwitchedPath *, operation)>(
        updateLS);
    expectAgreed<int(DataBase *, Long, Long, DBLinkState *, DBLinkState *, LSPRequest *,
                     operation)>(evalLS);
    expectAgreed<int(DataBase *, double(*)[MAXPL], double(*)[MAXPL], DoubleVec(*)[MAXPL],
                     DoubleVec(*)[MAXPL])>(computeRBW);
    expectAgreed<int(DataBase *, Long, Long, DBLinkState *, DBLabelSwitchedPath *)>(
        DBupdateLSOnSetup, DBupdateLSOnRemove);
    expectAgreed<int(DataBase *, Long, Long, DBLinkState *, DBLinkState *, LSPRequest *)>(
        DBevalLSOnSetup, DBevalLSOnRemove);
    expectAgreed<int(DataBase *, DBLabelSwitchedPath *, LongList *)>(getpreemptList, DBaddLSP);
    expectAgreed<void(DataBase *)>(DBprintDB);
    static_assert(SETUP == 0 && REMOVE == 1);
    static_cast<void>(DBLabelSwitchedPath{.id = 0,
                                          .noContentionId = 0,
                                          .precedence = 0,
                                          .bw = {},
                                          .forbidLinks = {},
                                          .path = {},
                                          .type = 0,
                                          .primID = 0,
                                          .primPath = {},
                                          .backLSPIDs = {}});
    static_cast<void>(DBLSPList{.size = 0, .top = 0, .cont = nullptr});
    static_cast<void>(DBLinkState{.color = 0,
                                  .cap = {},
                                  .rbw = {},
                                  .pbw = {},
                                  .bbw = {},
                                  .remoteBbw = {},
                                  .fbw = {},
                                  .remoteFbw = {}});
}
