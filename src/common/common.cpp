#include "common/common.h"

#include "common/records.h"
#include "common/vector.h"

#include <algorithm>

namespace
{

constexpr Unit here{"common/common"};

/** Appends the sorted union of two sorted lists to `merged`, which has room for all of it. */
void appendUnion(std::span<const Long> a, std::span<const Long> b, LongList &merged)
{
    std::size_t i = 0;
    std::size_t j = 0;
    while (i < a.size() || j < b.size()) {
        const bool fromA = j == b.size() || (i < a.size() && a[i] <= b[j]);
        const bool fromB = i == a.size() || (j < b.size() && b[j] <= a[i]);
        merged.cont[merged.top++] = fromA ? a[i] : b[j];
        i += fromA ? 1 : 0;
        j += fromB ? 1 : 0;
    }
}

} // namespace

LongVec *longVecNew(Long size) { return vec::create<LongVec>(here, size); }

int longVecInit(LongVec *vec, Long size) { return vec::init(here, vec, size); }

int longVecEnd(LongVec *vec) { return vec::end(here, vec); }

int longVecDestroy(LongVec *vec) { return vec::destroy(here, vec); }

int longVecCopy(LongVec *dst, LongVec *src) { return vec::copy(here, dst, src); }

int longVecResize(LongVec *vec, Long newsize) { return vec::resize(here, vec, newsize); }

int longVecPushBack(LongVec *vec, Long val) { return vec::pushBack(here, vec, val); }

int longVecPopBack(LongVec *vec, Long *val) { return vec::popBack(here, vec, val); }

int longVecGet(LongVec *vec, Long index, Long *val) { return vec::get(here, vec, index, val); }

int longVecSet(LongVec *vec, Long index, Long val)
{
    return vec::set(here, vec, index, val, "Unable to resize long vector in %s at line %d");
}

int longListInsert(LongList *list, Long index, Long val)
{
    if (!vec::isLive(list))
        return here.fail("Bad argument (NULL) in %s at line %d");
    if (index < 0)
        return here.fail("Bad argument (index < 0) in %s at line %d");
    const bool full = list->top >= list->size || index >= list->size;
    if (full && vec::resize(here, list, vec::grownSize(list->size, index)) != 0)
        return here.fail("Unable to resize long vector in %s at line %d");
    if (index < list->top)
        std::copy_backward(list->cont + index, list->cont + list->top, list->cont + list->top + 1);
    list->cont[index] = val;
    list->top += 1;
    return 0;
}

int longListRemove(LongList *list, Long index)
{
    if (!vec::isLive(list))
        return here.fail("Bad argument (NULL) in %s at line %d");
    if (index < 0)
        return here.fail("Bad argument (index < 0) in %s at line %d");
    if (index >= list->top)
        return here.warn("Removing inexistent list element in %s at line %d");
    std::copy(list->cont + index + 1, list->cont + list->top, list->cont + index);
    list->top -= 1;
    return 0;
}

int longCompare(const void *a, const void *b)
{
    const Long left = *static_cast<const Long *>(a);
    const Long right = *static_cast<const Long *>(b);
    return (left > right) - (left < right);
}

int longListSort(LongList *list)
{
    if (!vec::isLive(list))
        return here.fail("Bad argument (NULL) in %s at line %d");
    std::ranges::sort(inUse(*list));
    return 0;
}

int longListMerge(LongList *la, LongList *lb, LongList *dest)
{
    if (!vec::isLive(la) || !vec::isLive(lb) || !vec::isLive(dest))
        return here.fail("Bad argument (NULL) in %s at line %d");
    longListSort(la);
    longListSort(lb);
    if (la->top == 0 && lb == dest)
        return 0;

    LongList merged{};
    if (longVecInit(&merged, la->top + lb->top) != 0)
        return here.fail("Unable to initialize temporary list of longs in %s at line %d");
    const Guard<LongList, longVecEnd> guard{&merged};
    appendUnion(inUse(*la), inUse(*lb), merged);
    if (longVecCopy(dest, &merged) != 0)
        return here.fail("Unable to create resulting merged list of longs in %s at line %d");
    return 0;
}

DoubleVec *dblVecNew(Long size) { return vec::create<DoubleVec>(here, size); }

int dblVecInit(DoubleVec *vec, Long size) { return vec::init(here, vec, size); }

int dblVecEnd(DoubleVec *vec) { return vec::end(here, vec); }

int dblVecDestroy(DoubleVec *vec) { return vec::destroy(here, vec); }

int dblVecCopy(DoubleVec *dst, DoubleVec *src) { return vec::copy(here, dst, src); }

int dblVecResize(DoubleVec *vec, Long newsize) { return vec::resize(here, vec, newsize); }

int dblVecPushBack(DoubleVec *vec, double val) { return vec::pushBack(here, vec, val); }

int dblVecPopBack(DoubleVec *vec, double *val) { return vec::popBack(here, vec, val); }

int dblVecGet(DoubleVec *vec, Long index, double *val) { return vec::get(here, vec, index, val); }

int dblVecSet(DoubleVec *vec, Long index, double val)
{
    return vec::set(here, vec, index, val, "Unable to resize double vector in %s at line %d");
}
