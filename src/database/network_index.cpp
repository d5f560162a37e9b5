#include "database/network_index.h"

#include "common/layout.h"
#include "common/records.h"
#include "database/database.h"
#include "database/reservation.h"

#include <algorithm>
#include <cmath>
#include <span>

namespace
{

std::size_t layOut(NetworkIndex &index, void *block)
{
    Layout layout{block};
    layout.place(index.nodeIds, index.nbNodes);
    layout.place(index.firstIn, index.nbNodes + 1);
    layout.place(index.firstOut, index.nbNodes + 1);
    for (Long *NetworkIndex::*table : {&NetworkIndex::source, &NetworkIndex::destination,
                                       &NetworkIndex::outLinks, &NetworkIndex::stale})
        layout.place(index.*table, index.nbLinks);
    layout.place(index.links, index.nbLinks);
    for (LinkFigures *&figures : index.figures)
        layout.place(figures, index.nbLinks);
    for (unsigned char *NetworkIndex::*table :
         {&NetworkIndex::overfull, &NetworkIndex::ownFailureNeeds, &NetworkIndex::isStale})
        layout.place(index.*table, index.nbLinks);
    return layout.bytes();
}

/** Numbers nodes and links and lists every link as stale. */
void number(DataBase &db, NetworkIndex &index)
{
    Long node = 0;
    for (DBNode *stored : slots(db.nodeVec)) {
        if (!stored)
            continue;
        index.nodeIds[node] = stored->id;
        stored->number = node++;
    }
    Long link = 0;
    Long position = 0;
    for (node = 0; node < index.nbNodes; ++node) {
        const Long id = index.nodeIds[node];
        index.firstIn[node] = link;
        for (const Long from : inUse(db.nodeVec.cont[id]->inNeighb)) {
            DBLink *stored = linkAt(db.linkTab, from, id);
            stored->number = link;
            index.links[link] = stored;
            index.source[link] = db.nodeVec.cont[from]->number;
            index.destination[link] = node;
            index.isStale[link] = 1;
            index.stale[link] = link;
            ++link;
        }
    }
    index.firstIn[index.nbNodes] = link;
    for (node = 0; node < index.nbNodes; ++node) {
        const Long id = index.nodeIds[node];
        index.firstOut[node] = position;
        for (const Long to : inUse(db.nodeVec.cont[id]->outNeighb))
            index.outLinks[position++] = linkAt(db.linkTab, id, to)->number;
    }
    index.firstOut[index.nbNodes] = position;
    index.nbStale = link;
}

/** How many nodes, `start` included, are reached from it along links or, if not `forward`, against
 * them; `mark` has an entry per node, none of them `stamp`. */
Long countReached(const NetworkIndex &index, Long start, bool forward, std::span<Long> mark,
                  Long stamp, std::span<Long> queue)
{
    std::size_t reached = 0;
    const auto reach = [&](Long node) {
        if (mark[static_cast<std::size_t>(node)] == stamp)
            return;
        mark[static_cast<std::size_t>(node)] = stamp;
        queue[reached++] = node;
    };
    reach(start);
    for (std::size_t i = 0; i < reached; ++i) {
        const Long node = queue[i];
        if (forward) {
            for (Long k = index.firstOut[node]; k < index.firstOut[node + 1]; ++k)
                reach(index.destination[index.outLinks[k]]);
        } else {
            for (Long k = index.firstIn[node]; k < index.firstIn[node + 1]; ++k)
                reach(index.source[k]);
        }
    }
    return static_cast<Long>(reached);
}

/** Finds out whether every node that has links reaches every other one; false without memory. */
bool findConnections(NetworkIndex &index)
{
    Long linked = 0;
    for (Long node = 0; node < index.nbNodes; ++node) {
        const bool hasLinks = index.firstIn[node] < index.firstIn[node + 1] ||
                              index.firstOut[node] < index.firstOut[node + 1];
        linked += hasLinks ? 1 : 0;
    }
    if (linked == 0)
        return true;
    const Owned<LongVec, longVecDestroy> mark{longVecNew(index.nbNodes)};
    const Owned<LongVec, longVecDestroy> queue{longVecNew(index.nbNodes)};
    if (!mark || !queue)
        return false;
    const Long start = index.destination[0];
    index.isConnected =
        countReached(index, start, true, slots(*mark), 1, slots(*queue)) == linked &&
        countReached(index, start, false, slots(*mark), 2, slots(*queue)) == linked;
    return true;
}

bool build(DataBase &db, NetworkIndex &index)
{
    endIndex(index); // an attempt before may have ended half way
    for (const DBNode *node : slots(db.nodeVec)) {
        index.nbNodes += node ? 1 : 0;
        index.nbLinks += node ? node->inNeighb.top : 0;
    }
    index.block = mycalloc(1, layOut(index, nullptr));
    if (!index.block)
        return false;
    layOut(index, index.block);
    number(db, index);
    index.isCurrent = findConnections(index);
    if (!index.isCurrent)
        endIndex(index);
    return index.isCurrent;
}

/** Whether the failure of the link itself, or of the node it enters, has a needy slot. */
bool hasOwnFailureNeeds(const DataBase &db, const DBLink &link, Long destinationId, int oa)
{
    return std::ranges::any_of(inUse(link.summary.needy[oa]), [&](Long slot) {
        return slot < db.linkDstVec.size && db.linkDstVec.cont[slot] - 1 == destinationId;
    });
}

/** Works the figures of one link out anew. */
void refresh(const DataBase &db, NetworkIndex &index, Long number)
{
    DBLink &link = *index.links[number];
    double rbw[MAXOA][MAXPL];
    reservationFromTables(db, link, rbw);
    const auto k = static_cast<std::size_t>(number);
    index.overfull[k] = index.ownFailureNeeds[k] = 0;
    const Long destinationId = index.nodeIds[index.destination[number]];
    for (int oa = 0; oa < MAXOA; ++oa) {
        LinkFigures figures{link.state.cap[oa], 0.0, 0.0, 0.0};
        for (int p = 0; p < MAXPL; ++p) {
            figures.reserved += rbw[oa][p];
            figures.load += link.state.pbw[oa][p];
            figures.magnitude += std::abs(rbw[oa][p]) + std::abs(link.state.pbw[oa][p]);
        }
        index.figures[oa][number] = figures;
        const auto bit = static_cast<unsigned char>(1U << oa);
        if (fitOf(figures, 0.0) != Fit::yes)
            index.overfull[k] |= bit;
        if (!link.summary.isTrusted || hasOwnFailureNeeds(db, link, destinationId, oa))
            index.ownFailureNeeds[k] |= bit;
    }
}

} // namespace

void forgetNumbers(DataBase &db)
{
    db.topology = static_cast<Long>(static_cast<std::uint32_t>(db.topology) + 1);
    endIndex(db.index);
    endBackupIndex(db.backups);
}

void noteStateChange(DataBase &db, DBLink &link)
{
    NetworkIndex &index = db.index;
    if (db.backups.isCurrent)
        noteStale(db.backups, db.backups.positionOf[link.number]);
    if (!index.isCurrent || index.isStale[link.number])
        return;
    index.isStale[link.number] = 1;
    index.stale[index.nbStale++] = link.number;
}

bool numberNetwork(DataBase &db) { return db.index.isCurrent || build(db, db.index); }

bool bringUpToDate(DataBase &db)
{
    NetworkIndex &index = db.index;
    if (!numberNetwork(db))
        return false;
    Long kept = 0;
    for (const Long number : std::span{index.stale, static_cast<std::size_t>(index.nbStale)}) {
        refresh(db, index, number);
        // A state that may change without notice is looked at before every search.
        const bool stays = index.links[number]->summary.isExposed;
        index.isStale[number] = stays ? 1 : 0;
        if (stays)
            index.stale[kept++] = number;
    }
    index.nbStale = kept;
    return true;
}

void *workspaceOf(NetworkIndex &index, std::size_t bytes)
{
    if (bytes > index.workspaceBytes) {
        void *larger = mymalloc(bytes);
        if (!larger)
            return nullptr;
        if (index.workspace)
            myfree(index.workspace);
        index.workspace = larger;
        index.workspaceBytes = bytes;
    }
    return index.workspace;
}

void endIndex(NetworkIndex &index)
{
    for (void *block : {index.block, index.workspace}) {
        if (block)
            myfree(block);
    }
    index = {};
}
