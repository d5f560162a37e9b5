#include "database/indices/network_index.h"

#include "common/layout.h"
#include "common/link_cost.h"
#include "common/records.h"
#include "database/books/network.h"
#include "database/reservations/failure_tables.h"
#include "database/reservations/needs.h"

#include <algorithm>
#include <cassert>
#include <cmath>
#include <limits>
#include <span>

namespace
{

std::size_t layOut(NetworkIndex &index, void *block)
{
    Layout layout{block};
    layout.place(index.nodeIds, index.nbNodes);
    layout.place(index.firstIn, index.nbNodes + 1);
    layout.place(index.firstOut, index.nbNodes + 1);
    for (Long *NetworkIndex::*table :
         {&NetworkIndex::ids, &NetworkIndex::source, &NetworkIndex::destination,
          &NetworkIndex::stale, &NetworkIndex::colors, &NetworkIndex::byColor})
        layout.place(index.*table, index.nbLinks);
    layout.place(index.outLinks, index.nbLinks);
    layout.place(index.links, index.nbLinks);
    for (int oa = 0; oa < MAXOA; ++oa) {
        layout.place(index.figures[oa], index.nbLinks);
        layout.place(index.pieces[oa], index.nbLinks);
    }
    for (int p = index.lowestLevel; p < MAXPL; ++p) {
        layout.place(index.maybeOverfull[p], index.nbLinks);
        for (int oa = 0; oa < MAXOA; ++oa) {
            layout.place(index.fits[oa][p], index.nbLinks);
            layout.place(index.exceeds[oa][p], index.nbLinks);
        }
    }
    layout.place(index.staleClasses, index.nbLinks);
    layout.place(index.reach, index.nbNodes);
    layout.place(index.visits, index.nbNodes);
    return layout.bytes();
}

/** Leaves the next `count` numbers vacant. */
void leaveVacant(NetworkIndex &index, Long node, Long count, Long &link)
{
    for (; count > 0; --count, ++link) {
        index.source[link] = index.destination[link] = node;
        index.ids[link] = -1;
    }
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
    for (node = 0; node < index.nbNodes; ++node) {
        const Long id = index.nodeIds[node];
        index.firstIn[node] = link;
        leaveVacant(index, node, index.spare, link);
        for (const Long from : inUse(db.nodeVec.cont[id]->inNeighb)) {
            DBLink *stored = linkAt(db.linkTab, from, id);
            stored->number = link;
            index.hasUntabledLinks |= stored->id >= maxSlots;
            index.links[link] = stored;
            index.ids[link] = stored->id;
            index.source[link] = db.nodeVec.cont[from]->number;
            index.destination[link++] = node;
        }
    }
    index.firstIn[index.nbNodes] = link;
    leaveVacant(index, 0, 1, link);
    Long position = 0;
    for (node = 0; node < index.nbNodes; ++node) {
        const Long id = index.nodeIds[node];
        index.firstOut[node] = position;
        for (Long vacant = index.spare; vacant > 0; --vacant)
            index.outLinks[position++] = {node, index.noLink()};
        for (const Long to : inUse(db.nodeVec.cont[id]->outNeighb))
            index.outLinks[position++] = {db.nodeVec.cont[to]->number,
                                          linkAt(db.linkTab, id, to)->number};
    }
    index.firstOut[index.nbNodes] = position;
    index.outLinks[position] = {0, index.noLink()};
    for (link = 0; link < index.nbLinks; ++link) {
        index.byColor[link] = link;
        markStale(index, link, ClassTypes::all());
    }
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
                reach(index.outLinks[k].node);
        } else {
            for (Long k = index.firstIn[node]; k < index.firstIn[node + 1]; ++k)
                reach(index.source[k]);
        }
    }
    return static_cast<Long>(reached);
}

/** Finds out whether every node that has links reaches every other one. */
bool areConnected(const NetworkIndex &index, std::span<Long> mark, std::span<Long> queue)
{
    Long linked = 0;
    Long start = 0;
    for (Long node = 0; node < index.nbNodes; ++node) {
        if (!hasLinks(index, node))
            continue;
        ++linked;
        start = node;
    }
    std::ranges::fill(mark, 0);
    return linked > 0 && countReached(index, start, true, mark, 1, queue) == linked &&
           countReached(index, start, false, mark, 2, queue) == linked;
}

bool build(DataBase &db, NetworkIndex &index, int lowestLevel)
{
    const Long spare = index.spare;
    endBackupIndex(db.backups); // its numbers are no longer those of the links
    endIndex(index);            // an attempt before may have ended half way
    index.spare = spare;
    index.lowestLevel = lowestLevel;
    index.nbLinks = 1;
    for (const DBNode *node : slots(db.nodeVec)) {
        index.nbNodes += node ? 1 : 0;
        index.nbLinks += node ? node->inNeighb.top + spare : 0;
    }
    index.block = mycalloc(1, layOut(index, nullptr));
    if (!index.block)
        return false;
    layOut(index, index.block);
    index.isCurrent = true;
    number(db, index);
    return true;
}

/** What decides whether a primary fits, in one class type with the levels up to some. */
struct Occupancy {
    double capacity;
    double load;      ///< reserved by primaries
    double ofOwn;     ///< as in LinkNeeds
    double ofOthers;  ///< as in LinkNeeds
    double magnitude; ///< sum of the sizes of what all this was added up from: bounds its rounding
};

/**
 * Sets what surely fits and what surely does not, with margins far above what the order of the
 * additions can change. A primary on the link adds its bandwidth to the load and takes it off the
 * need of the link's own failures: what remains to be reserved for these does not depend on it.
 */
void setLimits(const Occupancy &is, double &fits, double &exceeds)
{
    constexpr double infinity = std::numeric_limits<double>::infinity();
    constexpr double share = 1e-11;
    const double margin = share * is.magnitude;
    const double room = is.capacity - is.load - is.ofOthers;
    const double ownRoom = is.capacity - is.load - is.ofOwn;
    fits = ownRoom >= margin ? room * (1.0 - share) - margin : -infinity;
    exceeds = ownRoom < -margin ? -infinity : room * (1.0 + share) + margin;
}

/** Takes over the colour of a link. */
void refreshColor(NetworkIndex &index, Long number)
{
    const Long color = index.links[number]->state.color;
    if (index.colors[number] == color)
        return;
    index.colors[number] = color;
    index.isOrderedByColor = false;
}

/** Makes a vacant number one that fits nothing. */
void refreshVacant(NetworkIndex &index, Long number)
{
    constexpr double infinity = std::numeric_limits<double>::infinity();
    for (int oa = 0; oa < MAXOA; ++oa) {
        index.figures[oa][number] = {};
        index.pieces[oa][number] = 0;
        for (int p = index.lowestLevel; p < MAXPL; ++p) {
            index.fits[oa][p][number] = index.exceeds[oa][p][number] = -infinity;
            index.maybeOverfull[p][number] = ClassTypes::all();
        }
    }
    index.staleClasses[number] = {};
}

/** Works the figures of one class type of a link out anew. */
void refresh(const DataBase &db, NetworkIndex &index, Long number, int oa)
{
    DBLink &link = *index.links[number];
    index.needy.set(oa, index.needy.has(oa) || mayNeed(link.summary, oa));
    const LinkNeeds needs = failureNeedsOf(db, link, oa);
    Occupancy now{link.state.cap[oa], 0.0, 0.0, 0.0, needs.magnitude};
    for (int p = 0; p < MAXPL; ++p) {
        now.load += link.state.pbw[oa][p];
        now.ofOwn = needs.ofOwn[p];
        now.ofOthers = needs.ofOthers[p];
        now.magnitude += std::abs(link.state.pbw[oa][p]) + now.ofOwn + now.ofOthers;
        if (p < index.lowestLevel)
            continue;
        double &fits = index.fits[oa][p][number];
        setLimits(now, fits, index.exceeds[oa][p][number]);
        index.maybeOverfull[p][number].set(oa, !(fits >= 0.0));
    }
    index.figures[oa][number] = {now.capacity, now.load};
    index.pieces[oa][number] = pieceAt(now.load / now.capacity);
}

} // namespace

void markStale(NetworkIndex &index, Long number, ClassTypes classes)
{
    if (!index.isCurrent || classes.isEmpty())
        return;
    ClassTypes &stale = index.staleClasses[number];
    if (stale.isEmpty())
        index.stale[index.nbStale++] = number;
    stale = stale | classes;
}

void markStale(NetworkIndex &index, const DBLink &link, ClassTypes classes)
{
    markStale(index, link.number, classes);
}

bool hasLinks(const NetworkIndex &index, Long node)
{
    const Long end = index.firstIn[node + 1];
    const OutLink *first = index.outLinks + index.firstOut[node];
    const OutLink *last = index.outLinks + index.firstOut[node + 1];
    return (end > index.firstIn[node] && index.links[end - 1]) ||
           (last > first && last[-1].link != index.noLink());
}

bool numberNetwork(DataBase &db) { return db.index.isCurrent || build(db, db.index, MAXPL - 1); }

bool bringUpToDate(DataBase &db, int level)
{
    NetworkIndex &index = db.index;
    const bool isUsable = index.isCurrent && index.lowestLevel <= level;
    if (!isUsable && !build(db, index, level))
        return false;
    assert(followsNetwork(db));
    Long kept = 0;
    for (const Long number : std::span{index.stale, static_cast<std::size_t>(index.nbStale)}) {
        if (!index.links[number]) {
            refreshVacant(index, number);
            continue;
        }
        for (const int oa : index.staleClasses[number])
            refresh(db, index, number, oa);
        refreshColor(index, number);
        // A state that may change without notice is looked at before every search.
        const bool stays = index.links[number]->summary.isExposed;
        index.staleClasses[number] = stays ? ClassTypes::all() : ClassTypes{};
        if (stays)
            index.stale[kept++] = number;
    }
    index.nbStale = kept;
    return true;
}

bool followsNetwork(const DataBase &db)
{
    const NetworkIndex &index = db.index;
    Long nbLinks = 0;
    for (Long node = 0; node < index.nbNodes; ++node) {
        const DBNode &stored = *db.nodeVec.cont[index.nodeIds[node]];
        Long in = index.firstIn[node];
        while (in < index.firstIn[node + 1] && !index.links[in])
            ++in;
        Long out = index.firstOut[node];
        while (out < index.firstOut[node + 1] && index.outLinks[out].link == index.noLink())
            ++out;
        const bool isWhole = stored.number == node &&
                             index.firstIn[node + 1] - in == stored.inNeighb.top &&
                             index.firstOut[node + 1] - out == stored.outNeighb.top;
        if (!isWhole)
            return false;
        for (const Long from : inUse(stored.inNeighb)) {
            const DBLink *link = linkAt(db.linkTab, from, stored.id);
            if (link != index.links[in] || link->number != in || link->id != index.ids[in] ||
                index.destination[in] != node || index.nodeIds[index.source[in]] != from)
                return false;
            ++in;
            ++nbLinks;
        }
        for (const Long to : inUse(stored.outNeighb)) {
            const auto [entered, link] = index.outLinks[out++];
            if (index.nodeIds[entered] != to ||
                index.links[link] != linkAt(db.linkTab, stored.id, to))
                return false;
        }
    }
    return nbLinks == db.nbLinks;
}

Reach reachOf(NetworkIndex &index, Long node)
{
    if (index.isExplored && index.isConnected)
        return Reach::usual;
    if (index.isExplored && index.reach[node] != Reach::unknown)
        return index.reach[node];
    const auto nbNodes = static_cast<std::size_t>(index.nbNodes);
    auto *room = static_cast<Long *>(workspaceOf(index, 2 * nbNodes * sizeof(Long)));
    if (!room)
        return Reach::unknown;
    const std::span mark{room, nbNodes};
    const std::span queue{room + nbNodes, nbNodes};
    if (!index.isExplored) {
        std::fill_n(index.reach, nbNodes, Reach::unknown);
        index.isConnected = areConnected(index, mark, queue);
        index.isExplored = true;
        if (index.isConnected)
            return Reach::usual;
    }
    std::ranges::fill(mark, 0);
    const Long count = countReached(index, node, true, mark, 1, queue);
    const auto reached = queue.first(static_cast<std::size_t>(count));
    // Node numbers ascend by id, and so do the links into a node, behind the vacant ones.
    const Long largest = *std::ranges::max_element(reached);
    const bool isOdd = std::ranges::any_of(reached, [&](Long to) {
        const Long end = index.firstIn[to + 1];
        return end > index.firstIn[to] && index.source[end - 1] > largest;
    });
    return index.reach[node] = isOdd ? Reach::odd : Reach::usual;
}

std::span<const Long> linksOfColor(NetworkIndex &index, Long color)
{
    const std::span links{index.byColor, static_cast<std::size_t>(index.nbLinks)};
    const auto colorOf = [&index](Long link) { return index.colors[link]; };
    if (!index.isOrderedByColor)
        std::ranges::sort(links, {}, colorOf);
    index.isOrderedByColor = true;
    return {std::ranges::lower_bound(links, color, {}, colorOf),
            std::ranges::upper_bound(links, color, {}, colorOf)};
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

std::uint32_t takeStamps(NetworkIndex &index, std::uint32_t count)
{
    if (count > std::numeric_limits<std::uint32_t>::max() - index.lastStamp) {
        std::fill_n(index.visits, index.nbNodes, Visit{});
        index.lastStamp = 0;
    }
    index.lastStamp += count;
    return index.lastStamp - count + 1;
}

void endIndex(NetworkIndex &index)
{
    for (void *block : {index.block, index.workspace}) {
        if (block)
            myfree(block);
    }
    index = {};
}
