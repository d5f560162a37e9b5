#include "computation/backup/plain/search.h"

#include "common/records.h"
#include "computation/backup/plain/compute_cost.h"
#include "database/books/lookup.h"
#include "database/update/update.h"
#include "error/report.h"

#include <algorithm>

namespace
{

constexpr Unit here{"computation/backup/backup"};

constexpr double unreached = -1.0;

bool contains(std::span<const Long> ids, Long id)
{
    return std::ranges::find(ids, id) != ids.end();
}

} // namespace

BackupSearch::~BackupSearch()
{
    CPendPQ(&toBeTreated);
    if (!nodeList)
        return;
    for (Long id = 0; id < nbIds; ++id) {
        if (nodeList[id])
            myfree(nodeList[id]);
    }
    myfree(nodeList);
}

int BackupSearch::prepare()
{
    nbIds = db.nodeVec.top;
    nodeList =
        static_cast<CPDijkNode **>(mycalloc(static_cast<std::size_t>(nbIds), sizeof(CPDijkNode *)));
    if (!nodeList || !states.allocate())
        return here.fail("Cannot allocate a required structure in %s at line %d");
    states.share();
    for (Long id = 0; id < nbIds; ++id) {
        DBNode *node = nodeAt(db.nodeVec, id);
        if (!node)
            continue;
        nodeList[id] = static_cast<CPDijkNode *>(mycalloc(1, sizeof(CPDijkNode)));
        if (!nodeList[id])
            return here.fail("Cannot create the Dijk nodes in %s at line %d");
        *nodeList[id] = {nullptr, node, unreached, false};
    }
    return longVecInit(&forbiddenLinks, -1);
}

int BackupSearch::forbidLink(Long src, Long dst)
{
    return longVecPushBack(&forbiddenLinks, DBgetLinkID(&db, src, dst));
}

int BackupSearch::forbidLinksInto(Long node)
{
    const LongList *neighbours = DBgetNodeInNeighb(&db, node);
    if (!neighbours)
        return here.fail("The protected node must have some neighbour in %s at line %d");
    for (const Long neighbour : inUse(*neighbours)) {
        if (forbidLink(neighbour, node) != 0)
            return -1;
    }
    return 0;
}

int BackupSearch::run(Long start, std::span<const Long> targets, bool &found)
{
    found = false;
    reset();
    CPDijkNode *first = nodeOf(start);
    if (!first)
        return 0;
    first->val = 0.0;
    if (CPinsertPQ(&toBeTreated, first, 0.0) != 0)
        return -1;
    while (CPDijkNode *next = CPpopTop(&toBeTreated)) {
        if (next->marked)
            continue;
        next->marked = true;
        if (contains(targets, next->node->id)) {
            found = true;
            end = next;
            return 0;
        }
        if (relaxLinksOf(*next) != 0)
            return -1;
    }
    return 0;
}

void BackupSearch::reset()
{
    CPendPQ(&toBeTreated);
    for (Long id = 0; id < nbIds; ++id) {
        if (nodeList[id])
            *nodeList[id] = {nullptr, nodeList[id]->node, unreached, false};
    }
}

int BackupSearch::relaxLinksOf(CPDijkNode &settled)
{
    for (const Long id : inUse(settled.node->outNeighb)) {
        CPDijkNode *neighbour = nodeOf(id);
        if (neighbour && !neighbour->marked && relax(settled, *neighbour) != 0)
            return -1;
    }
    return 0;
}

/** The value -1 means unreached; a value of 0 replaces only that. */
int BackupSearch::relax(CPDijkNode &settled, CPDijkNode &neighbour)
{
    const Long src = settled.node->id;
    const Long dst = neighbour.node->id;
    if (contains(inUse(forbiddenLinks), DBgetLinkID(&db, src, dst)))
        return 0;
    const double cost = computeCost(&db, states.list(), src, dst, &settled, &primary, type);
    if (cost < 0.0)
        return 0;
    const double newVal = settled.val + cost;
    const bool improves = newVal > 0.0 && newVal < neighbour.val;
    if (neighbour.val != unreached && !improves)
        return 0;
    neighbour.val = newVal;
    neighbour.from = &settled;
    return CPinsertPQ(&toBeTreated, &neighbour, newVal);
}

int BackupSearch::writePath(LongVec &path) const
{
    for (const CPDijkNode *node = end; node; node = node->from) {
        if (longVecPushBack(&path, node->node->id) != 0)
            return -1;
    }
    return 0;
}

/** Applies a request to the working states of its hops; a state that fails is left as it is. */
void BackupSearch::evaluateHops(LSPRequest &req, operation op)
{
    const auto hops = inUse(req.path);
    for (std::size_t k = 0; k + 1 < hops.size(); ++k) {
        DBLinkState *state = states.writable(DBgetLinkID(&db, hops[k], hops[k + 1]));
        if (state)
            static_cast<void>(evalLS(&db, hops[k], hops[k + 1], state, state, &req, op));
    }
}

CPDijkNode *BackupSearch::nodeOf(Long id) const
{
    return id >= 0 && id < nbIds ? nodeList[id] : nullptr;
}
