#include "database/books/change.h"

#include "common/records.h"
#include "common/vector.h"
#include "database/books/lookup.h"
#include "database/followers/followers.h"

#include <algorithm>

namespace
{

constexpr Unit here{"database/database"};

/** Initialises the tables of a zeroed record in order; after a failure none is left. */
int makeTables(DataBase &db)
{
    if (DBnodeVecInit(&db.nodeVec, 1) != 0)
        return here.fail("Unable to initialize the general node container in %s at line %d");
    Guard<DBNodeVec, DBnodeVecEnd> nodes{&db.nodeVec};
    if (DBlspVecInit(&db.lspVec, 1) != 0)
        return here.fail("Unable to initialize the general LSP container in %s at line %d");
    Guard<DBLSPVec, DBlspVecEnd> lsps{&db.lspVec};
    if (DBlinkTabInit(&db.linkTab, 1) != 0)
        return here.fail("Unable to initialize the general link container in %s at line %d");
    Guard<DBLinkTab, DBlinkTabEnd> links{&db.linkTab};
    if (longVecInit(&db.linkSrcVec, 1) != 0)
        return here.fail("Unable to initialize the link id-src translater in %s at line %d");
    Guard<LongVec, longVecEnd> sources{&db.linkSrcVec};
    if (longVecInit(&db.linkDstVec, 1) != 0)
        return here.fail("Unable to initialize the link id-dst translater in %s at line %d");
    handOver(nodes, lsps, links, sources);
    return 0;
}

bool isReserved(const LongVec &translator, Long linkId)
{
    return linkId < translator.size && translator.cont[linkId] > 0;
}

/** Raises both translators' tops for link `id`, never past what they could grow to. */
void raiseTops(DataBase &db, Long id)
{
    const std::int64_t top = std::max(std::int64_t{db.linkSrcVec.top}, std::int64_t{id} + 1);
    for (LongVec *translator : {&db.linkSrcVec, &db.linkDstVec})
        translator->top = static_cast<Long>(std::min(top, std::int64_t{translator->size}));
}

/** Lowers the top of the source translator to one more than the highest link id in use. */
void lowerTop(LongVec &sources)
{
    while (sources.top > 0 && sources.cont[sources.top - 1] == 0)
        sources.top -= 1;
}

/** Removes the first entry equal to `value`. */
int removeValue(LongList &list, Long value)
{
    const auto used = inUse(list);
    const auto found = std::ranges::find(used, value);
    return longListRemove(&list, static_cast<Long>(found - used.begin()));
}

} // namespace

DataBase *DBnew(Long ID)
{
    auto *db = static_cast<DataBase *>(mycalloc(1, sizeof(DataBase)));
    if (!db)
        return here.null("Critical lack of memory in %s at line %d");
    if (makeTables(*db) != 0) {
        myfree(db);
        return nullptr;
    }
    db->id = ID;
    return db;
}

int DBdestroy(DataBase *dataBase)
{
    if (!dataBase)
        return here.fail("Bad argument (NULL) in %s at line %d");
    static_cast<void>(DBnodeVecEnd(&dataBase->nodeVec));
    static_cast<void>(DBlspVecEnd(&dataBase->lspVec));
    static_cast<void>(DBlinkTabEnd(&dataBase->linkTab));
    longVecEnd(&dataBase->linkSrcVec);
    longVecEnd(&dataBase->linkDstVec);
    endFollowers(*dataBase);
    myfree(dataBase);
    return 0;
}

int DBaddNode(DataBase *dataBase, Long id)
{
    if (!dataBase)
        return here.fail("Bad argument (NULL) in %s at line %d");
    Owned<DBNode, DBnodeDestroy> node{DBnodeNew()};
    if (!node)
        return here.fail("Unable to create node in %s at line %d");
    node->id = id;
    if (DBnodeVecSet(&dataBase->nodeVec, node.get(), id) != 0)
        return here.fail(
            "Unable to insert a new node in the general node container in %s at line %d");
    handOver(node);
    followNode(*dataBase);
    dataBase->nbNodes += 1;
    return 0;
}

int DBremoveNode(DataBase *dataBase, Long id)
{
    if (!dataBase)
        return here.fail("Bad argument (NULL) in %s at line %d");
    DBNode *node = nodeAt(dataBase->nodeVec, id);
    if (!node)
        return here.fail("Trying to remove an inexistent node in %s at line %d");

    followNode(*dataBase);
    // From the last entry down: a link that cannot be removed keeps its entry and is passed over.
    int result = 0;
    for (Long i = node->inNeighb.top; i-- > 0;)
        result |= DBremoveLink(dataBase, node->inNeighb.cont[i], id);
    for (Long i = node->outNeighb.top; i-- > 0;)
        result |= DBremoveLink(dataBase, id, node->outNeighb.cont[i]);
    result |= DBnodeVecRemove(&dataBase->nodeVec, id);
    dataBase->nbNodes -= 1;
    return result == 0 ? 0 : here.fail("Node removal uncomplete in %s at line %d");
}

int DBaddLink(DataBase *dataBase, Long id, Long src, Long dst, DBLinkState *initLinkState)
{
    if (!dataBase || !initLinkState || id < 0 || src < 0 || dst < 0)
        return here.fail("Bad argument (NULL) in %s at line %d");
    if (isReserved(dataBase->linkSrcVec, id) || isReserved(dataBase->linkDstVec, id))
        return here.fail("Trying to add a link with a reserved ID (ID=%ld) in %s at line %d",
                         long{id});

    Owned<DBLink, DBlinkDestroy> link{DBlinkNew()};
    if (!link || DBlinkStateCopy(&link->state, initLinkState) != 0)
        return here.fail("Unable to create link in %s at line %d");
    link->id = id;
    DBNode *from = nodeAt(dataBase->nodeVec, src);
    DBNode *to = nodeAt(dataBase->nodeVec, dst);
    if (!from || !to)
        return here.fail("Source or destination node doesn't exist in %s at line %d");
    if (linkAt(dataBase->linkTab, src, dst))
        return here.fail("Trying to add a link between already linked nodes (src = %ld, dst = %ld) "
                         "in %s at line %d",
                         long{src}, long{dst});
    // A link that only one end knew of could not be removed with the other.
    if (!vec::makeRoom(from->outNeighb) || !vec::makeRoom(to->inNeighb)) {
        here.push(CRITICAL, "Critical lack of memory in %s at line %d");
        return here.fail("Unable to create link in %s at line %d");
    }
    if (DBlinkTabSet(&dataBase->linkTab, link.get(), src, dst) != 0)
        return here.fail(
            "Unable to insert a new node in the general node container in %s at line %d");
    DBLink &stored = *link.release();

    // The table owns the link: no way back from here, every step runs and one failure sticks.
    int result = 0;
    result |= longVecPushBack(&from->outNeighb, dst);
    result |= longVecPushBack(&to->inNeighb, src);
    result |= longListSort(&from->outNeighb);
    result |= longListSort(&to->inNeighb);
    result |= longVecSet(&dataBase->linkSrcVec, id, src + 1);
    result |= longVecSet(&dataBase->linkDstVec, id, dst + 1);
    raiseTops(*dataBase, id);
    dataBase->nbLinks += 1;
    followNewLink(*dataBase, stored, src, dst, result == 0);
    return result == 0 ? 0 : here.fail("Link addition uncomplete in %s at line %d");
}

int DBremoveLink(DataBase *dataBase, Long src, Long dst)
{
    if (!dataBase)
        return here.fail("Bad argument (NULL) in %s at line %d");
    if (src < 0 || dst < 0)
        return here.fail("Bad argument (NULL or negative value) in %s at line %d");
    DBNode *from = nodeAt(dataBase->nodeVec, src);
    DBNode *to = nodeAt(dataBase->nodeVec, dst);
    const DBLink *link = linkAt(dataBase->linkTab, src, dst);
    if (!from || !to || !link)
        return here.fail("Link doesn't exist or database unconsistancy in %s at line %d");

    const Long id = link->id;
    followLeavingLink(*dataBase, *link);
    int result = 0;
    result |= removeValue(from->outNeighb, dst);
    result |= removeValue(to->inNeighb, src);
    result |= DBlinkTabRemove(&dataBase->linkTab, src, dst);
    result |= longVecSet(&dataBase->linkSrcVec, id, 0);
    result |= longVecSet(&dataBase->linkDstVec, id, 0);
    lowerTop(dataBase->linkSrcVec);
    dataBase->nbLinks -= 1;
    return result == 0 ? 0 : here.fail("Link removal uncomplete in %s at line %d");
}

DBLinkState *DBgetLinkState(DataBase *dataBase, Long src, Long dst)
{
    DBLink *link = existingLink(dataBase, src, dst);
    return link ? &handOutState(*dataBase, *link) : nullptr;
}

int DBsetLinkState(DataBase *dataBase, Long src, Long dst, DBLinkState *newLS)
{
    if (!dataBase || !newLS)
        return here.fail("Bad argument (NULL) in %s at line %d");
    DBLink *link = existingLink(dataBase, src, dst);
    if (!link)
        return -1;
    // Copied over a copy: a stored state is replaced as a whole or not at all.
    const Owned<DBLinkState, DBlinkStateDestroy> copy{DBlinkStateNew()};
    if (!copy || DBlinkStateCopy(copy.get(), &link->state) != 0 ||
        DBlinkStateCopy(copy.get(), newLS) != 0)
        return here.fail(
            "Impossible to set linkstate on link (src = %ld, dst = %ld) in %s at line %d",
            long{src}, long{dst});
    exchangeState(*dataBase, *link, *copy);
    return 0;
}
