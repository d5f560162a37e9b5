#include "admission/admission.h"

#include "admission/prefetch.h"
#include "common/records.h"
#include "common/vector.h"
#include "database/books/lookup.h"
#include "database/update/update.h"
#include "error/report.h"
#include "predicate/predicate.h"
#include "rerouting/rerouting.h"

#include <algorithm>

namespace
{

constexpr Unit here{"database/database"};

using Path = std::span<const Long>;

/** How often `src` and `dst` follow each other on a path. */
Long countHop(Path path, Long src, Long dst)
{
    Long count = 0;
    for (std::size_t i = 1; i < path.size(); ++i)
        count += path[i - 1] == src && path[i] == dst ? 1 : 0;
    return count;
}

/**
 * Calls `visit(src, dst, isOnPath)` for every hop of an LSP's path and, for a backup, every hop of
 * the protected path that did not come before; stops at the first result that is not 0 and
 * returns it.
 */
template <class Visit>
int forEachConcernedHop(const DBLabelSwitchedPath &lsp, Visit visit)
{
    int result = 0;
    const Path path = inUse(lsp.path);
    for (std::size_t i = 1; i < path.size() && result == 0; ++i)
        result = visit(path[i - 1], path[i], true);
    if (!isBackup(lsp.type))
        return result;
    const Path primPath = inUse(lsp.primPath);
    for (std::size_t i = 1; i < primPath.size() && result == 0; ++i) {
        const auto [src, dst] = std::pair{primPath[i - 1], primPath[i]};
        if (!hasHop(path, src, dst) && !hasHop(primPath.first(i), src, dst))
            result = visit(src, dst, false);
    }
    return result;
}

/** The walk over an LSP's links that asks the predicate and collects what to preempt. */
class AdmissionWalk
{
public:
    /** `linkEffects` are those of setting `newcomer` up. */
    AdmissionWalk(DataBase &database, DBLabelSwitchedPath &newcomer, LinkEffects &linkEffects,
                  LongList *preempted)
        : db(database), lsp(newcomer), effects(linkEffects), preemptList(preempted),
          isWholePrimary(lsp.type == primaryLSP &&
                         std::ranges::all_of(inUse(lsp.path), [](Long node) { return node >= 0; }))
    {
    }

    /** Walks until a link refuses; 0, or -1 after a message. */
    int run()
    {
        if (longVecInit(&idList, -1) != 0)
            return here.fail("Unable to initialize list of longs in %s at line %d");
        const LSPView view = viewOf(lsp);
        static_cast<void>(forEachConcernedHop(lsp, [&](Long src, Long dst, bool) {
            if (const DBLink *link = linkAt(db.linkTab, src, dst))
                prefetchRecord(*link, view);
            return 0;
        }));
        const int result = forEachConcernedHop(lsp, [this](Long src, Long dst, bool) {
            const int asked = askLink(src, dst);
            return asked == 0 && !allowLSP ? endOfWalk : asked;
        });
        return result == endOfWalk ? 0 : result;
    }

    bool isAllowed() const { return allowLSP; }

private:
    static constexpr int endOfWalk = 1;

    /** A link that refuses is carried through all steps; the walk stops after it. */
    int askLink(Long src, Long dst)
    {
        if (!DBgetLinkLSPs(&db, src, dst))
            return here.fail("Unable to get the list of LSPs carried by the link in %s at line %d");
        DBLink &link = *linkAt(db.linkTab, src, dst);
        allowLSP = isWholePrimary
                       ? isValidWithEffect(db, link, effects.on(src, dst), lsp, rerouteGain)
                       : isValidLSPLink(&db, src, dst, &link.state, &lsp, rerouteGain);
        if (isWholePrimary && allowLSP)
            prefetchChanges(link, effects.on(src, dst));
        idList.top = 0;
        if (chooseReroutedLSPs(lsp.precedence, &link.state, &link.lspList, rerouteGain, &idList) !=
            0)
            return here.fail("Unable choose LSPs for rerouting in %s at line %d");
        if (longListMerge(&idList, preemptList, preemptList) != 0)
            return here.fail("Unable to merge lists of longs in %s at line %d");
        return 0;
    }

    DataBase &db;
    DBLabelSwitchedPath &lsp;
    LinkEffects &effects;
    LongList *preemptList;
    bool isWholePrimary; ///< the predicate evaluates others by what it looks up itself
    Scoped<LongList, longVecEnd> idList;
    double rerouteGain[MAXOA] = {}; ///< zeroed once, then left to the predicate
    bool allowLSP = true;
};

/** Asks all concerned links; 0 when none refuses, or -1 after a message. */
int askAll(DataBase &db, DBLabelSwitchedPath &lsp, LinkEffects &effects, LongList *preemptList)
{
    AdmissionWalk walk{db, lsp, effects, preemptList};
    if (walk.run() != 0)
        return -1;
    return walk.isAllowed() ? 0 : here.fail("LSP refused by the predicate in %s at line %d");
}

/**
 * Makes room for everything that updateLinks writes, and for its scratch list, so that it cannot
 * stop half way for lack of memory; 0, or -1 after a message.
 */
int makeRoom(DataBase &db, const DBLabelSwitchedPath &lsp, operation op, LinkEffects &effects)
{
    const Path path = inUse(lsp.path);
    return forEachConcernedHop(lsp, [&](Long src, Long dst, bool isOnPath) {
        DBLink *link = linkAt(db.linkTab, src, dst);
        if (!link)
            return 0;
        const bool isListed = isOnPath && op == SETUP;
        if (isListed)
            prefetchListed(link->lspList);
        if (isListed && !vec::makeRoom(link->lspList, countHop(path, src, dst)))
            return here.fail("Critical lack of memory in %s at line %d");
        const Effect &effect = effects.on(src, dst);
        if (!effect.concerned)
            return 0;
        if (!effect.isApplicable())
            return report(effect);
        if (makeRoomFor(effect, link->state) != 0)
            return -1;
        return makeRoomFor(link->summary, effect) && makeRoomFor(db.carriers, effect)
                   ? 0
                   : here.fail("Critical lack of memory in %s at line %d");
    });
}

/** Stores a copy of `lsp` at its id, with room on its links; null, nothing changed, on failure. */
DBLabelSwitchedPath *storeCopy(DataBase &db, DBLabelSwitchedPath &lsp, LinkEffects &effects)
{
    Owned<DBLabelSwitchedPath, DBlspDestroy> copy{DBlspNew()};
    if (!copy)
        return here.null("Unable to create LSP in %s at line %d");
    if (DBlspCopy(copy.get(), &lsp) != 0)
        return here.null("Unable to create a valid LSP copy in %s at line %d");
    const bool isStored = DBlspVecSet(&db.lspVec, copy.get(), copy->id) == 0;
    if (isStored && makeRoom(db, *copy, SETUP, effects) == 0)
        return copy.release();
    if (isStored)
        static_cast<void>(DBlspVecRemove(&db.lspVec, copy->id));
    return here.null("Unable to insert LSP in the general LSP container in %s at line %d");
}

/** Makes the stored LSP and its no-contention partner point at each other. */
void pairWithPartner(const DataBase &db, DBLabelSwitchedPath &lsp)
{
    if (lsp.noContentionId < 0)
        return;
    if (DBLabelSwitchedPath *partner = lspAt(db.lspVec, lsp.noContentionId)) {
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
    if (DBLabelSwitchedPath *partner = lspAt(db.lspVec, lsp.noContentionId))
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
int updateLinks(DataBase &db, DBLabelSwitchedPath *lsp, operation op, LinkEffects &effects)
{
    int result = 0;
    static_cast<void>(forEachConcernedHop(*lsp, [&](Long src, Long dst, bool isOnPath) {
        DBLink *link = linkAt(db.linkTab, src, dst);
        if (!link) {
            result = -1;
            return 0;
        }
        if (isOnPath)
            result |= updateList(link->lspList, lsp, op);
        const Effect &effect = effects.on(src, dst);
        if (effect.concerned) {
            result |= report(effect);
            updateLink(db, *link, effect);
        }
        return 0;
    }));
    return result;
}

} // namespace

int getpreemptList(DataBase *dataBase, DBLabelSwitchedPath *lsp, LongList *preemptList)
{
    if (!dataBase || !lsp)
        return here.fail("Bad argument (NULL) in %s at line %d");
    LinkEffects effects{*dataBase, viewOf(*lsp), SETUP};
    return AdmissionWalk{*dataBase, *lsp, effects, preemptList}.run();
}

int proposeLSP(DataBase *dataBase, DBLabelSwitchedPath *lsp, LongList *preemptList)
{
    if (!dataBase || !lsp)
        return here.fail("Bad argument (NULL) in %s at line %d");
    LinkEffects effects{*dataBase, viewOf(*lsp), SETUP};
    return askAll(*dataBase, *lsp, effects, preemptList);
}

int DBaddLSP(DataBase *dataBase, DBLabelSwitchedPath *lsp, LongList *preemptList)
{
    if (!dataBase || !lsp)
        return here.fail("Bad argument (NULL) in %s at line %d");
    LinkEffects effects{*dataBase, viewOf(*lsp), SETUP};
    if (askAll(*dataBase, *lsp, effects, preemptList) != 0)
        return -1;
    DBLabelSwitchedPath *stored = storeCopy(*dataBase, *lsp, effects);
    if (!stored)
        return -1;
    pairWithPartner(*dataBase, *stored);
    effects.changePartner(stored->noContentionId);
    if (updateLinks(*dataBase, stored, SETUP, effects) != 0)
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
    LinkEffects effects{*dataBase, viewOf(*lsp), REMOVE};
    if (makeRoom(*dataBase, *lsp, REMOVE, effects) != 0)
        return here.fail("LSP removal uncomplete in %s at line %d");

    const Owned<DBLabelSwitchedPath, DBlspDestroy> removed{lsp};
    int result = updateLinks(*dataBase, lsp, REMOVE, effects);
    result |= DBlspVecRemove(&dataBase->lspVec, id);
    unpairPartner(*dataBase, *lsp);
    return result == 0 ? 0 : here.fail("LSP removal uncomplete in %s at line %d");
}
