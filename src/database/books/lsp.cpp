#include "database/books/lsp.h"

#include "common/records.h"
#include "common/vector.h"

#include <algorithm>
#include <array>

namespace
{

constexpr Unit here{"database/database"};

/** The four lists of a record, in the order in which they are made and copied. */
constexpr std::array lspLists{&DBLabelSwitchedPath::forbidLinks, &DBLabelSwitchedPath::path,
                              &DBLabelSwitchedPath::primPath, &DBLabelSwitchedPath::backLSPIDs};

/** Makes the four lists; after a failure none is left. */
bool makeLists(DBLabelSwitchedPath &lsp)
{
    for (std::size_t made = 0; made < lspLists.size(); ++made) {
        if (longVecInit(&(lsp.*lspLists[made]), -1) == 0)
            continue;
        while (made-- > 0)
            longVecEnd(&(lsp.*lspLists[made]));
        return false;
    }
    return true;
}

/** The two positions around the place of `lsp` in a list that is not empty. */
struct Bracket {
    Long before; ///< last entry known to sort before `lsp`, or its equal
    Long after;  ///< first entry known to sort after `lsp`, or its equal
};

Bracket bracketOf(const DBLSPList &list, const DBLabelSwitchedPath *lsp)
{
    Long a = 0;
    Long b = list.top - 1;
    while (b - a > 1) {
        const Long mid = (a + b) / 2;
        __builtin_prefetch(list.cont[(a + mid) / 2]); // the records that the next step may compare
        __builtin_prefetch(list.cont[(mid + b) / 2]);
        const int order = DBlspCompare(lsp, list.cont[mid]);
        if (order >= 0)
            b = mid;
        if (order <= 0)
            a = mid;
    }
    return {a, b};
}

void insertAt(DBLSPList &list, Long position, DBLabelSwitchedPath *lsp)
{
    std::copy_backward(list.cont + position, list.cont + list.top, list.cont + list.top + 1);
    list.cont[position] = lsp;
    list.top += 1;
}

void removeAt(DBLSPList &list, Long position)
{
    std::copy(list.cont + position + 1, list.cont + list.top, list.cont + position);
    list.top -= 1;
}

} // namespace

DBLabelSwitchedPath *DBlspNew()
{
    auto *lsp = static_cast<DBLabelSwitchedPath *>(mycalloc(1, sizeof(DBLabelSwitchedPath)));
    if (!lsp)
        return here.null("Critical lack of memory in %s at line %d");
    if (!makeLists(*lsp)) {
        myfree(lsp);
        return here.null("Unable to create label switched path in %s at line %d");
    }
    lsp->noContentionId = -1;
    return lsp;
}

int DBlspInit(DBLabelSwitchedPath *lsp)
{
    if (!lsp)
        return here.fail("Bad argument (NULL) in %s at line %d");
    if (!makeLists(*lsp))
        return here.fail("Unable to create label switched path in %s at line %d");
    std::ranges::fill(lsp->bw, 0.0);
    lsp->noContentionId = -1;
    return 0;
}

int DBlspCopy(DBLabelSwitchedPath *dst, DBLabelSwitchedPath *src)
{
    if (!dst || !src)
        return here.fail("Bad argument (NULL) in %s at line %d");
    dst->id = src->id;
    dst->precedence = src->precedence;
    std::ranges::copy(src->bw, dst->bw);
    dst->noContentionId = src->noContentionId;
    dst->type = src->type;
    dst->primID = src->primID;
    int result = 0;
    for (const auto list : lspLists)
        result |= longVecCopy(&(dst->*list), &(src->*list));
    return result == 0 ? 0 : here.fail("Label switched path copy uncomplete in %s at line %d");
}

int DBlspEnd(DBLabelSwitchedPath *lsp)
{
    if (!lsp)
        return here.fail("Bad argument (NULL) in %s at line %d");
    for (const auto list : lspLists)
        longVecEnd(&(lsp->*list));
    return 0;
}

int DBlspDestroy(DBLabelSwitchedPath *lsp) { return destroyRecord<DBlspEnd>(lsp); }

DBLSPList *DBlspListNew(Long size) { return vec::create<DBLSPList>(here, size); }

int DBlspListInit(DBLSPList *list, Long size) { return vec::init(here, list, size); }

int DBlspListEnd(DBLSPList *list) { return vec::end(here, list); }

int DBlspListDestroy(DBLSPList *list) { return vec::destroy(here, list); }

int DBlspCompare(const DBLabelSwitchedPath *LSPa, const DBLabelSwitchedPath *LSPb)
{
    if (LSPa->precedence != LSPb->precedence)
        return LSPa->precedence > LSPb->precedence ? 1 : -1;
    for (int oa = 0; oa < MAXOA; ++oa) {
        if (LSPa->bw[oa] > LSPb->bw[oa])
            return 1;
        if (LSPa->bw[oa] < LSPb->bw[oa])
            return -1;
    }
    return longCompare(&LSPb->id, &LSPa->id);
}

int DBlspListInsert(DBLSPList *list, DBLabelSwitchedPath *lsp)
{
    if (!vec::isLive(list) || !lsp)
        return here.fail("Bad argument (NULL) in %s at line %d");
    if (!vec::makeRoom(*list))
        return here.fail("Critical lack of memory in %s at line %d");

    Long position = 0;
    if (list->top > 0 && DBlspCompare(list->cont[list->top - 1], lsp) >= 0)
        position = list->top;
    else if (list->top > 0 && DBlspCompare(lsp, list->cont[0]) < 0)
        position = bracketOf(*list, lsp).after;
    insertAt(*list, position, lsp);
    return position;
}

int DBlspListRemove(DBLSPList *list, DBLabelSwitchedPath *lsp)
{
    if (!vec::isLive(list) || !lsp)
        return here.fail("Bad argument (NULL) in %s at line %d");
    if (list->top == 0)
        return here.warn("Removing inexistent LSP in %s at line %d");
    const Bracket around = bracketOf(*list, lsp);
    for (const Long position : {around.before, around.after}) {
        if (DBlspCompare(list->cont[position], lsp) == 0) {
            removeAt(*list, position);
            return 0;
        }
    }
    // Bandwidths that are no numbers have no place in the order.
    const auto same = std::ranges::find(inUse(*list), lsp);
    if (same == inUse(*list).end())
        return here.warn("Removing inexistent LSP in %s at line %d");
    removeAt(*list, static_cast<Long>(same - inUse(*list).begin()));
    return 0;
}
