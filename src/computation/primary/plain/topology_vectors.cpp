#include "computation/primary/plain/topology.h"

#include "common/records.h"
#include "common/vector.h"

namespace
{

constexpr Unit here{"computation/primary/primaryPath"};

/** Gives a zeroed slot its two lists; nothing stays allocated on failure. */
bool makeLists(BKNode &node)
{
    if (!vec::make(node.inNeighb, 1))
        return false;
    if (vec::make(node.outNeighb, 1))
        return true;
    vec::release(node.inNeighb);
    return false;
}

void releaseLists(BKNode &node)
{
    vec::release(node.inNeighb);
    vec::release(node.outNeighb);
}

/** Gives lists to the slots from `from` to `to` - 1; after a failure none of them has any. */
int makeSlots(BKNodeVec &vec, Long from, Long to)
{
    for (Long i = from; i < to; ++i) {
        if (makeLists(vec.cont[i]))
            continue;
        while (i-- > from)
            releaseLists(vec.cont[i]);
        return here.fail("Unable to initialize structure in %s at line %d");
    }
    return 0;
}

/** Makes the slots of a new vector; after a failure nothing is allocated. */
int makeNodes(BKNodeVec &vec, Long size)
{
    if (!vec::make(vec, size))
        return here.fail("Critical lack of memory in %s at line %d");
    if (makeSlots(vec, 0, vec.size) == 0)
        return 0;
    vec::release(vec);
    return -1;
}

/** Grows to `newSize` slots; after a failure the vector still has its old ones. */
int growNodes(BKNodeVec &vec, std::int64_t newSize)
{
    const Long oldSize = vec.size;
    if (!vec::grow(vec, newSize))
        return here.fail("Critical lack of memory in %s at line %d");
    if (makeSlots(vec, oldSize, vec.size) == 0)
        return 0;
    vec.size = oldSize;
    return -1;
}

int copyNode(BKNode &dst, BKNode &src)
{
    if (bkConnectVecCopy(&dst.inNeighb, &src.inNeighb) != 0 ||
        bkConnectVecCopy(&dst.outNeighb, &src.outNeighb) != 0)
        return here.fail("Unable to copy the list of neighbours in %s at line %d");
    dst.nodeId = src.nodeId;
    dst.neighbInd = src.neighbInd;
    return 0;
}

} // namespace

BKConnectVec *bkConnectVecNew(Long size) { return vec::create<BKConnectVec>(here, size); }

int bkConnectVecInit(BKConnectVec *vec, Long size) { return vec::init(here, vec, size); }

int bkConnectVecEnd(BKConnectVec *vec) { return vec::end(here, vec); }

int bkConnectVecDestroy(BKConnectVec *vec) { return vec::destroy(here, vec); }

int bkConnectVecCopy(BKConnectVec *dst, BKConnectVec *src) { return vec::copy(here, dst, src); }

int bkConnectVecPushBack(BKConnectVec *vec, BKConnect *val)
{
    return val ? vec::pushBack(here, vec, *val) : here.fail("Bad argument (NULL) in %s at line %d");
}

int bkConnectVecPopBack(BKConnectVec *vec, BKConnect *val) { return vec::popBack(here, vec, val); }

int bkConnectVecGet(BKConnectVec *vec, Long index, BKConnect *val)
{
    return vec::get(here, vec, index, val);
}

int bkConnectVecSet(BKConnectVec *vec, Long index, BKConnect *val)
{
    if (!val)
        return here.fail("Bad argument (NULL) in %s at line %d");
    return vec::set(here, vec, index, *val, "Unable to resize vector in %s at line %d");
}

int bkConnectVecResize(BKConnectVec *vec, Long newsize) { return vec::resize(here, vec, newsize); }

BKNodeVec *bkNodeVecNew(Long size)
{
    auto *vec = static_cast<BKNodeVec *>(mycalloc(1, sizeof(BKNodeVec)));
    if (!vec)
        return here.null("Critical lack of memory in %s at line %d");
    if (makeNodes(*vec, size) != 0) {
        myfree(vec);
        return nullptr;
    }
    return vec;
}

int bkNodeVecInit(BKNodeVec *vec, Long size)
{
    return vec ? makeNodes(*vec, size) : here.fail("Bad argument (NULL) in %s at line %d");
}

int bkNodeVecEnd(BKNodeVec *vec)
{
    if (!vec::isLive(vec))
        return here.fail("Bad argument (NULL) in %s at line %d");
    for (BKNode &node : slots(*vec)) {
        bkConnectVecEnd(&node.inNeighb);
        bkConnectVecEnd(&node.outNeighb);
    }
    vec::release(*vec);
    return 0;
}

int bkNodeVecDestroy(BKNodeVec *vec) { return destroyRecord<bkNodeVecEnd>(vec); }

int bkNodeVecResize(BKNodeVec *vec, Long newsize)
{
    return vec::isLive(vec) ? growNodes(*vec, newsize)
                            : here.fail("Bad argument (NULL) in %s at line %d");
}

int bkNodeVecSet(BKNodeVec *vec, Long index, BKNode *val)
{
    if (!vec::isLive(vec) || !val)
        return here.fail("Bad argument (NULL) in %s at line %d");
    if (index < 0)
        return here.fail("Bad argument (index < 0) in %s at line %d");
    if (index >= vec->size && growNodes(*vec, vec::grownSize(vec->size, index)) != 0)
        return here.fail("Unable to resize node vector in %s at line %d");
    if (copyNode(vec->cont[index], *val) != 0)
        return -1;
    vec->top = std::max(vec->top, index + 1);
    return 0;
}

int bkNodeVecPushBack(BKNodeVec *vec, BKNode *val)
{
    if (!vec::isLive(vec) || !val)
        return here.fail("Bad argument (NULL) in %s at line %d");
    if (vec->top >= vec->size && growNodes(*vec, vec::grownSize(vec->size, vec->top)) != 0)
        return -1;
    if (copyNode(vec->cont[vec->top], *val) != 0)
        return -1;
    vec->top += 1;
    return 0;
}

int bkNodeVecPopBack(BKNodeVec *vec, BKNode *val)
{
    if (!vec::isLive(vec) || !val)
        return here.fail("Bad argument (NULL) in %s at line %d");
    if (vec->top == 0)
        return here.fail("Pop on empty stack in %s at line %d");
    if (copyNode(*val, vec->cont[vec->top - 1]) != 0)
        return -1;
    vec->top -= 1;
    return 0;
}

BKNode *bkNodeVecGet(BKNodeVec *vec, Long index)
{
    if (!vec::isLive(vec))
        return here.null("Bad argument (NULL) in %s at line %d");
    return vec::checkIndex(here, vec, index) == 0 ? &vec->cont[index] : nullptr;
}
