#include "computation/backup/indexed/search.h"

#include "common/vector.h"
#include "computation/backup/cost.h"
#include "computation/backup/free_ids.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

namespace
{

constexpr double unreached = -1.0;

/** Children of an entry of the frontier. */
constexpr Long arity = 4;

/** What the backups of an LSP reserve. */
BackupDemands demandsOf(const DBLabelSwitchedPath &primary)
{
    BackupDemands demands;
    for (int oa = 0; oa < MAXOA; ++oa) {
        if (primary.bw[oa] != 0.0)
            demands.items[static_cast<std::size_t>(demands.size++)] = {
                oa, backupPrecedence(primary), primary.bw[oa]};
    }
    return demands;
}

/** Whether no node comes twice; quadratic, for paths as short as they are. */
bool isSimple(std::span<const Long> path)
{
    constexpr std::size_t longest = 256;
    if (path.size() > longest)
        return false;
    for (std::size_t i = 1; i < path.size(); ++i) {
        if (std::ranges::find(path.first(i), path[i]) != path.begin() + std::ptrdiff_t(i))
            return false;
    }
    return true;
}

/** Whether no link's cost can be other than a number, as the order of the frontier needs it. */
bool doAllAddUp(const BackupIndex &index)
{
    const auto nextAsked = [&index](Long from) {
        const void *found =
            std::memchr(index.isAsked + from, 1, static_cast<std::size_t>(index.nbLinks - from));
        return found ? static_cast<Long>(static_cast<const bool *>(found) - index.isAsked)
                     : index.nbLinks;
    };
    Long position = nextAsked(0);
    while (position < index.nbLinks && addUp(index, position))
        position = nextAsked(position + 1);
    return position == index.nbLinks;
}

} // namespace

IndexedBackupSearch::IndexedBackupSearch(DataBase &database,
                                         const DBLabelSwitchedPath &protectedLSP,
                                         const LSPRequestList &requests, BackupType backupType)
    : db(database), path(inUse(protectedLSP.path)), reqList(requests), type(backupType),
      isLooped(!isSimple(path)), demands(demandsOf(protectedLSP)),
      pricing(database, protectedLSP, demands, backupType)
{
}

IndexedBackupSearch::~IndexedBackupSearch()
{
    if (!isServing)
        return;
    askOnOwnHops(false);
    for (Long position = 0; isLooped && position < db.backups.nbLinks; ++position)
        db.backups.isAsked[position] =
            !db.backups.isVacant[position] && !hasReliableFigures(db.backups, position);
}

IndexedBackupSearch::Service IndexedBackupSearch::offer()
{
    if (!isServed())
        return Service::impossible;
    for (const BackupDemand &demand : demands.all()) {
        if (!bringBackupsUpToDate(db, demand.oa))
            return Service::noMemory;
    }
    void *workspace = workspaceOf(db.index, layOut(nullptr));
    if (!workspace)
        return Service::noMemory;
    layOut(workspace);
    pricing.begin();
    if (!db.backups.idsLeadToLinks || !doAllAddUp(db.backups))
        return Service::impossible;
    for (const BackupDemand &demand : demands.all()) {
        if (!listCarriers(db, demand.oa, path))
            return Service::noMemory;
    }
    askOnOwnHops(true);
    isServing = true;
    return Service::possible;
}

/**
 * Whether the tables can tell everything: link ids that can be listed, bandwidths that every link
 * has a cost for, a path of links, for a global backup one that passes no node twice, and no
 * reservation of the requests to take out first.
 */
bool IndexedBackupSearch::isServed() const
{
    const bool isKnownType = type == LOCAL_BACKUP || type == GLOBAL_BACKUP;
    const bool costsSomething = demands.size > 0 && pricing.leastCost() > 0.0;
    const bool isUsual = std::ranges::all_of(demands.all(), [](const BackupDemand &demand) {
        return demand.bw > 0.0 && demand.bw <= largestBandwidth && demand.level >= 0 &&
               demand.level < MAXPL;
    });
    if (!isKnownType || !costsSomething || !isUsual || path.size() < 2 ||
        (isLooped && type == GLOBAL_BACKUP) || db.linkSrcVec.top > maxListedIds)
        return false;
    for (std::size_t i = 1; i < path.size(); ++i) {
        if (!linkAt(db.linkTab, path[i - 1], path[i]))
            return false;
    }
    const std::span requests{reqList.cont, static_cast<std::size_t>(reqList.size)};
    return std::ranges::all_of(requests, [](const LSPRequest &req) { return req.path.top == 0; });
}

std::size_t IndexedBackupSearch::layOut(void *block)
{
    Layout layout{block};
    layout.place(labels, db.index.nbNodes);
    layout.place(isForbidden, db.backups.nbLinks);
    layout.place(frontier, db.backups.nbLinks + 1);
    pricing.layOut(layout);
    return layout.bytes();
}

/** Marks the primary's own links, where a local backup also takes back what the failure frees. */
void IndexedBackupSearch::askOnOwnHops(bool isAsked)
{
    for (std::size_t i = 1; i < path.size(); ++i) {
        const Long position = positionBetween(path[i - 1], path[i]);
        db.backups.isAsked[position] = isAsked || !hasReliableFigures(db.backups, position);
    }
}

Long IndexedBackupSearch::positionBetween(Long src, Long dst) const
{
    return db.backups.positionOf[linkAt(db.linkTab, src, dst)->number];
}

int IndexedBackupSearch::prepare()
{
    if (db.linkSrcVec.top > db.nbLinks)
        reportFreeIds(db);
    return 0;
}

/** Which link a local backup protects is told by where it starts, the first time that the primary
 * comes there. */
void IndexedBackupSearch::protect(std::span<const Long> stretch)
{
    if (isLooped)
        stretch = {std::ranges::find(path, stretch.front()), 2};
    pricing.protect(stretch);
}

void IndexedBackupSearch::allowAll()
{
    std::copy_n(db.backups.isVacant, db.backups.nbLinks, isForbidden);
}

int IndexedBackupSearch::forbidLink(Long src, Long dst)
{
    isForbidden[positionBetween(src, dst)] = true;
    return 0;
}

int IndexedBackupSearch::forbidLinksInto(Long node)
{
    const Long number = db.nodeVec.cont[node]->number;
    for (Long link = db.index.firstIn[number]; link < db.index.firstIn[number + 1]; ++link)
        isForbidden[db.backups.positionOf[link]] = true;
    return 0;
}

/** Whether no target can be reached, since every link into it is forbidden. */
bool IndexedBackupSearch::areShutOff(std::span<const Long> targets) const
{
    return std::ranges::all_of(targets, [this](Long target) {
        const Long node = db.nodeVec.cont[target]->number;
        const Long *first = db.backups.positionOf + db.index.firstIn[node];
        const Long *last = db.backups.positionOf + db.index.firstIn[node + 1];
        return std::all_of(first, last, [this](Long position) { return isForbidden[position]; });
    });
}

int IndexedBackupSearch::run(Long from, std::span<const Long> targets, bool &found)
{
    found = false;
    if (areShutOff(targets)) // the egress is when the last link is protected
        return 0;
    std::fill_n(labels, db.index.nbNodes, Label{unreached, -1, false, false});
    for (const Long target : targets)
        labels[db.nodeVec.cont[target]->number].isTarget = true;
    frontierSize = nbInserted = 0;
    bound = std::numeric_limits<double>::quiet_NaN();
    start = db.nodeVec.cont[from]->number;
    labels[start].val = 0.0;
    push(0.0, start);
    while (frontierSize > 0 && !found) {
        end = pop().node;
        if (labels[end].isMarked)
            continue;
        labels[end].isMarked = true;
        found = labels[end].isTarget;
        if (!found)
            relaxLinksOf(end);
    }
    return 0;
}

/**
 * Once a target is reached at some cost, no other node matters that costs as much: what it leads to
 * costs more.
 */
bool IndexedBackupSearch::mayMatter(const Label &label, double val) const
{
    const bool improves = label.val == unreached || val < label.val;
    const bool isBeyond = val >= bound && !(label.isTarget && val == bound);
    return improves && !label.isMarked && !isBeyond;
}

void IndexedBackupSearch::relaxLinksOf(Long node)
{
    const double val = labels[node].val;
    const double least = val + pricing.leastCost();
    const Long startId = db.index.nodeIds[start];
    const Long *destination = db.backups.destination;
    const Long past = db.index.firstOut[node + 1];
    for (Long position = db.index.firstOut[node]; position < past; ++position) {
        Label &neighbour = labels[destination[position]];
        if (isForbidden[position] || !mayMatter(neighbour, least))
            continue;
        const double cost = pricing.price(position, startId, earlier);
        if (cost < 0.0 || !mayMatter(neighbour, val + cost))
            continue;
        neighbour.val = val + cost;
        neighbour.entry = position;
        const bool costsMore = neighbour.val + pricing.leastCost() > neighbour.val;
        if (neighbour.isTarget && costsMore)
            bound = neighbour.val;
        push(neighbour.val, destination[position]);
    }
}

void IndexedBackupSearch::push(double key, Long node)
{
    const Entry entry{key, nbInserted++, node};
    Long slot = frontierSize++;
    while (slot > 0 && entry.isBefore(frontier[(slot - 1) / arity])) {
        frontier[slot] = frontier[(slot - 1) / arity];
        slot = (slot - 1) / arity;
    }
    frontier[slot] = entry;
}

IndexedBackupSearch::Entry IndexedBackupSearch::pop()
{
    const Entry next = frontier[0];
    const Entry last = frontier[--frontierSize];
    Long slot = 0;
    for (Long child = 1; child < frontierSize; child = arity * slot + 1) {
        const Long past = std::min(child + arity, frontierSize);
        for (Long sibling = child + 1; sibling < past; ++sibling)
            child = frontier[sibling].isBefore(frontier[child]) ? sibling : child;
        if (!frontier[child].isBefore(last))
            break;
        frontier[slot] = frontier[child];
        slot = child;
    }
    frontier[slot] = last;
    return next;
}

/** The node before one that is reached and is not the start. */
Long IndexedBackupSearch::nodeBefore(Long node) const
{
    return db.index.source[db.index.outLinks[labels[node].entry].link];
}

int IndexedBackupSearch::writePath(LongVec &found) const
{
    for (Long node = end; node != start; node = nodeBefore(node)) {
        if (longVecPushBack(&found, db.index.nodeIds[node]) != 0)
            return -1;
    }
    return longVecPushBack(&found, db.index.nodeIds[start]);
}

void IndexedBackupSearch::putIn(const LSPRequest &req)
{
    for (Long node = end; node != start; node = nodeBefore(node)) {
        pricing.setUpOn(labels[node].entry);
        if (isLooped) // the failures that another backup is for may be this one's, too
            db.backups.isAsked[labels[node].entry] = true;
    }
    const LSPRequest *all = reqList.cont + reqList.size;
    earlier = {&req, static_cast<std::size_t>(all - &req)};
}
