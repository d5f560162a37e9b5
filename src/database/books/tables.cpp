#include "database/books/tables.h"

#include "common/records.h"
#include "common/vector.h"

#include <algorithm>

namespace
{

constexpr Unit here{"database/database_util"};

// --- tables of pointers: what the node table and the LSP table have in common ---

template <class Table>
Table *tableNew(Long size)
{
    auto *table = static_cast<Table *>(mycalloc(1, sizeof(Table)));
    if (!table)
        return here.null("Critical lack of memory in %s at line %d");
    table->size = vec::capacityFor(size);
    table->cont = static_cast<decltype(table->cont)>(
        mycalloc(static_cast<std::size_t>(table->size), sizeof(void *)));
    if (!table->cont) {
        myfree(table);
        return here.null("Critical lack of memory in %s at line %d");
    }
    return table;
}

template <class Table>
int tableInit(Table *table, Long size)
{
    if (!table)
        return here.fail("Bad argument (NULL) in %s at line %d");
    void *cont = mycalloc(static_cast<std::size_t>(vec::capacityFor(size)), sizeof(void *));
    if (!cont)
        return here.fail("Critical lack of memory in %s at line %d");
    *table = {};
    table->cont = static_cast<decltype(table->cont)>(cont);
    table->size = vec::capacityFor(size);
    return 0;
}

template <class Table, class Destroy>
int tableEnd(Table *table, Destroy destroyRecord)
{
    if (!vec::isLive(table))
        return here.fail("Bad argument (NULL) in %s at line %d");
    for (auto *record : slots(*table)) {
        if (record)
            static_cast<void>(destroyRecord(record));
    }
    myfree(table->cont);
    *table = {};
    return 0;
}

/** Tells the caller which message fits: growth and reservation are worded per table. */
enum class SetOutcome { stored, notGrown, reserved };

template <class Table, class Record>
SetOutcome tableSet(Table &table, Record *record, Long id)
{
    if (id >= table.size && vec::resize(here, &table, vec::grownSize(table.size, id)) != 0)
        return SetOutcome::notGrown;
    if (table.cont[id])
        return SetOutcome::reserved;
    table.cont[id] = record;
    return SetOutcome::stored;
}

template <class Table>
bool isOccupied(const Table *table, Long id)
{
    return vec::isLive(table) && id >= 0 && id < table->size && table->cont[id];
}

} // namespace

// --- nodes ---

DBNode *DBnodeNew()
{
    auto *node = static_cast<DBNode *>(mycalloc(1, sizeof(DBNode)));
    if (!node)
        return here.null("Critical lack of memory in %s at line %d");
    if (DBnodeInit(node) != 0) {
        myfree(node);
        return nullptr;
    }
    return node;
}

int DBnodeInit(DBNode *node)
{
    if (!node)
        return here.fail("Bad argument (NULL) in %s at line %d");
    *node = {};
    if (longVecInit(&node->inNeighb, 1) != 0)
        return here.fail("Unable to initialize the incoming neighbour list in %s at line %d");
    if (longVecInit(&node->outNeighb, 1) != 0) {
        longVecEnd(&node->inNeighb);
        return here.fail("Unable to initialize the outgoing neighbour list in %s at line %d");
    }
    return 0;
}

int DBnodeEnd(DBNode *node)
{
    if (!node)
        return here.fail("Bad argument (NULL) in %s at line %d");
    longVecEnd(&node->inNeighb);
    longVecEnd(&node->outNeighb);
    return 0;
}

int DBnodeDestroy(DBNode *node) { return destroyRecord<DBnodeEnd>(node); }

// --- links ---

DBLink *DBlinkNew()
{
    auto *link = static_cast<DBLink *>(mycalloc(1, sizeof(DBLink)));
    if (!link)
        return here.null("Critical lack of memory in %s at line %d");
    if (DBlinkInit(link) != 0) {
        myfree(link);
        return nullptr;
    }
    return link;
}

int DBlinkInit(DBLink *link)
{
    if (!link)
        return here.fail("Bad argument (NULL) in %s at line %d");
    *link = {};
    if (DBlinkStateInit(&link->state) != 0)
        return here.fail("Error while initializing LinkState in %s at line %d");
    if (DBlspListInit(&link->lspList, 1) != 0) {
        DBlinkStateEnd(&link->state);
        return here.fail("Error while initializing LinkState in %s at line %d");
    }
    return 0;
}

int DBlinkEnd(DBLink *link)
{
    if (!link)
        return here.fail("Bad argument (NULL) in %s at line %d");
    DBlinkStateEnd(&link->state);
    DBlspListEnd(&link->lspList);
    endSummary(link->summary);
    return 0;
}

int DBlinkDestroy(DBLink *link) { return destroyRecord<DBlinkEnd>(link); }

// --- node table ---

DBNodeVec *DBnodeVecNew(Long size) { return tableNew<DBNodeVec>(size); }

int DBnodeVecInit(DBNodeVec *vec, Long size) { return tableInit(vec, size); }

int DBnodeVecEnd(DBNodeVec *vec) { return tableEnd(vec, DBnodeDestroy); }

int DBnodeVecDestroy(DBNodeVec *vec) { return destroyRecord<DBnodeVecEnd>(vec); }

int DBnodeVecSet(DBNodeVec *vec, DBNode *node, Long id)
{
    if (!vec::isLive(vec) || !node || id < 0)
        return here.fail("Bad argument (NULL) in %s at line %d");
    switch (tableSet(*vec, node, id)) {
    case SetOutcome::notGrown:
        return here.fail("Unable to resize node vector prior to insertion in %s at line %d");
    case SetOutcome::reserved:
        return here.fail("Trying to add a node with a reserved ID in %s at line %d");
    case SetOutcome::stored:
        break;
    }
    vec->top = std::max(vec->top, id + 1);
    return 0;
}

int DBnodeVecRemove(DBNodeVec *vec, Long id)
{
    if (!isOccupied(vec, id))
        return here.fail("Bad argument (NULL) in %s at line %d");
    static_cast<void>(DBnodeDestroy(vec->cont[id]));
    vec->cont[id] = nullptr;
    while (vec->top > 0 && !vec->cont[vec->top - 1])
        vec->top -= 1;
    return 0;
}

int DBnodeVecResize(DBNodeVec *vec, Long size) { return vec::resize(here, vec, size); }

// --- LSP table ---

DBLSPVec *DBlspVecNew(Long size) { return tableNew<DBLSPVec>(size); }

int DBlspVecInit(DBLSPVec *vec, Long size) { return tableInit(vec, size); }

int DBlspVecEnd(DBLSPVec *vec) { return tableEnd(vec, DBlspDestroy); }

int DBlspVecDestroy(DBLSPVec *vec) { return destroyRecord<DBlspVecEnd>(vec); }

int DBlspVecSet(DBLSPVec *vec, DBLabelSwitchedPath *lsp, Long id)
{
    if (!vec::isLive(vec) || !lsp || id < 0)
        return here.fail("Bad argument (NULL) in %s at line %d");
    switch (tableSet(*vec, lsp, id)) {
    case SetOutcome::notGrown:
        return here.fail("Unable to resize LSP vector prior to insertion in %s at line %d");
    case SetOutcome::reserved:
        return here.fail("Trying to add an LSP with a reserved ID in %s at line %d");
    case SetOutcome::stored:
        break;
    }
    return 0;
}

int DBlspVecRemove(DBLSPVec *vec, Long id)
{
    if (!isOccupied(vec, id))
        return here.fail("Bad argument (NULL) in %s at line %d");
    vec->cont[id] = nullptr;
    return 0;
}

int DBlspVecResize(DBLSPVec *vec, Long size) { return vec::resize(here, vec, size); }

// --- link table ---

namespace
{

DBLink **newRow(Long size)
{
    return static_cast<DBLink **>(mycalloc(static_cast<std::size_t>(size), sizeof(DBLink *)));
}

/** Makes row array and shared empty row; false, and nothing allocated, when there is no memory. */
bool makeTab(DBLinkTab &tab, Long size)
{
    DBLink **emptyRow = newRow(size);
    if (!emptyRow)
        return false;
    auto **rows =
        static_cast<DBLink ***>(mymalloc(static_cast<std::size_t>(size) * sizeof(DBLink **)));
    if (!rows) {
        myfree(emptyRow);
        return false;
    }
    std::fill_n(rows, size, emptyRow);
    tab = {size, rows, emptyRow};
    return true;
}

/** Row of `src` for writing; null when it cannot be made. */
DBLink **ownRow(DBLinkTab &tab, Long src)
{
    if (tab.cont[src] == tab.emptyRow) {
        DBLink **row = newRow(tab.size);
        if (!row)
            return nullptr;
        tab.cont[src] = row;
    }
    return tab.cont[src];
}

/** Lengthens every row that a source has of its own; the table keeps its side. */
bool lengthenRows(DBLinkTab &tab, Long size)
{
    const std::size_t bytes = static_cast<std::size_t>(size) * sizeof(DBLink *);
    for (DBLink **&row : slots(tab)) {
        if (row == tab.emptyRow)
            continue;
        void *longer = mygrow(row, bytes);
        if (!longer)
            return false;
        row = static_cast<DBLink **>(longer);
    }
    return true;
}

/** Grows the table; false, with the old side still usable, when there is no memory. */
bool growTab(DBLinkTab &tab, std::int64_t newSide)
{
    if (newSide > std::numeric_limits<Long>::max())
        return false;
    const Long size = static_cast<Long>(newSide);
    DBLinkTab grown{};
    if (!makeTab(grown, size))
        return false;
    if (!lengthenRows(tab, size)) {
        myfree(grown.cont);
        myfree(grown.emptyRow);
        return false;
    }
    for (Long src = 0; src < tab.size; ++src) {
        if (tab.cont[src] != tab.emptyRow)
            grown.cont[src] = tab.cont[src];
    }
    myfree(tab.cont);
    myfree(tab.emptyRow);
    tab = grown;
    return true;
}

} // namespace

DBLinkTab *DBlinkTabNew(Long size)
{
    auto *tab = static_cast<DBLinkTab *>(mycalloc(1, sizeof(DBLinkTab)));
    if (tab && !makeTab(*tab, vec::capacityFor(size))) {
        myfree(tab);
        tab = nullptr;
    }
    return tab ? tab : here.null("Critical lack of memory in %s at line %d");
}

int DBlinkTabInit(DBLinkTab *tab, Long size)
{
    if (!tab)
        return here.fail("Bad argument (NULL) in %s at line %d");
    return makeTab(*tab, vec::capacityFor(size))
               ? 0
               : here.fail("Critical lack of memory in %s at line %d");
}

int DBlinkTabEnd(DBLinkTab *tab)
{
    if (!vec::isLive(tab))
        return here.fail("Bad argument (NULL) in %s at line %d");
    for (DBLink **row : slots(*tab)) {
        if (row == tab->emptyRow)
            continue;
        for (DBLink *link : std::span{row, static_cast<std::size_t>(tab->size)}) {
            if (link)
                static_cast<void>(DBlinkDestroy(link));
        }
        myfree(row);
    }
    myfree(tab->emptyRow);
    myfree(tab->cont);
    *tab = {};
    return 0;
}

int DBlinkTabDestroy(DBLinkTab *tab) { return destroyRecord<DBlinkTabEnd>(tab); }

int DBlinkTabSet(DBLinkTab *tab, DBLink *lnk, Long src, Long dst)
{
    if (!vec::isLive(tab) || !lnk || src < 0 || dst < 0)
        return here.fail("Bad argument (NULL) in %s at line %d");
    const Long highest = std::max(src, dst);
    const bool fits = highest < tab->size || growTab(*tab, vec::grownSize(tab->size, highest));
    DBLink **row = fits ? ownRow(*tab, src) : nullptr;
    if (!row) {
        here.push(CRITICAL, "Critical lack of memory in %s at line %d");
        return here.fail("Unable to resize link table prior to insertion in %s at line %d");
    }
    row[dst] = lnk;
    return 0;
}

int DBlinkTabRemove(DBLinkTab *tab, Long src, Long dst)
{
    DBLink *link = vec::isLive(tab) ? linkAt(*tab, src, dst) : nullptr;
    if (!link)
        return here.fail("Bad argument (NULL) in %s at line %d");
    static_cast<void>(DBlinkDestroy(link));
    tab->cont[src][dst] = nullptr;
    return 0;
}

int DBlinkTabResize(DBLinkTab *tab, Long size)
{
    if (!vec::isLive(tab))
        return here.fail("Bad argument (NULL) in %s at line %d");
    if (size <= tab->size)
        return 0;
    return growTab(*tab, size) ? 0 : here.fail("Critical lack of memory in %s at line %d");
}
