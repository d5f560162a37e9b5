#include "database/indices/failure_carriers.h"

#include "common/layout.h"
#include "common/records.h"
#include "database/books/network.h"
#include "database/reservations/effect.h"

#include <algorithm>
#include <bit>

namespace
{

constexpr FailureTable bothTables[] = {FailureTable::backup, FailureTable::freed};

void endList(CarrierList &list)
{
    if (list.values)
        myfree(list.values);
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

/** Gives a listed slot another value, lists it or takes it off; false without memory. */
bool set(CarrierList &list, Carrier carrier, double value)
{
    const auto at = std::find(list.carriers, list.carriers + list.top, carrier) - list.carriers;
    if (at == list.top)
        return value == 0.0 || add(list, carrier, value);
    if (value == 0.0) {
        list.top -= 1;
        list.carriers[at] = list.carriers[list.top];
        list.values[at] = list.values[list.top];
    } else {
        list.values[at] = value;
        list.hasBelow0 = list.hasBelow0 || !(value >= 0.0);
    }
    return true;
}

/** Gives a table of `perId` elements by id room for an id; false without memory. */
template <class T>
bool makeRoomFor(T *&table, Long &nbIds, Long id, std::size_t perId)
{
    if (id < nbIds)
        return true;
    const Long wanted = std::min(2 * id + 2, maxListedIds);
    const std::size_t count = perId * static_cast<std::size_t>(wanted);
    void *more = table ? mygrow(table, count * sizeof(T)) : mycalloc(count, sizeof(T));
    if (!more)
        return false;
    table = static_cast<T *>(more);
    nbIds = wanted;
    return true;
}

/** The marks of a failing link, which may be its first; null without memory. */
CarrierMarks *marksFor(FailureCarriers &carriers, Long id)
{
    if (!makeRoomFor(carriers.marks, carriers.nbMarked, id, 1))
        return nullptr;
    CarrierMarks *&marks = carriers.marks[id];
    if (!marks)
        marks = static_cast<CarrierMarks *>(mycalloc(1, sizeof(CarrierMarks)));
    return marks;
}

/** Marks a link for a failure; false without memory. */
bool mark(FailureCarriers &carriers, Long id, Long linkId)
{
    CarrierMarks *marks = marksFor(carriers, id);
    if (!marks)
        return false;
    const auto place = static_cast<std::uint32_t>(linkId % nbMarks);
    marks->words[place / 64] |= std::uint64_t{1} << (place % 64);
    return true;
}

/** The levels at which a link may have slots that are not 0. */
Levels levelsInUse(const LinkSummary &summary, int oa)
{
    return summary.isTrusted ? summary.levels[oa] : Levels::all();
}

/** Calls `visit(slot, value)` for the slots of a link that are not 0, until it returns false. */
template <class Visit>
bool forEachSlot(const DBLink &link, int oa, Visit visit)
{
    for (const int p : levelsInUse(link.summary, oa)) {
        for (const FailureTable kind : bothTables) {
            const DoubleVec &table = tableOf(link.state, kind, oa, p);
            const Long end = std::min(table.size, maxListedIds);
            for (Long k = nextUsedSlot(table, 0, end); k < end;
                 k = nextUsedSlot(table, k + 1, end)) {
                if (!visit(TableSlot{oa, p, kind, k}, table.cont[k]))
                    return false;
            }
        }
    }
    return true;
}

/** Lists what a link has for a failure in one kind of table; false without memory. */
bool listSlots(CarrierList &list, const DBLink &link, int oa, Long id, FailureTable kind)
{
    for (const int p : levelsInUse(link.summary, oa)) {
        const double value = slotOf(tableOf(link.state, kind, oa, p), id);
        if (value != 0.0 && !add(list, {link.id, p}, value))
            return false;
    }
    return true;
}

/** Lists a failure in one class type unless it is; false, and not listed, without memory. */
bool listFailure(DataBase &db, int oa, Long id)
{
    FailureCarriers &carriers = db.carriers;
    if (carriers.isListed(oa, id))
        return true;
    if (!makeRoomFor(carriers.lists[oa], carriers.nbIds[oa], id, 2))
        return false;
    CarrierList *lists = carriers.lists[oa] + std::ptrdiff_t{2} * id;
    bool areWhole = true;
    for (Long from = 0; const DBLink *link = nextMarked(db, id, from);) {
        for (const FailureTable kind : bothTables)
            areWhole = areWhole && listSlots(lists[static_cast<int>(kind)], *link, oa, id, kind);
    }
    if (!areWhole)
        lists[0].top = lists[1].top = 0;
    lists[0].isListed = areWhole;
    return areWhole;
}

/** Releases the lists alone. */
void endLists(FailureCarriers &carriers)
{
    for (int oa = 0; oa < MAXOA; ++oa) {
        if (!carriers.lists[oa])
            continue;
        for (Long i = 0; i < 2 * carriers.nbIds[oa]; ++i)
            endList(carriers.lists[oa][i]);
        myfree(carriers.lists[oa]);
        carriers.lists[oa] = nullptr;
        carriers.nbIds[oa] = 0;
    }
}

} // namespace

DBLink *nextMarked(const DataBase &db, Long id, Long &from)
{
    const FailureCarriers &carriers = db.carriers;
    const CarrierMarks *marks = id < carriers.nbMarked ? carriers.marks[id] : nullptr;
    while (marks && from < db.linkSrcVec.top) {
        const auto place = static_cast<std::uint32_t>(from % nbMarks);
        const std::uint64_t rest = marks->words[place / 64] >> (place % 64);
        from += rest == 0 ? static_cast<Long>(64 - place % 64) : std::countr_zero(rest);
        if (rest == 0 || from >= db.linkSrcVec.top)
            continue;
        const Long linkId = from++;
        DBLink *link =
            linkAt(db.linkTab, db.linkSrcVec.cont[linkId] - 1, slotOf(db.linkDstVec, linkId) - 1);
        if (link && link->id == linkId)
            return link;
    }
    return nullptr;
}

bool findCarriers(DataBase &db)
{
    FailureCarriers &carriers = db.carriers;
    if (!carriers.areMarksLost)
        return true;
    carriers.areMarksLost = false;
    for (const DBLink *link :
         std::span{db.index.links, static_cast<std::size_t>(db.index.nbLinks)}) {
        if (link && !carriers.areMarksLost)
            listCarriersOf(carriers, *link);
    }
    return !carriers.areMarksLost;
}

bool listCarriers(DataBase &db, int oa, std::span<const Long> path)
{
    return std::ranges::all_of(path.subspan(1), [&](Long to) {
        return std::ranges::all_of(inUse(db.nodeVec.cont[to]->inNeighb), [&](Long from) {
            return listFailure(db, oa, linkAt(db.linkTab, from, to)->id);
        });
    });
}

bool makeRoomFor(FailureCarriers &carriers, const Effect &effect)
{
    return carriers.areMarksLost ||
           std::ranges::all_of(effect.slots.all(), [&](const SlotChange &change) {
               return change.slot >= maxListedIds || marksFor(carriers, change.slot);
           });
}

void updateCarrier(FailureCarriers &carriers, const DBLink &link, const TableSlot &slot,
                   double value)
{
    if (carriers.areMarksLost || slot.slot >= maxListedIds)
        return;
    const auto setListed = [&] {
        CarrierList *lists = carriers.lists[slot.oa] + std::ptrdiff_t{2} * slot.slot;
        return set(lists[static_cast<int>(slot.table)], {link.id, slot.level}, value);
    };
    const bool isFollowed = mark(carriers, slot.slot, link.id) &&
                            (!carriers.isListed(slot.oa, slot.slot) || setListed());
    if (!isFollowed)
        loseCarriers(carriers);
}

void listCarriersOf(FailureCarriers &carriers, const DBLink &link)
{
    for (int oa = 0; oa < MAXOA && !carriers.areMarksLost; ++oa) {
        forEachSlot(link, oa, [&](const TableSlot &slot, double value) {
            updateCarrier(carriers, link, slot, value);
            return !carriers.areMarksLost;
        });
    }
}

void unlistCarriersOf(FailureCarriers &carriers, const DBLink &link)
{
    if (link.summary.isExposed) // its slots may not be the listed ones
        endLists(carriers);
    for (int oa = 0; oa < MAXOA; ++oa) {
        if (carriers.lists[oa])
            forEachSlot(link, oa, [&](const TableSlot &slot, double) {
                updateCarrier(carriers, link, slot, 0.0);
                return true;
            });
    }
}

void loseCarriers(FailureCarriers &carriers)
{
    endCarriers(carriers);
    carriers.areMarksLost = true;
}

void endCarriers(FailureCarriers &carriers)
{
    endLists(carriers);
    for (CarrierMarks *marks :
         std::span{carriers.marks, static_cast<std::size_t>(carriers.nbMarked)}) {
        if (marks)
            myfree(marks);
    }
    if (carriers.marks)
        myfree(carriers.marks);
    carriers = {};
}
