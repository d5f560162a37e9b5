#include "database/indices/backup_index.h"

#include "common/layout.h"
#include "common/records.h"
#include "database/books/network.h"
#include "database/reservations/failure_tables.h"
#include "database/reservations/needs.h"
#include "database/reservations/question.h"

#include <algorithm>
#include <cmath>

namespace
{

bool areZero(const double (&levels)[MAXPL])
{
    return std::ranges::all_of(levels, [](double value) { return value == 0.0; });
}

std::size_t layOut(BackupIndex &index, void *block)
{
    Layout layout{block};
    layout.place(index.positionOfId, index.nbIds);
    for (Long *BackupIndex::*table :
         {&BackupIndex::positionOf, &BackupIndex::destination, &BackupIndex::stale})
        layout.place(index.*table, index.nbLinks);
    layout.place(index.links, index.nbLinks);
    layout.place(index.overfull, index.nbLinks);
    layout.place(index.isVacant, index.nbLinks);
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
    return translated == db.nbLinks;
}

/** Takes a position over from the network's index. */
void takePosition(const NetworkIndex &network, BackupIndex &index, Long position)
{
    const auto [node, number] = network.outLinks[position];
    DBLink *link = network.links[number];
    index.links[position] = link;
    index.isVacant[position] = !link;
    index.destination[position] = node;
    markStale(index, position);
    if (link && link->id < index.nbIds)
        index.positionOfId[link->id] = position;
}

/** The position of the link of a number, which is not vacant. */
Long positionAt(const NetworkIndex &network, Long number)
{
    Long position = network.firstOut[network.source[number]];
    while (network.outLinks[position].link != number)
        ++position;
    return position;
}

/** Takes over where the link of a number stands. */
void takeNumber(const NetworkIndex &network, BackupIndex &index, Long number)
{
    index.positionOf[number] =
        network.links[number] ? positionAt(network, number) : network.noLink();
}

/** Gives the links their positions and lists every one as stale. */
void order(const DataBase &db, BackupIndex &index)
{
    const NetworkIndex &network = db.index;
    std::fill_n(index.positionOfId, index.nbIds, -1);
    for (Long position = 0; position < index.nbLinks; ++position)
        takePosition(network, index, position);
    for (Long number = 0; number < index.nbLinks; ++number)
        takeNumber(network, index, number);
}

bool build(const DataBase &db, BackupIndex &index)
{
    index.nbLinks = db.index.nbLinks;
    index.nbIds = db.linkSrcVec.top;
    index.block = mycalloc(1, layOut(index, nullptr));
    if (!index.block)
        return false;
    layOut(index, index.block);
    index.idsLeadToLinks = areTranslatorsWhole(db);
    order(db, index);
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
    for (Long position = 0; position < index.nbLinks; ++position) {
        if (!index.isVacant[position])
            index.figures[oa][position].capacity = index.links[position]->state.cap[oa];
    }
    return true;
}

void refreshVacant(BackupIndex &index, Long position)
{
    for (int oa = 0; oa < MAXOA; ++oa) {
        if (!index.figures[oa])
            continue;
        index.figures[oa][position] = {};
        index.levels[oa][position] = {};
    }
    index.overfull[position] = {};
    index.isAsked[position] = false;
}

/** Works the figures of one link out anew; false without memory for those of a class type. */
bool refresh(const DataBase &db, BackupIndex &index, Long position)
{
    DBLink &link = *index.links[position];
    const DBLinkState &state = link.state;
    LinkSummary *summary = trustedSummary(&link);
    index.overfull[position] = {};
    for (int oa = 0; oa < MAXOA; ++oa) {
        const bool isUnreserved = areZero(state.pbw[oa]) && areZero(state.rbw[oa]);
        if (isUnreserved && !index.figures[oa] && summary && summary->levels[oa].isEmpty()) {
            index.overfull[position].set(oa, 0.0 > state.cap[oa]);
            continue;
        }
        double rbw[MAXPL];
        reservePresent(db, state, summary, oa, rbw);
        const double derived = sumOf(rbw);
        const auto &largest = link.summary.largest[oa];
        index.overfull[position].set(oa, derived > state.cap[oa]);
        if (isUnreserved && areZero(largest) && !index.figures[oa])
            continue;
        if (!index.figures[oa] && !addClass(index, oa))
            return false;
        std::ranges::copy(largest, index.levels[oa][position].largest);
        std::ranges::copy(state.pbw[oa], index.levels[oa][position].pbw);
        index.figures[oa][position] = {state.cap[oa], derived, sumOf(state.rbw[oa]), 0.0, 0};
        flatten(index.levels[oa][position], index.figures[oa][position]);
    }
    index.isAsked[position] = !hasReliableFigures(index, position);
    return true;
}

bool refreshStale(const DataBase &db, BackupIndex &index)
{
    Long kept = 0;
    for (const Long position : std::span{index.stale, static_cast<std::size_t>(index.nbStale)}) {
        index.isStale[position] = false;
        if (index.isVacant[position]) {
            refreshVacant(index, position);
            continue;
        }
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

} // namespace

bool bringBackupsUpToDate(DataBase &db, int oa)
{
    BackupIndex &index = db.backups;
    const bool isDone = numberNetwork(db) && (index.isCurrent || build(db, index)) &&
                        refreshStale(db, index) && (index.figures[oa] || addClass(index, oa)) &&
                        (!index.idsLeadToLinks || findCarriers(db));
    if (!isDone)
        endBackupIndex(index);
    return isDone;
}

void followLink(DataBase &db, Long source, Long destination, Long id)
{
    BackupIndex &index = db.backups;
    const NetworkIndex &network = db.index;
    if (!index.isCurrent)
        return;
    if (!index.idsLeadToLinks || id >= index.nbIds) {
        endBackupIndex(index);
        return;
    }
    index.positionOfId[id] = -1;
    const Long pastOut = network.firstOut[source + 1];
    for (Long position = network.firstOut[source]; position < pastOut; ++position) {
        takePosition(network, index, position);
        takeNumber(network, index, network.outLinks[position].link);
    }
    const Long pastIn = network.firstIn[destination + 1];
    for (Long number = network.firstIn[destination]; number < pastIn; ++number)
        takeNumber(network, index, number);
}

bool addUp(const BackupIndex &index, Long position)
{
    double sum = 0.0;
    for (const BackupFigures *figures : index.figures) {
        if (figures)
            sum += std::abs(figures[position].derived) + std::abs(figures[position].stored);
    }
    return sum <= largestBandwidth;
}

bool hasReliableFigures(const BackupIndex &index, Long position)
{
    return index.links[position]->summary.isTrusted && addUp(index, position);
}

void flatten(const LevelFigures &levels, BackupFigures &figures)
{
    int p = MAXPL - 1;
    while (p > 0 && levels.pbw[p] == 0.0 && levels.largest[p] == levels.largest[p - 1])
        --p;
    figures.flatFrom = p;
    figures.largest = levels.largest[MAXPL - 1];
}

void markStale(BackupIndex &index, Long position)
{
    if (index.isStale[position])
        return;
    index.isStale[position] = true;
    index.stale[index.nbStale++] = position;
}

void markStale(BackupIndex &index, const DBLink &link)
{
    if (index.isCurrent)
        markStale(index, index.positionOf[link.number]);
}

void endBackupIndex(BackupIndex &index)
{
    for (BackupFigures *figures : index.figures) {
        if (figures)
            myfree(figures);
    }
    if (index.block)
        myfree(index.block);
    index = {};
}
