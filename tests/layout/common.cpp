#include "common/common.h"

#include "layout/agreed.h"

TEST(Layout, Common)
{
    expectAgreed<void *(std::size_t)>(mymalloc);
    expectAgreed<void *(std::size_t, std::size_t)>(mycalloc);
    expectAgreed<void *(void *, std::size_t)>(myrealloc);
    expectAgreed<void(void *)>(myfree);
    expectAgreed<Long>(&allocatedMemory);
    expectAgreed<LongVec *(Long)>(longVecNew);
    expectAgreed<int(LongVec *, Long)>(longVecInit, longVecResize);
    expectAgreed<int(LongVec *)>(longVecEnd, longVecDestroy);
    expectAgreed<int(LongVec *, LongVec *)>(longVecCopy);
    expectAgreed<int(LongVec *, Long)>(longVecPushBack);
    expectAgreed<int(LongVec *, Long *)>(longVecPopBack);
    expectAgreed<int(LongVec *, Long, Long *)>(longVecGet);
    expectAgreed<int(LongVec *, Long, Long)>(longVecSet);
    expectAgreed<int(LongList *, Long, Long)>(longListInsert);
    expectAgreed<int(LongList *, Long)>(longListRemove);
    expectAgreed<int(LongList *, LongList *, LongList *)>(longListMerge);
    expectAgreed<int(LongList *)>(longListSort);
    expectAgreed<int(const void *, const void *)>(longCompare);
    expectAgreed<DoubleVec *(Long)>(dblVecNew);
    expectAgreed<int(DoubleVec *, Long)>(dblVecInit, dblVecResize);
    expectAgreed<int(DoubleVec *)>(dblVecEnd, dblVecDestroy);
    expectAgreed<int(DoubleVec *, DoubleVec *)>(dblVecCopy);
    expectAgreed<int(DoubleVec *, double)>(dblVecPushBack);
    expectAgreed<int(DoubleVec *, double *)>(dblVecPopBack);
    expectAgreed<int(DoubleVec *, Long, double *)>(dblVecGet);
    expectAgreed<int(DoubleVec *, Long, double)>(dblVecSet);
    static_cast<void>(LongVec{.size = 0, .top = 0, .cont = nullptr});
    static_cast<void>(DoubleVec{.size = 0, .top = 0, .cont = nullptr});
}
