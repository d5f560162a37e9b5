#include "database/books/lookup.h"

#include "error/report.h"

namespace
{

constexpr Unit here{"database/database"};

Long linkEnd(LongVec &translator, Long id)
{
    Long slot = 0;
    if (longVecGet(&translator, id, &slot) != 0)
        return here.fail("Inexistent link in %s at line %d");
    return slot - 1;
}

/** Node `id`; null after the message that every getter of a node gives. */
DBNode *existingNode(DataBase *dataBase, Long id)
{
    if (!dataBase)
        return here.null("Bad argument (NULL) in %s at line %d");
    DBNode *node = nodeAt(dataBase->nodeVec, id);
    return node ? node : here.null("Node don't exist (id = %ld) in %s at line %d", long{id});
}

} // namespace

Long DBgetID(DataBase *dataBase)
{
    return dataBase ? dataBase->id : here.fail("Bad argument (NULL) in %s at line %d");
}

Long DBgetNbNodes(DataBase *dataBase)
{
    return dataBase ? dataBase->nbNodes : here.fail("Bad argument (NULL) in %s at line %d");
}

Long DBgetMaxNodeID(DataBase *dataBase)
{
    return dataBase ? dataBase->nodeVec.top - 1 : here.fail("Bad argument (NULL) in %s at line %d");
}

Long DBgetNbLinks(DataBase *dataBase)
{
    return dataBase ? dataBase->nbLinks : here.fail("Bad argument (NULL) in %s at line %d");
}

Long DBgetLinkID(DataBase *dataBase, Long src, Long dst)
{
    if (!dataBase || src < 0 || dst < 0)
        return here.fail("Bad argument (NULL or negative value) in %s at line %d");
    const DBLink *link = linkAt(dataBase->linkTab, src, dst);
    return link ? link->id : -1;
}

Long DBgetLinkSrc(DataBase *dataBase, Long id)
{
    if (!dataBase)
        return here.fail("Bad argument (NULL) in %s at line %d");
    return linkEnd(dataBase->linkSrcVec, id);
}

Long DBgetLinkDst(DataBase *dataBase, Long id)
{
    if (!dataBase)
        return here.fail("Bad argument (NULL) in %s at line %d");
    return linkEnd(dataBase->linkDstVec, id);
}

DBLabelSwitchedPath *DBgetLSP(DataBase *dataBase, Long id)
{
    if (!dataBase)
        return here.null("Bad argument (NULL) in %s at line %d");
    return lspAt(dataBase->lspVec, id);
}

DBLink *existingLink(DataBase *dataBase, Long src, Long dst)
{
    if (!dataBase)
        return here.null("Bad argument (NULL) in %s at line %d");
    DBLink *link = linkAt(dataBase->linkTab, src, dst);
    return link ? link
                : here.null("Inexistent Link (src = %ld, dst = %ld) in %s at line %d", long{src},
                            long{dst});
}

DBLSPList *DBgetLinkLSPs(DataBase *dataBase, Long src, Long dst)
{
    DBLink *link = existingLink(dataBase, src, dst);
    return link ? &link->lspList : nullptr;
}

LongList *DBgetNodeInNeighb(DataBase *dataBase, Long id)
{
    DBNode *node = existingNode(dataBase, id);
    return node ? &node->inNeighb : nullptr;
}

LongList *DBgetNodeOutNeighb(DataBase *dataBase, Long id)
{
    DBNode *node = existingNode(dataBase, id);
    return node ? &node->outNeighb : nullptr;
}
