#include "database/indices/failure_carriers.h"

#include "common/layout.h"
#include "common/records.h"
#include "database/books/network.h"

#include <algorithm>

namespace
{

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

/** The list of a failing link, which may be the first of its id; null without memory. */
CarrierList *listFor(FailureCarriers &carriers, const TableSlot &slot)
{
    CarrierList *&lists = carriers.lists[slot.oa];
    Long &nbIds = carriers.nbIds[slot.oa];
    if (slot.slot >= nbIds) {
        const Long wanted = std::min(2 * slot.slot + 2, maxListedIds);
        void *more = mygrow(lists, 2 * static_cast<std::size_t>(wanted) * sizeof(CarrierList));
        if (!more)
            return nullptr;
        lists = static_cast<CarrierList *>(more);
        nbIds = wanted;
    }
    return &lists[2 * slot.slot + static_cast<Long>(slot.table)];
}

/** Calls `visit(slot, value)` for the listed slots of a link, until it returns false. */
template <class Visit>
bool forEachSlot(const DBLink &link, int oa, Visit visit)
{
    for (int p = 0; p < MAXPL; ++p) {
        for (const FailureTable kind : {FailureTable::backup, FailureTable::freed}) {
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

/** Lists the slots of a link in one class type; false without memory. */
bool listLink(FailureCarriers &carriers, const DBLink &link, int oa)
{
    return forEachSlot(link, oa, [&](const TableSlot &slot, double value) {
        CarrierList *list = listFor(carriers, slot);
        return list && add(*list, {link.id, slot.level}, value);
    });
}

} // namespace

bool listCarriers(DataBase &db, int oa)
{
    FailureCarriers &carriers = db.carriers;
    if (carriers.lists[oa])
        return true;
    carriers.nbIds[oa] = std::clamp(db.linkSrcVec.top, Long{1}, maxListedIds);
    carriers.lists[oa] = static_cast<CarrierList *>(
        mycalloc(2 * static_cast<std::size_t>(carriers.nbIds[oa]), sizeof(CarrierList)));
    const std::span links{db.index.links, static_cast<std::size_t>(db.index.nbLinks)};
    const bool isListed = carriers.lists[oa] && std::ranges::all_of(links, [&](const DBLink *link) {
                              return listLink(carriers, *link, oa);
                          });
    if (!isListed)
        endCarriers(carriers);
    return isListed;
}

void updateCarrier(FailureCarriers &carriers, const DBLink &link, const TableSlot &slot,
                   double value)
{
    if (!carriers.lists[slot.oa] || slot.slot >= maxListedIds)
        return;
    CarrierList *list = listFor(carriers, slot);
    if (!list || !set(*list, {link.id, slot.level}, value))
        endCarriers(carriers);
}

void listCarriersOf(FailureCarriers &carriers, const DBLink &link)
{
    for (int oa = 0; oa < MAXOA; ++oa) {
        if (carriers.lists[oa] && !listLink(carriers, link, oa))
            endCarriers(carriers);
    }
}

void unlistCarriersOf(FailureCarriers &carriers, const DBLink &link)
{
    if (link.summary.isExposed) // its slots may not be the listed ones
        endCarriers(carriers);
    for (int oa = 0; oa < MAXOA; ++oa) {
        if (carriers.lists[oa])
            forEachSlot(link, oa, [&](const TableSlot &slot, double) {
                updateCarrier(carriers, link, slot, 0.0);
                return true;
            });
    }
}

void endCarriers(FailureCarriers &carriers)
{
    for (int oa = 0; oa < MAXOA; ++oa) {
        if (!carriers.lists[oa])
            continue;
        for (Long i = 0; i < 2 * carriers.nbIds[oa]; ++i)
            endList(carriers.lists[oa][i]);
        myfree(carriers.lists[oa]);
    }
    carriers = {};
}
