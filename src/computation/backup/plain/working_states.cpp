#include "computation/backup/plain/working_states.h"

#include "common/records.h"
#include "computation/backup/free_ids.h"
#include "database/books/lookup.h"
#include "error/report.h"

namespace
{

constexpr Unit here{"computation/backup/backup"};

DBLinkState *copyOf(DBLinkState &state)
{
    Owned<DBLinkState, DBlinkStateDestroy> copy{DBlinkStateNew()};
    if (!copy)
        return here.null("Cannot duplicate all the link-states in %s at line %d");
    if (DBlinkStateCopy(copy.get(), &state) != 0)
        return here.null("Something went wrong while copying in %s at line %d");
    return copy.release();
}

} // namespace

WorkingStates::~WorkingStates()
{
    if (!lsList)
        return;
    for (Long link = 0; link < size; ++link) {
        const bool isPrivate = lsList[link] && !isShared(link);
        if (isPrivate && DBlinkStateDestroy(lsList[link]) != 0)
            here.push(CRITICAL, "Something went wrong while clearing a structure in %s at line %d");
    }
    myfree(lsList);
}

bool WorkingStates::allocate()
{
    size = db.linkSrcVec.top;
    lsList = static_cast<DBLinkState **>(
        mycalloc(static_cast<std::size_t>(size), sizeof(DBLinkState *)));
    return lsList != nullptr;
}

void WorkingStates::share()
{
    for (Long link = 0; link < size; ++link) {
        const Long src = DBgetLinkSrc(&db, link);
        const Long dst = DBgetLinkDst(&db, link);
        if (reportIfFree(link, src, dst))
            continue;
        DBLink *stored = linkAt(db.linkTab, src, dst);
        if (stored)
            lsList[link] = &stored->state;
        else
            here.push(WARNING, "Oups there should be a link-state here in %s at line %d");
    }
}

DBLinkState *WorkingStates::writable(Long link)
{
    if (link < 0 || link >= size || !lsList[link])
        return nullptr;
    if (isShared(link))
        lsList[link] = copyOf(*lsList[link]);
    return lsList[link];
}

bool WorkingStates::isShared(Long link) const
{
    const DBLink *stored =
        linkAt(db.linkTab, db.linkSrcVec.cont[link] - 1, db.linkDstVec.cont[link] - 1);
    return stored && lsList[link] == &stored->state;
}
