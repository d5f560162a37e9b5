#include "computation/backup/indexed/failure_needs.h"

#include "common/records.h"

#include <algorithm>
#include <bit>

FailureNeeds::FailureNeeds(const DataBase &database, const BackupDemand &backupDemand)
    : db(database), demand(backupDemand)
{
    for (int p = 0; p < MAXPL; ++p)
        ownAlone[p] = p >= demand.level ? demand.bw : 0.0;
}

void FailureNeeds::layOut(Layout &layout)
{
    const Long nbLinks = db.backups.nbLinks;
    layout.place(carriedAt, nbLinks);
    layout.place(carried, nbLinks);
    layout.place(inRow, nbLinks);
}

void FailureNeeds::begin() { std::fill_n(carriedAt, db.backups.nbLinks, -1); }

void FailureNeeds::clear()
{
    for (const Carried &link : std::span{carried, static_cast<std::size_t>(nbCarried)})
        carriedAt[link.position] = -1;
    nbCarried = 0;
    nbRows = 0;
}

void FailureNeeds::addUp(std::span<const Long> stretch)
{
    const NetworkIndex &network = db.index;
    clear();
    for (std::size_t i = 1; i < stretch.size(); ++i) {
        const Long link = linkAt(db.linkTab, stretch[i - 1], stretch[i])->number;
        const Long node = network.destination[link];
        carryAlong(network.firstIn[node], network.firstIn[node + 1], link);
        addRow(link, link + 1, link);
        addRow(network.firstIn[node], network.firstIn[node + 1], link);
    }
    for (Carried &link : std::span{carried, static_cast<std::size_t>(nbCarried)}) {
        for (int p = 0; p < MAXPL && link.nbRows < nbRows; ++p)
            link.largest[p] = std::max(link.largest[p], ownAlone[p]);
    }
}

/** Picks the links that may need anything but the backup when links `first` to `end` - 1 fail. */
void FailureNeeds::carryAlong(Long first, Long end, Long failing)
{
    for (Long link = first; link < end; ++link) {
        carryAlong(carriersOf(link, FailureTable::backup));
        const CarrierList &freed = carriersOf(link, FailureTable::freed);
        if (link == failing || freed.hasBelow0)
            carryAlong(freed);
    }
}

void FailureNeeds::carryAlong(const CarrierList &list)
{
    for (Long i = 0; i < list.top; ++i) {
        const Long position = db.backups.positionOfId[list.carriers[i].linkId()];
        if (carriedAt[position] >= 0)
            continue;
        carriedAt[position] = nbCarried;
        carried[nbCarried] = {};
        carried[nbCarried++].position = position;
    }
}

/** Adds up what links `first` to `end` - 1 need when they fail together. */
void FailureNeeds::addRow(Long first, Long end, Long failing)
{
    nbInRow = 0;
    nbRows += 1;
    ownBefore = 0.0;
    unsigned levels = levelsIn(first, end) | 1U << demand.level;
    while (levels != 0) {
        const int p = std::countr_zero(levels);
        levels &= levels - 1;
        for (Long link = first; link < end; ++link) {
            const bool isOwn = link == failing && p == demand.level;
            addCarriers(link, p, isOwn);
            if (isOwn)
                addOwn();
        }
        raise(p, levels != 0 ? std::countr_zero(levels) : MAXPL);
    }
}

/** What the failure of a link changes, by its number. */
const CarrierList &FailureNeeds::carriersOf(Long link, FailureTable table) const
{
    return db.carriers.of(demand.oa, db.index.ids[link], table);
}

/** A bit for each level at which one of the links may have a carrier. */
unsigned FailureNeeds::levelsIn(Long first, Long end) const
{
    unsigned levels = 0;
    for (Long link = first; link < end; ++link) {
        for (const auto table : {FailureTable::backup, FailureTable::freed})
            levels |= carriersOf(link, table).levels;
    }
    return levels;
}

/** Adds what the tables hold for the failure of a link at one level. */
void FailureNeeds::addCarriers(Long link, int p, bool isOwn)
{
    const auto addFreed = [](Carried &on, double value) { on.freed += value; };
    const auto addBackup = [&](Carried &on, double value) {
        on.backup += isOwn ? value + demand.bw : value;
        on.hasOwn = on.hasOwn || isOwn;
    };
    forEachCarried(carriersOf(link, FailureTable::freed), p, addFreed);
    forEachCarried(carriersOf(link, FailureTable::backup), p, addBackup);
}

/** Calls `add(on, value)` for what a list holds at one level, on the links that matter. */
template <class Add>
void FailureNeeds::forEachCarried(const CarrierList &list, int p, Add add)
{
    if ((list.levels >> p & 1U) == 0)
        return;
    for (Long i = 0; i < list.top; ++i) {
        const Long at = carriedAt[db.backups.positionOfId[list.carriers[i].linkId()]];
        if (at < 0 || list.carriers[i].level() != p)
            continue;
        if (carried[at].row != nbRows)
            enterRow(carried[at], p);
        add(carried[at], list.values[i]);
    }
}

/** Adds the backup where the tables have nothing that it comes on top of. */
void FailureNeeds::addOwn()
{
    for (Carried *on : std::span{inRow, static_cast<std::size_t>(nbInRow)})
        on->backup += on->hasOwn ? 0.0 : demand.bw;
    ownBefore = demand.bw;
}

/** Raises what is needed at the levels `from` to `end` - 1 to the present sums. */
void FailureNeeds::raise(int from, int end)
{
    for (Carried *on : std::span{inRow, static_cast<std::size_t>(nbInRow)}) {
        const double need = on->backup - on->freed;
        for (int p = from; p < end; ++p)
            on->largest[p] = std::max(on->largest[p], need);
    }
}

/** Enters a link into the row being added up, at level `p`: below it, the row has had nothing but
 * the backup on this link, and the link needs that. */
void FailureNeeds::enterRow(Carried &on, int p)
{
    on.row = nbRows;
    on.nbRows += 1;
    on.backup = ownBefore;
    on.freed = 0.0;
    on.hasOwn = ownBefore != 0.0;
    for (int below = 0; below < p; ++below)
        on.largest[below] = std::max(on.largest[below], ownAlone[below]);
    inRow[nbInRow++] = &on;
}
