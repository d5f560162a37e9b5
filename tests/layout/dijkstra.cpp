#include "computation/backup/dijkstra.h"

#include "layout/agreed.h"

TEST(Layout, Dijkstra)
{
    expectAgreed<CPTreeNode *()>(CPnewTN);
    expectAgreed<int(CPTreeNode *)>(CPdestroyTN);
    expectAgreed<CPPrioQueue *()>(CPnewPQ);
    expectAgreed<int(CPPrioQueue *)>(CPinitPQ, CPendPQ, CPdestroyPQ);
    expectAgreed<int(CPPrioQueue *, CPDijkNode *, double)>(CPinsertPQ);
    expectAgreed<CPDijkNode *(CPPrioQueue *)>(CPpopTop);
    static_cast<void>(CPDijkNode{.from = nullptr, .node = nullptr, .val = 0.0, .marked = false});
    static_cast<void>(
        CPTreeNode{.father = nullptr, .leq = nullptr, .gt = nullptr, .key = 0.0, .node = nullptr});
    static_cast<void>(CPPrioQueue{.root = nullptr, .top = nullptr, .size = 0});
}
