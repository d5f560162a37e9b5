#include "database/admission.h"

#include "common/records.h"
#include "database/admission_questions.h"
#include "database/reservation.h"
#include "error/report.h"

namespace
{

constexpr Unit here{"database/database"};

using Path = std::span<const Long>;

/** The links already handled in the present walk, by link id. */
class ProcessedLinks
{
public:
    [[nodiscard]] int init(const DataBase &db)
    {
        return longVecInit(&isProcessed, db.linkSrcVec.size);
    }
    [[nodiscard]] int mark(Long link) { return longVecSet(&isProcessed, link, walk); }
    bool contains(Long link) const
    {
        return link < isProcessed.size && isProcessed.cont[link] == walk;
    }
    void startNextWalk() { walk += 1; }

private:
    /** Number of the last walk that handled the link, 0 for none. */
    Scoped<LongVec, longVecEnd> isProcessed;
    Long walk = 1;
};

/** The walk over an LSP's links that asks the predicate and collects what to preempt. */
class AdmissionWalk
{
public:
    AdmissionWalk(DataBase &database, const DBLabelSwitchedPath &newcomer, LongList *preempted)
        : db(database), lsp(newcomer), preemptList(preempted)
    {
    }

    /** Walks until a link refuses; 0, or -1 after a message. */
    int run(ProcessedLinks &processed)
    {
        if (processed.init(db) != 0)
            return here.fail("Unable to initialize vector of longs in %s at line %d");
        if (longVecInit(&idList, -1) != 0)
            return here.fail("Unable to initialize list of longs in %s at line %d");
        if (walk(inUse(lsp.path), processed, false) != 0)
            return -1;
        return isBackup(lsp.type) ? walk(inUse(lsp.primPath), processed, true) : 0;
    }

    bool isAllowed() const { return allowLSP; }

private:
    int walk(Path path, ProcessedLinks &processed, bool skipProcessed)
    {
        for (std::size_t i = 0; i + 1 < path.size() && allowLSP; ++i) {
            const DBLink *link = linkAt(db.linkTab, path[i], path[i + 1]);
            if (skipProcessed && link && processed.contains(link->id))
                continue;
            if (askLink(path[i], path[i + 1], processed) != 0)
                return -1;
        }
        return 0;
    }

    /** A link that refuses is carried through all steps; the walk stops after it. */
    int askLink(Long src, Long dst, ProcessedLinks &processed)
    {
        const DBLSPList *lspList = DBgetLinkLSPs(&db, src, dst);
        if (!lspList)
            return here.fail("Unable to get the list of LSPs carried by the link in %s at line %d");
        const DBLink &link = *linkAt(db.linkTab, src, dst);
        allowLSP = isValidLSPLink(&db, src, dst, &link.state, &lsp, rerouteGain);
        idList.top = 0;
        if (chooseReroutedLSPs(lsp.precedence, &link.state, lspList, rerouteGain, &idList) != 0)
            return here.fail("Unable choose LSPs for rerouting in %s at line %d");
        if (longListMerge(&idList, preemptList, preemptList) != 0)
            return here.fail("Unable to merge lists of longs in %s at line %d");
        if (processed.mark(link.id) != 0)
            return here.fail("Unable to initialize vector of longs in %s at line %d");
        return 0;
    }

    DataBase &db;
    const DBLabelSwitchedPath &lsp;
    LongList *preemptList;
    Scoped<LongList, longVecEnd> idList;
    double rerouteGain[MAXOA] = {}; ///< zeroed once, then left to the predicate
    bool allowLSP = true;
};

/** Copies `lsp` and stores the copy at its id; null, with nothing changed, after a message. */
DBLabelSwitchedPath *storeCopy(DataBase &db, const DBLabelSwitchedPath &lsp)
{
    Owned<DBLabelSwitchedPath, DBlspDestroy> copy{DBlspNew()};
    if (!copy)
        return here.null("Unable to create LSP in %s at line %d");
    if (DBlspCopy(copy.get(), &lsp) != 0)
        return here.null("Unable to create a valid LSP copy in %s at line %d");
    if (DBlspVecSet(&db.lspVec, copy.get(), copy->id) != 0)
        return here.null("Unable to insert LSP in the general LSP container in %s at line %d");
    return copy.release();
}

/** Makes the stored LSP and its no-contention partner point at each other. */
void pairWithPartner(const DataBase &db, DBLabelSwitchedPath &lsp)
{
    if (lsp.noContentionId < 0)
        return;
    if (DBLabelSwitchedPath *partner = DBgetLSP(&db, lsp.noContentionId)) {
        partner->noContentionId = lsp.id;
    } else {
        here.push(WARNING, "Unable to get no contention LSP in %s at line %d");
        lsp.noContentionId = -1;
    }
}

/** Frees the partner of an LSP that goes away. */
void unpairPartner(const DataBase &db, const DBLabelSwitchedPath &lsp)
{
    if (lsp.noContentionId < 0)
        return;
    if (DBLabelSwitchedPath *partner = DBgetLSP(&db, lsp.noContentionId))
        partner->noContentionId = -1;
    else
        here.push(WARNING, "Unable to get no contention LSP in %s at line %d");
}

int updateList(DBLSPList &list, DBLabelSwitchedPath *lsp, operation op)
{
    if (op == SETUP)
        return DBlspListInsert(&list, lsp) < 0 ? -1 : 0;
    return DBlspListRemove(&list, lsp);
}

/**
 * Applies `op` to every link that the stored `lsp` concerns: listed on the links of its path, not
 * on those of the protected path. All links are attempted; -1 when one failed or is gone.
 */
int updateLinks(DataBase &db, DBLabelSwitchedPath *lsp, operation op, ProcessedLinks &processed)
{
    int result = 0;
    const auto update = [&](Long src, Long dst, DBLink &link) {
        result |= updateLS(&db, src, dst, &link.state, lsp, op);
        result |= processed.mark(link.id);
    };

    const Path path = inUse(lsp->path);
    for (std::size_t i = 0; i + 1 < path.size(); ++i) {
        DBLink *link = linkAt(db.linkTab, path[i], path[i + 1]);
        result |= link ? updateList(link->lspList, lsp, op) : -1;
        if (link)
            update(path[i], path[i + 1], *link);
    }
    if (!isBackup(lsp->type))
        return result;

    const Path primPath = inUse(lsp->primPath);
    for (std::size_t i = 0; i + 1 < primPath.size(); ++i) {
        DBLink *link = linkAt(db.linkTab, primPath[i], primPath[i + 1]);
        if (!link)
            result = -1;
        else if (!processed.contains(link->id))
            update(primPath[i], primPath[i + 1], *link);
    }
    return result;
}

} // namespace

int getpreemptList(DataBase *dataBase, const DBLabelSwitchedPath *lsp, LongList *preemptList)
{
    if (!dataBase || !lsp)
        return here.fail("Bad argument (NULL) in %s at line %d");
    ProcessedLinks processed;
    return AdmissionWalk{*dataBase, *lsp, preemptList}.run(processed);
}

int DBaddLSP(DataBase *dataBase, const DBLabelSwitchedPath *lsp, LongList *preemptList)
{
    if (!dataBase || !lsp)
        return here.fail("Bad argument (NULL) in %s at line %d");
    ProcessedLinks processed;
    AdmissionWalk walk{*dataBase, *lsp, preemptList};
    if (walk.run(processed) != 0)
        return -1;
    if (!walk.isAllowed())
        return here.fail("LSP refused by the predicate in %s at line %d");

    DBLabelSwitchedPath *stored = storeCopy(*dataBase, *lsp);
    if (!stored)
        return -1;
    pairWithPartner(*dataBase, *stored);
    processed.startNextWalk();
    if (updateLinks(*dataBase, stored, SETUP, processed) != 0)
        return here.fail("LSP addition uncomplete in %s at line %d");
    return 0;
}

int DBremoveLSP(DataBase *dataBase, Long id)
{
    if (!dataBase)
        return here.fail("Bad argument (NULL) in %s at line %d");
    DBLabelSwitchedPath *lsp = DBgetLSP(dataBase, id);
    if (!lsp)
        return here.fail("Trying to remove inexistent LSP (id = %ld) in %s at line %d", long{id});
    ProcessedLinks processed;
    if (processed.init(*dataBase) != 0)
        return here.fail("LSP removal uncomplete in %s at line %d");

    const Owned<DBLabelSwitchedPath, DBlspDestroy> removed{lsp};
    int result = updateLinks(*dataBase, lsp, REMOVE, processed);
    result |= DBlspVecRemove(&dataBase->lspVec, id);
    unpairPartner(*dataBase, *lsp);
    return result == 0 ? 0 : here.fail("LSP removal uncomplete in %s at line %d");
}
