#include "room.h"

#include "bisection.h"
#include "common/records.h"
#include "database/indices/network_index.h"
#include "predicate/predicate.h"
#include "rerouting/rerouting.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <new>
#include <queue>

namespace tarnex::inside
{

namespace
{

constexpr double largestDouble = std::numeric_limits<double>::max();
constexpr Long notReached = -1;
constexpr Long atIngress = -2;

CoreRequest openOrGiven(const Request &request, std::span<const Long> path)
{
    return path.empty() ? CoreRequest{request, LspId{0}} : CoreRequest{request, LspId{0}, path};
}

/** The level up to which the reservations have to fit the capacity. */
int levelFor(const Request &request) { return request.mayPreempt ? request.level : MAXPL - 1; }

} // namespace

LinkRooms::LinkRooms(const Session &session, const Request &request, std::span<const Long> path)
    : db(*session.db), asked(openOrGiven(request, path)), oa(request.classType),
      level(levelFor(request)), avoid(path.empty() ? request.avoid : std::span<const LinkId>{}),
      isGiven(!path.empty())
{
    if (!bringUpToDate(*session.db, level))
        throw std::bad_alloc{};
}

bool LinkRooms::ask(Long link, double bandwidth)
{
    asked->bw[oa] = bandwidth;
    const NetworkIndex &index = db.index;
    std::ranges::fill(gain, 0.0);
    return isValidRequestLink(centralDB, index.nodeIds[index.source[link]],
                              index.nodeIds[index.destination[link]], &index.links[link]->state,
                              asked.get(), gain);
}

/** Whether another class type may be overfull, and so refuse everything. */
bool LinkRooms::isDoubtedByOthers(Long link) const
{
    return !db.index.maybeOverfull[level][link].without(ClassTypes::only(oa)).isEmpty();
}

bool LinkRooms::isAvoided(Long link) const
{
    return std::ranges::find(avoid, LinkId{db.index.ids[link]}) != avoid.end();
}

double LinkRooms::sure(Long link) const
{
    if (isAvoided(link))
        return -1.0;
    if (!tarnexConfig.predicateConfig.capacityClause)
        return largestDouble;
    return isDoubtedByOthers(link) ? -1.0 : db.index.fits[oa][level][link];
}

bool LinkRooms::takes(Long link, double bandwidth)
{
    if (bandwidth <= sure(link))
        return true;
    if (!isGiven && bandwidth >= db.index.exceeds[oa][level][link])
        return false;
    return ask(link, bandwidth);
}

std::optional<double> LinkRooms::room(Long link, double known)
{
    const double fits = sure(link);
    const double low = std::max(known, fits);
    if (low < 0.0 && !ask(link, 0.0))
        return std::nullopt;
    if (low >= largestDouble)
        return largestDouble;
    const double exceeds = db.index.exceeds[oa][level][link];
    const bool isBounded = !isGiven && exceeds <= largestDouble;
    if (!isBounded && ask(link, largestDouble))
        return largestDouble;
    const double guess = std::midpoint(fits, exceeds);
    return lastHolding(std::max(low, 0.0), isBounded ? exceeds : largestDouble, guess,
                       [&](double bandwidth) { return ask(link, bandwidth); });
}

/** Whether a link takes a bandwidth and enough can give way for it. */
bool LinkRooms::isFreed(Long link, double bandwidth)
{
    DBLink &stored = *db.index.links[link];
    const Long messages = errorManager.top;
    Scoped<LongList, longVecEnd> victims;
    const bool isFreed =
        ask(link, bandwidth) && longVecInit(&victims, -1) == 0 &&
        chooseReroutedLSPs(asked->precedence, &stored.state, &stored.lspList, gain, &victims) == 0;
    errorManager.top = messages;
    return isFreed;
}

double LinkRooms::roomOnItsOwn(Long link)
{
    const std::optional<double> largest = room(link);
    if (!largest)
        return 0.0;
    if (!tarnexConfig.predicateConfig.allowReroute)
        return *largest;
    return lastHoldingBelow(*largest, [&](double bandwidth) { return isFreed(link, bandwidth); })
        .value_or(0.0);
}

Walk::Walk(LinkRooms &linkRooms, NodeId ingress, NodeId egress)
    : rooms(linkRooms), index(linkRooms.db.index),
      src(nodeAt(rooms.db.nodeVec, ingress.value)->number),
      dst(nodeAt(rooms.db.nodeVec, egress.value)->number)
{
}

/** Walks breadth first over the links that are used, from the ingress until the egress. */
template <class Uses>
bool Walk::run(Uses uses)
{
    via.assign(static_cast<std::size_t>(index.nbNodes), notReached);
    std::vector<Long> queue{src};
    queue.reserve(via.size());
    via[static_cast<std::size_t>(src)] = atIngress;
    for (std::size_t i = 0; i < queue.size(); ++i) {
        const Long node = queue[i];
        for (Long k = index.firstOut[node]; k < index.firstOut[node + 1]; ++k) {
            const auto [next, link] = index.outLinks[k];
            Long &reachedVia = via[static_cast<std::size_t>(next)];
            if (reachedVia != notReached || !uses(link))
                continue;
            reachedVia = link;
            if (next == dst)
                return true;
            queue.push_back(next);
        }
    }
    return false;
}

bool Walk::connects()
{
    return run([this](Long link) { return !rooms.isAvoided(link); });
}

bool Walk::reaches(double bandwidth)
{
    return run([&](Long link) { return rooms.takes(link, bandwidth); });
}

std::vector<LinkInTheWay> Walk::boundary()
{
    std::vector<LinkInTheWay> links;
    for (Long link = 0; link < index.nbLinks; ++link) {
        const bool leads = via[static_cast<std::size_t>(index.source[link])] != notReached &&
                           via[static_cast<std::size_t>(index.destination[link])] == notReached;
        if (leads && !rooms.isAvoided(link))
            links.push_back({LinkId{index.links[link]->id}, rooms.roomOnItsOwn(link)});
    }
    std::ranges::sort(links, {}, &LinkInTheWay::link);
    return links;
}

/** Finds the way whose narrowest link surely takes the most, if there is one. */
bool Walk::findSurelyWidest()
{
    using Entry = std::pair<double, Long>;
    std::vector<double> width(static_cast<std::size_t>(index.nbNodes), -1.0);
    std::vector<Entry> entries;
    entries.reserve(width.size());
    std::priority_queue<Entry> queue{{}, std::move(entries)};
    via.assign(width.size(), notReached);
    via[static_cast<std::size_t>(src)] = atIngress;
    queue.emplace(largestDouble, src);
    while (!queue.empty()) {
        const auto [reached, node] = queue.top();
        queue.pop();
        if (node == dst)
            return true;
        if (reached < width[static_cast<std::size_t>(node)])
            continue;
        for (Long k = index.firstOut[node]; k < index.firstOut[node + 1]; ++k) {
            const auto [next, link] = index.outLinks[k];
            const double offered = std::min(reached, rooms.sure(link));
            double &held = width[static_cast<std::size_t>(next)];
            if (offered < 0.0 || offered <= held || next == src)
                continue;
            held = offered;
            via[static_cast<std::size_t>(next)] = link;
            queue.emplace(offered, next);
        }
    }
    return false;
}

/** The exact room along the way to the egress, every link of which takes `known`. */
double Walk::roomAlongWay(double known)
{
    double least = largestDouble;
    for (Long node = dst; node != src;) {
        const Long link = via[static_cast<std::size_t>(node)];
        if (rooms.sure(link) < least)
            least = std::min(least, rooms.room(link, known).value_or(known));
        node = index.source[link];
    }
    return least;
}

std::optional<double> Walk::widest(double refused)
{
    double low = -1.0;
    if (!findSurelyWidest()) {
        if (!reaches(0.0))
            return std::nullopt;
        low = 0.0;
    }
    low = roomAlongWay(low);
    // What remains is rounding: ways whose links do not surely take as much, but do.
    double high = refused;
    double next = std::nextafter(low, high);
    while (next < high && reaches(next)) {
        low = roomAlongWay(next);
        const double middle = std::midpoint(low, high);
        if (low < middle && middle < high) {
            if (reaches(middle))
                low = roomAlongWay(middle);
            else
                high = middle;
        }
        next = std::nextafter(low, high);
    }
    return low;
}

} // namespace tarnex::inside
