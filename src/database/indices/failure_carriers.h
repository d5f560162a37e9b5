/**
 * The failure tables of all links read the other way: for the failure of each link, the slots that
 * are not 0 on any link. A link's tables are indexed by failing link, and a search of backups asks
 * for few failures on all links.
 *
 * - Marks tell which links may have a slot for a failure. They are set with every slot that
 *   changes and stay.
 * - A list has the slots themselves with their values. It is made of the marked links when a
 *   search first asks for its failure. From then on a change of a slot costs a search through it.
 *
 * Invariant: unless marks are lost, each slot below maxListedIds of a stored link that is not 0 is
 * marked, and once a failing link is listed in a class type, its lists have exactly these slots;
 * but for links whose state somebody outside may write.
 *
 * Writers: what follows the books (database/followers/followers.h); findCarriers and listCarriers,
 * before a search of backups. Without memory to follow a change all marks and lists are dropped,
 * and the next search reads the tables of all links for new marks; they go with the last link, too.
 */
#ifndef TARNEX_DATABASE_INDICES_FAILURE_CARRIERS_H
#define TARNEX_DATABASE_INDICES_FAILURE_CARRIERS_H

#include "common/types.h"
#include "database/reservations/failure_tables.h"

#include <cstdint>
#include <span>

struct DataBase_;
struct DBLink_;
struct Effect;

/** Which link has a slot, at which level, in one number. */
class Carrier
{
public:
    Carrier() = default;
    Carrier(Long linkId, int level)
        : bits(static_cast<std::uint32_t>(linkId) << 3 | static_cast<std::uint32_t>(level))
    {
    }
    Long linkId() const { return static_cast<Long>(bits >> 3); }
    int level() const { return static_cast<int>(bits & 7U); }
    bool operator==(const Carrier &other) const = default;

private:
    std::uint32_t bits;
};
static_assert(MAXPL <= 8);

/** Failing links with this id or a larger one are not listed. */
inline constexpr Long maxListedIds = 1 << 22;

/** The slots of one failing link in one kind of table that are not 0, in no order. */
struct CarrierList {
    Long size;         ///< capacity
    Long top;          ///< slots in use
    unsigned levels;   ///< a bit for each level that has, or had, a slot
    bool hasBelow0;    ///< whether one has, or had, a value that is not 0 or more
    bool isListed;     ///< of the first kind of table: whether both lists are made
    double *values;    ///< counted block with `size` values and carriers, owned; null before the
                       ///< first
    Carrier *carriers; ///< in the same block
};

/** Links with ids that are the same modulo this one share a mark. */
inline constexpr Long nbMarks = 4096;

/** Marks of one failing link. */
struct CarrierMarks {
    std::uint64_t words[nbMarks / 64];
};

/** The marks and lists of one database, owned. */
struct FailureCarriers {
    CarrierMarks **marks; ///< by id of the failing link; null: none
    Long nbMarked;        ///< ids that there is a place in `marks` for
    bool areMarksLost;
    CarrierList *lists[MAXOA]; ///< two by id of the failing link
    Long nbIds[MAXOA];         ///< ids that there are lists for

    /** The slots of failing link `id`, -1 for none, in class type `oa`, if it is listed. */
    const CarrierList &of(int oa, Long id, FailureTable table) const
    {
        static constexpr CarrierList none{};
        const bool hasLists = id >= 0 && id < nbIds[oa];
        return hasLists ? lists[oa][2 * id + static_cast<Long>(table)] : none;
    }
    bool isListed(int oa, Long id) const { return of(oa, id, FailureTable::backup).isListed; }
};

/** The first stored link with an id of `from` or more that may have a slot for the failure of link
 * `id`; null when there is none. `from` becomes one more than its id. */
DBLink_ *nextMarked(const DataBase_ &db, Long id, Long &from);

/** Marks anew what marks were lost of; false without memory. The ids of all links must differ. */
[[nodiscard]] bool findCarriers(DataBase_ &db);

/** Lists the links into the nodes of a path but the first in a class type; false without memory.
 * No marks may be lost. */
[[nodiscard]] bool listCarriers(DataBase_ &db, int oa, std::span<const Long> path);

/** Makes room for the marks of what an effect changes; false without memory. */
[[nodiscard]] bool makeRoomFor(FailureCarriers &carriers, const Effect &effect);

/** A slot of a stored link's tables has got another value. */
void updateCarrier(FailureCarriers &carriers, const DBLink_ &link, const TableSlot &slot,
                   double value);

/** A link has come, or its state. */
void listCarriersOf(FailureCarriers &carriers, const DBLink_ &link);
/** A link goes, or its state. */
void unlistCarriersOf(FailureCarriers &carriers, const DBLink_ &link);

/** Drops marks and lists: they no longer tell all, and marks are lost. */
void loseCarriers(FailureCarriers &carriers);
/** Releases all marks and lists; there are no slots. */
void endCarriers(FailureCarriers &carriers);

#endif
