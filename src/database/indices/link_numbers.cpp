#include "database/indices/link_numbers.h"

#include "database/books/network.h"
#include "database/reservations/failure_tables.h"

#include <algorithm>
#include <span>

namespace
{

/** The places of the links out of a node. */
std::span<OutLink> linksOutOf(const NetworkIndex &index, Long node)
{
    return {index.outLinks + index.firstOut[node], index.outLinks + index.firstOut[node + 1]};
}

/** The last vacant number into a node; noLink() without one. */
Long lastVacantInto(const NetworkIndex &index, Long node)
{
    const std::span links{index.links + index.firstIn[node], index.links + index.firstIn[node + 1]};
    const auto used = std::ranges::find_if(links, [](const DBLink *link) { return link; });
    return used == links.begin()
               ? index.noLink()
               : static_cast<Long>(used - links.begin()) + index.firstIn[node] - 1;
}

/** Gives a number to a link, and notes both where the links out of its source stand. */
void give(NetworkIndex &index, Long number, DBLink &link, Long source)
{
    index.links[number] = &link;
    index.ids[number] = link.id;
    index.source[number] = source;
    link.number = number;
    const Long destination = index.destination[number];
    for (OutLink &out : linksOutOf(index, source)) {
        if (out.node == destination && out.link != index.noLink())
            out.link = number;
    }
    markStale(index, number, ClassTypes::all());
}

void vacate(NetworkIndex &index, Long number)
{
    index.links[number] = nullptr;
    index.ids[number] = -1;
    index.source[number] = index.destination[number];
    markStale(index, number, ClassTypes::all());
}

/** A change of links may have joined or parted the network's nodes. */
void explorationEnds(NetworkIndex &index) { index.isExplored = index.isConnected = false; }

} // namespace

bool numberLink(DataBase &db, DBLink &link, Long src, Long dst)
{
    NetworkIndex &index = db.index;
    if (!index.isCurrent)
        return false;
    const Long source = db.nodeVec.cont[src]->number;
    const Long destination = db.nodeVec.cont[dst]->number;
    Long number = lastVacantInto(index, destination);
    const std::span outLinks = linksOutOf(index, source);
    if (number == index.noLink() || outLinks.empty() || outLinks[0].link != index.noLink())
        return false;
    if (!hasLinks(index, source) || !hasLinks(index, destination) || !index.isConnected)
        explorationEnds(index);

    for (; number + 1 < index.firstIn[destination + 1] && index.source[number + 1] < source;
         ++number)
        give(index, number, *index.links[number + 1], index.source[number + 1]);
    const auto isBefore = [&](const OutLink &out) {
        return out.link == index.noLink() || out.node < destination;
    };
    const auto past = std::ranges::find_if_not(outLinks, isBefore);
    std::copy(outLinks.begin() + 1, past, outLinks.begin());
    past[-1] = {destination, number};
    give(index, number, link, source);
    index.hasUntabledLinks |= link.id >= maxSlots;
    followLink(db, source, destination, link.id);
    return true;
}

bool unnumberLink(DataBase &db, const DBLink &link)
{
    NetworkIndex &index = db.index;
    const Long nbVacant = index.nbLinks - db.nbLinks;
    if (!index.isCurrent || nbVacant > index.nbNodes + index.nbLinks / 2)
        return false;
    Long number = link.number;
    const Long source = index.source[number];
    const Long destination = index.destination[number];
    const std::span outLinks = linksOutOf(index, source);
    const auto place = std::ranges::find(outLinks, number, &OutLink::link);
    std::copy_backward(outLinks.begin(), place, place + 1);
    outLinks[0] = {source, index.noLink()};
    for (; number > index.firstIn[destination] && index.links[number - 1]; --number)
        give(index, number, *index.links[number - 1], index.source[number - 1]);
    vacate(index, number);
    explorationEnds(index);
    followLink(db, source, destination, link.id);
    return true;
}
