#include "computation/backup/dijkstra.h"

#include "common/records.h"
#include "error/report.h"

namespace
{

constexpr Unit here{"computation/backup/dijkstra"};

/** Hangs a new entry under the tree; it is not a new minimum. */
void attach(CPTreeNode *root, CPTreeNode *entry)
{
    CPTreeNode *father = root;
    CPTreeNode **child = nullptr;
    while (true) {
        child = father->key >= entry->key ? &father->leq : &father->gt;
        if (!*child)
            break;
        father = *child;
    }
    *child = entry;
    entry->father = father;
}

/** Takes the leftmost entry out of the tree, which its right subtree replaces. */
void detachTop(CPPrioQueue &pq)
{
    CPTreeNode *right = pq.top->gt;
    CPTreeNode *father = pq.top->father;
    (father ? father->leq : pq.root) = right;
    if (right)
        right->father = father;
    pq.top = right ? right : father;
    while (pq.top && pq.top->leq)
        pq.top = pq.top->leq;
}

} // namespace

CPTreeNode *CPnewTN()
{
    auto *tn = static_cast<CPTreeNode *>(mycalloc(1, sizeof(CPTreeNode)));
    return tn ? tn : here.null("Impossible to allocated a new TreeNode in %s at line %d");
}

int CPdestroyTN(CPTreeNode *tn)
{
    if (!tn)
        return here.fail("Bad argument (NULL) in %s at line %d");
    myfree(tn);
    return 0;
}

int CPinitPQ(CPPrioQueue *pq)
{
    if (!pq)
        return here.fail("Bad argument (NULL) in %s at line %d");
    *pq = {};
    return 0;
}

CPPrioQueue *CPnewPQ()
{
    auto *pq = static_cast<CPPrioQueue *>(mycalloc(1, sizeof(CPPrioQueue)));
    return pq ? pq : here.null("Impossible to allocated a new PrioQueue in %s at line %d");
}

int CPinsertPQ(CPPrioQueue *pq, CPDijkNode *dn, double key)
{
    if (!pq)
        return here.fail("Bad argument (NULL) in %s at line %d");
    CPTreeNode *entry = CPnewTN();
    if (!entry)
        return here.fail("Impossible to allocated a new TreeNode in %s at line %d");
    entry->node = dn;
    entry->key = key;
    if (!pq->root) {
        pq->root = entry;
        pq->top = entry;
    } else if (pq->top->key >= key) {
        pq->top->leq = entry;
        entry->father = pq->top;
        pq->top = entry;
    } else {
        attach(pq->root, entry);
    }
    pq->size += 1;
    return 0;
}

CPDijkNode *CPpopTop(CPPrioQueue *pq)
{
    if (!pq)
        return here.null("Bad argument (NULL) in %s at line %d");
    CPTreeNode *popped = pq->top;
    if (!popped)
        return nullptr;
    CPDijkNode *node = popped->node;
    pq->size -= 1;
    detachTop(*pq);
    if (CPdestroyTN(popped) != 0)
        here.push(WARNING, "Unable to destroy TreeNode but DijkNode was returned in %s at line %d");
    return node;
}

int CPendPQ(CPPrioQueue *pq)
{
    if (!pq)
        return here.fail("Bad argument (NULL) in %s at line %d");
    while (pq->top)
        CPpopTop(pq);
    *pq = {};
    return 0;
}

int CPdestroyPQ(CPPrioQueue *pq) { return destroyRecord<CPendPQ>(pq); }
