#include "database/backup_index.h"

#include "common/layout.h"
#include "common/records.h"
#include "database/database.h"
#include "database/failure_tables.h"
#include "database/reservation.h"

#include <algorithm>
#include <numeric>

namespace
{

double sumOf(const double (&levels)[MAXPL]) { return std::accumulate(levels, levels + MAXPL, 0.0); }

bool areZero(const double (&levels)[MAXPL])
{
    return std::ranges::all_of(levels, [](double value) { return value == 0.0; });
}

void endList(CarrierList &list)
{
    if (list.values)
        myfree(list.values);
}

template <class T>
T *makeTable(Long count)
{
    return static_cast<T *>(mycalloc(static_cast<std::size_t>(count), sizeof(T)));
}

std::size_t layOut(BackupIndex &index, void *block)
{
    Layout layout{block};
    layout.place(index.numberOf, index.nbIds);
    for (Long *BackupIndex::*table :
         {&BackupIndex::positionOf, &BackupIndex::destination, &BackupIndex::stale})
        layout.place(index.*table, index.nbLinks);
    layout.place(index.links, index.nbLinks);
    layout.place(index.overfull, index.nbLinks);
    layout.place(index.isAsked, index.nbLinks);
    layout.place(index.isStale, index.nbLinks);
    return layout.bytes();
}

/** Whether the translators lead from the id of every link to that link and to no other. */
bool areTranslatorsWhole(const DataBase &db)
{
    Long translated = 0;
    for (Long id = 0; id < db.linkSrcVec.top; ++id) {
        const Long src = db.linkSrcVec.cont[id];
        const Long dst = slotOf(db.linkDstVec, id);
        if (src == 0 && dst == 0)
            continue;
        const DBLink *link = linkAt(db.linkTab, src - 1, dst - 1);
        if (!link || link->id != id)
            return false;
        ++translated;
    }
    return translated == db.index.nbLinks;
}

/** Numbers the links and lists every one as stale. */
void number(const DataBase &db, BackupIndex &index)
{
    const NetworkIndex &network = db.index;
    std::fill_n(index.numberOf, index.nbIds, -1);
    for (Long position = 0; position < index.nbLinks; ++position) {
        const Long link = network.outLinks[position].link;
        index.links[position] = network.links[link];
        index.positionOf[link] = position;
        index.destination[position] = network.destination[link];
        if (network.links[link]->id < index.nbIds)
            index.numberOf[network.links[link]->id] = link;
        noteStale(index, position);
    }
}

bool build(const DataBase &db, BackupIndex &index)
{
    index.nbLinks = db.index.nbLinks;
    index.nbIds = db.linkSrcVec.top;
    index.block = mycalloc(1, layOut(index, nullptr));
    if (!index.block)
        return false;
    layOut(index, index.block);
    index.isUsual = areTranslatorsWhole(db);
    number(db, index);
    index.isCurrent = true;
    return true;
}

/** Makes the figures of a class type in which nothing is reserved; false without memory. */
bool addClass(BackupIndex &index, int oa)
{
    const auto layOutClass = [&index, oa](void *block) {
        Layout layout{block};
        layout.place(index.figures[oa], index.nbLinks);
        layout.place(index.levels[oa], index.nbLinks);
        return layout.bytes();
    };
    void *block = mycalloc(1, layOutClass(nullptr));
    if (!block)
        return false;
    layOutClass(block);
    for (Long position = 0; position < index.nbLinks; ++position)
        index.figures[oa][position].capacity = index.links[position]->state.cap[oa];
    return true;
}

/** Works the figures of one link out anew; false without memory for those of a class type. */
bool refresh(const DataBase &db, BackupIndex &index, Long position)
{
    DBLink &link = *index.links[position];
    double rbw[MAXOA][MAXPL];
    reservationFromTables(db, link, rbw);
    index.isAsked[position] = !link.summary.isTrusted;
    index.overfull[position] = 0;
    for (int oa = 0; oa < MAXOA; ++oa) {
        const double derived = sumOf(rbw[oa]);
        const auto &largest = link.summary.largest[oa];
        const DBLinkState &state = link.state;
        if (derived > state.cap[oa])
            index.overfull[position] |= static_cast<unsigned char>(1U << oa);
        const bool isEmpty = areZero(largest) && areZero(state.pbw[oa]) && areZero(state.rbw[oa]);
        if (isEmpty && !index.figures[oa])
            continue;
        if (!index.figures[oa] && !addClass(index, oa))
            return false;
        std::ranges::copy(largest, index.levels[oa][position].largest);
        std::ranges::copy(state.pbw[oa], index.levels[oa][position].pbw);
        index.figures[oa][position] = {state.cap[oa], derived, sumOf(state.rbw[oa]), 0.0, 0};
        flatten(index.levels[oa][position], index.figures[oa][position]);
    }
    return true;
}

bool refreshStale(const DataBase &db, BackupIndex &index)
{
    Long kept = 0;
    for (const Long position : std::span{index.stale, static_cast<std::size_t>(index.nbStale)}) {
        if (!refresh(db, index, position))
            return false;
        // A state that may change without notice is looked at before every search.
        index.isStale[position] = index.links[position]->summary.isExposed;
        if (index.isStale[position])
            index.stale[kept++] = position;
    }
    index.nbStale = kept;
    return true;
}

/** Gives a list the room for so many slots; false, and nothing changed, without memory. */
bool grow(CarrierList &list, Long size)
{
    CarrierList larger = list;
    larger.size = size;
    const auto layOut = [&larger](void *block) {
        Layout layout{block};
        layout.place(larger.values, larger.size);
        layout.place(larger.carriers, larger.size);
        return layout.bytes();
    };
    void *block = mymalloc(layOut(nullptr));
    if (!block)
        return false;
    layOut(block);
    std::copy_n(list.values, list.top, larger.values);
    std::copy_n(list.carriers, list.top, larger.carriers);
    endList(list);
    list = larger;
    return true;
}

/** Lists a slot; false without memory. */
bool add(CarrierList &list, Carrier carrier, double value)
{
    if (list.top == list.size && !grow(list, std::max(2 * list.size, Long{8})))
        return false;
    list.levels |= 1U << carrier.level();
    list.hasBelow0 = list.hasBelow0 || !(value >= 0.0);
    list.carriers[list.top] = carrier;
    list.values[list.top++] = value;
    return true;
}

/** Lists the slots of one table of a link that are not 0; false without memory. */
bool listCarriers(const BackupIndex &index, const TableSlot &kind, Carrier carrier)
{
    const DBLinkState &state = index.links[carrier.position()]->state;
    const DoubleVec &table = tableOf(state, kind.table, kind.oa, kind.level);
    const Long end = std::min(table.size, index.nbIds);
    for (Long k = nextUsedSlot(table, 0, end); k < end; k = nextUsedSlot(table, k + 1, end)) {
        const Long failing = index.numberOf[k];
        if (failing >= 0 &&
            !add(index.carriersOf(kind.oa, failing, kind.table), carrier, table.cont[k]))
            return false;
    }
    return true;
}

/** Lists the carriers of a class type; false without memory, with a part of them listed. */
bool listCarriers(BackupIndex &index, int oa)
{
    index.carriers[oa] = makeTable<CarrierList>(2 * index.nbLinks);
    if (!index.carriers[oa])
        return false;
    for (Long position = 0; position < index.nbLinks; ++position) {
        for (int p = 0; p < MAXPL; ++p) {
            for (const FailureTable table : {FailureTable::backup, FailureTable::freed}) {
                if (!listCarriers(index, {oa, p, table, 0}, {position, p}))
                    return false;
            }
        }
    }
    return true;
}

} // namespace

bool bringBackupsUpToDate(DataBase &db, int oa)
{
    BackupIndex &index = db.backups;
    const bool isDone = numberNetwork(db) && (index.isCurrent || build(db, index)) &&
                        refreshStale(db, index) && (index.figures[oa] || addClass(index, oa)) &&
                        (index.carriers[oa] || listCarriers(index, oa));
    if (!isDone)
        endBackupIndex(index);
    return isDone;
}

void flatten(const LevelFigures &levels, BackupFigures &figures)
{
    int p = MAXPL - 1;
    while (p > 0 && levels.pbw[p] == 0.0 && levels.largest[p] == levels.largest[p - 1])
        --p;
    figures.flatFrom = p;
    figures.largest = levels.largest[MAXPL - 1];
}

void noteStale(BackupIndex &index, Long position)
{
    if (index.isStale[position])
        return;
    index.isStale[position] = true;
    index.stale[index.nbStale++] = position;
}

void noteCarrier(DataBase &db, const DBLink &link, const TableSlot &slot, double value)
{
    BackupIndex &index = db.backups;
    if (!index.carriers[slot.oa] || slot.slot >= index.nbIds || index.numberOf[slot.slot] < 0)
        return;
    CarrierList &list = index.carriersOf(slot.oa, index.numberOf[slot.slot], slot.table);
    const Carrier carrier{index.positionOf[link.number], slot.level};
    const auto at = std::find(list.carriers, list.carriers + list.top, carrier) - list.carriers;
    if (at < list.top && value != 0.0) {
        list.values[at] = value;
        list.hasBelow0 = list.hasBelow0 || !(value >= 0.0);
    } else if (at < list.top) {
        list.top -= 1;
        list.carriers[at] = list.carriers[list.top];
        list.values[at] = list.values[list.top];
    } else if (value != 0.0 && !add(list, carrier, value)) {
        endBackupIndex(index);
    }
}

void endBackupIndex(BackupIndex &index)
{
    for (int oa = 0; oa < MAXOA; ++oa) {
        if (index.figures[oa])
            myfree(index.figures[oa]);
        if (!index.carriers[oa])
            continue;
        for (CarrierList &list : std::span{index.carriers[oa], 2 * std::size_t(index.nbLinks)})
            endList(list);
        myfree(index.carriers[oa]);
    }
    if (index.block)
        myfree(index.block);
    index = {};
}
