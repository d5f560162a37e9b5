#include "database/books/dump.h"

#include "common/records.h"
#include "database/books/lookup.h"
#include "error/report.h"

#include <cstdio>
#include <numeric>

namespace
{

constexpr Unit here{"database/database_util"};

void printIds(const LongList &ids)
{
    for (const Long id : inUse(ids))
        std::printf("%ld ", long{id});
}

double sumOverLevels(const double (&levels)[MAXPL])
{
    return std::accumulate(levels, levels + MAXPL, 0.0);
}

} // namespace

void DBprintDB(DataBase *db)
{
    if (!db)
        return;
    std::puts("Printing info about nodes ...");
    std::puts("-----------------------------");
    for (Long i = 0; i < db->nodeVec.size; ++i) {
        if (!db->nodeVec.cont[i])
            continue;
        std::printf("Node id : %ld\n", long{i});
        std::puts("-------------");
        DBprintNode(db->nodeVec.cont[i]);
    }

    std::puts("\nPrinting info about links ...");
    std::puts("-----------------------------");
    for (Long src = 0; src < db->linkTab.size; ++src) {
        if (db->linkTab.cont[src] == db->linkTab.emptyRow)
            continue;
        for (Long dst = 0; dst < db->linkTab.size; ++dst) {
            DBLink *link = db->linkTab.cont[src][dst];
            if (!link)
                continue;
            std::printf("Link %ld-%ld (id = %ld)\n", long{src}, long{dst},
                        long{DBgetLinkID(db, src, dst)});
            std::puts("-----------------------");
            DBprintLink(link);
        }
    }
}

void DBprintNode(DBNode *node)
{
    if (!node) {
        here.push(CRITICAL, "Bad argument (NULL) in %s at line %d");
        return;
    }
    std::puts("Incoming neighboors : ");
    printIds(node->inNeighb);
    std::puts("\nOutgoing neighboors : ");
    printIds(node->outNeighb);
    std::printf("\n");
}

void DBprintLink(DBLink *link)
{
    if (!link) {
        here.push(CRITICAL, "Bad argument (NULL) in %s at line %d");
        return;
    }
    std::puts("\tList of LSPs");
    std::puts("\t------------");
    for (const DBLabelSwitchedPath *lsp : inUse(link->lspList))
        std::printf("%ld ", long{lsp->id});
    std::printf("\n\n");

    std::puts("\tLink-state");
    std::puts("\t----------");
    const DBLinkState &state = link->state;
    for (int oa = 0; oa < MAXOA; ++oa) {
        std::printf("\tCapacity[%ld] = %f\n", long{oa}, state.cap[oa]);
        std::printf("\tpbw[%ld] = %f\n", long{oa}, sumOverLevels(state.pbw[oa]));
        std::printf("\trbw[%ld] = %f\n", long{oa}, sumOverLevels(state.rbw[oa]));
    }
    std::printf("\n\n");
}
