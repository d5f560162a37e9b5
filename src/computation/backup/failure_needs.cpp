#include "computation/backup/failure_needs.h"

#include "common/records.h"

#include <algorithm>

FailureNeeds::FailureNeeds(const DataBase &database, const BackupDemand &backupDemand)
    : db(database), demand(backupDemand)
{
    for (int p = 0; p < MAXPL; ++p)
        plain[p] = p >= demand.level ? demand.bw : 0.0;
}

void FailureNeeds::layOut(Layout &layout)
{
    const Long nbLinks = db.backups.nbLinks;
    layout.place(placeOf, nbLinks);
    layout.place(sumAt, nbLinks);
    layout.place(carried, nbLinks);
    layout.place(row, nbLinks);
}

void FailureNeeds::begin() { std::fill_n(placeOf, db.backups.nbLinks, -1); }

void FailureNeeds::clear()
{
    for (const Carried &link : std::span{carried, static_cast<std::size_t>(nbCarried)})
        placeOf[link.position] = -1;
    nbCarried = 0;
    nbRows = 0;
}

void FailureNeeds::addFailuresOf(Long link)
{
    const NetworkIndex &network = db.index;
    const Long node = network.destination[link];
    addRow(link, link + 1, link);
    addRow(network.firstIn[node], network.firstIn[node + 1], link);
    for (Carried &other : std::span{carried, static_cast<std::size_t>(nbCarried)}) {
        for (int p = 0; p < MAXPL && other.nbRows < nbRows; ++p)
            other.largest[p] = std::max(other.largest[p], plain[p]);
    }
}

/** Adds up what links `first` to `end` - 1 need when they fail together. */
void FailureNeeds::addRow(Long first, Long end, Long failing)
{
    nbInRow = 0;
    nbRows += 1;
    ownBefore = 0.0;
    const unsigned levels = levelsIn(first, end) | 1U << demand.level;
    for (int p = 0; p < MAXPL; ++p) {
        for (Long link = first; link < end && (levels >> p & 1U) != 0; ++link) {
            const bool isOwn = link == failing && p == demand.level;
            addCarriers(link, p, isOwn);
            if (isOwn)
                addOwn();
        }
        raise(p);
    }
}

/** A bit for each level at which one of the links has a carrier. */
unsigned FailureNeeds::levelsIn(Long first, Long end) const
{
    unsigned levels = 0;
    for (Long link = first; link < end; ++link) {
        for (const Carrier &carrier : inUse(db.backups.carriers[demand.oa][link]))
            levels |= 1U << carrier.level;
    }
    return levels;
}

/** Adds what the tables hold for the failure of a link at one level. */
void FailureNeeds::addCarriers(Long link, int p, bool isOwn)
{
    const Long slot = db.index.links[link]->id;
    for (const Carrier &carrier : inUse(db.backups.carriers[demand.oa][link])) {
        if (carrier.level != p)
            continue;
        const DBLinkState &state = db.backups.links[carrier.position]->state;
        const double value = slotOf(tableOf(state, carrier.table, demand.oa, p), slot);
        RowSum &sum = sumOn(carrier.position, p);
        if (carrier.table == FailureTable::freed) {
            sum.freed += value;
            continue;
        }
        sum.backup += isOwn ? value + demand.bw : value;
        sum.hasOwn = sum.hasOwn || isOwn;
    }
}

/** Adds the backup where the tables have nothing that it comes on top of. */
void FailureNeeds::addOwn()
{
    for (RowSum &sum : std::span{row, static_cast<std::size_t>(nbInRow)})
        sum.backup += sum.hasOwn ? 0.0 : demand.bw;
    ownBefore = demand.bw;
}

/** Raises what is needed at a level to the present sums. */
void FailureNeeds::raise(int p)
{
    for (const RowSum &sum : std::span{row, static_cast<std::size_t>(nbInRow)}) {
        double &largest = carried[sum.place].largest[p];
        largest = std::max(largest, sum.backup - sum.freed);
    }
}

/** The sum of the row on a link; when it begins at level `p`, it was the backup alone before. */
FailureNeeds::RowSum &FailureNeeds::sumOn(Long position, int p)
{
    Long &place = placeOf[position];
    if (place < 0) {
        place = nbCarried++;
        carried[place] = {{}, position, 0};
        sumAt[place] = 0;
    }
    Long &at = sumAt[place];
    const bool isInRow = at < nbInRow && row[at].place == place;
    if (!isInRow) {
        at = nbInRow++;
        row[at] = {place, ownBefore, 0.0, ownBefore != 0.0};
        carried[place].nbRows += 1;
        for (int below = 0; below < p; ++below)
            carried[place].largest[below] = std::max(carried[place].largest[below], plain[below]);
    }
    return row[at];
}
