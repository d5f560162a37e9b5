#include "database/database_util.h"

#include "layout/agreed.h"

TEST(Layout, DatabaseUtil)
{
    expectAgreed<DBNode *()>(DBnodeNew);
    expectAgreed<int(DBNode *)>(DBnodeInit, DBnodeEnd, DBnodeDestroy);
    expectAgreed<DBLink *()>(DBlinkNew);
    expectAgreed<int(DBLink *)>(DBlinkInit, DBlinkEnd, DBlinkDestroy);
    expectAgreed<DBNodeVec *(Long)>(DBnodeVecNew);
    expectAgreed<int(DBNodeVec *, Long)>(DBnodeVecInit, DBnodeVecResize, DBnodeVecRemove);
    expectAgreed<int(DBNodeVec *)>(DBnodeVecEnd, DBnodeVecDestroy);
    expectAgreed<int(DBNodeVec *, DBNode *, Long)>(DBnodeVecSet);
    expectAgreed<DBLSPVec *(Long)>(DBlspVecNew);
    expectAgreed<int(DBLSPVec *, Long)>(DBlspVecInit, DBlspVecResize, DBlspVecRemove);
    expectAgreed<int(DBLSPVec *)>(DBlspVecEnd, DBlspVecDestroy);
    expectAgreed<int(DBLSPVec *, DBLabelSwitchedPath *, Long)>(DBlspVecSet);
    expectAgreed<DBLinkTab *(Long)>(DBlinkTabNew);
    expectAgreed<int(DBLinkTab *, Long)>(DBlinkTabInit, DBlinkTabResize);
    expectAgreed<int(DBLinkTab *)>(DBlinkTabEnd, DBlinkTabDestroy);
    expectAgreed<int(DBLinkTab *, DBLink *, Long, Long)>(DBlinkTabSet);
    expectAgreed<int(DBLinkTab *, Long, Long)>(DBlinkTabRemove);
    expectAgreed<void(DBNode *)>(DBprintNode);
    expectAgreed<void(DBLink *)>(DBprintLink);
}
