#include "explain.h"

#include "admission/admission.h"
#include "admission/placement.h"
#include "bisection.h"
#include "books.h"
#include "call.h"
#include "room.h"
#include "sentences.h"

#include <algorithm>
#include <limits>
#include <new>

namespace tarnex
{

std::string_view textOf(Reason reason)
{
    switch (reason) {
    case Reason::noSuchNode:
        return "no such node";
    case Reason::sameEnds:
        return "same ends";
    case Reason::notConnected:
        return "not connected";
    case Reason::noRoom:
        return "no room";
    case Reason::noDisjointPath:
        return "no disjoint path";
    case Reason::noRoomForDisjointPath:
        return "no room for a disjoint path";
    }
    return {};
}

namespace inside
{

namespace
{

/** " for 250 at level 2", with the class type where there are several. */
std::string wanted(const Session &session, const Request &request)
{
    std::string text = " for " + textOf(request.bandwidth);
    if (session.options.classTypes > 1)
        text += " of class type " + std::to_string(request.classType);
    return text + " at level " + std::to_string(request.level);
}

/** Takes whatever a placement reports. */
class Anything final : public PlacementReport
{
};

/** Whether the core places a request with another bandwidth, on a given path or one it finds;
 * nothing changes, and its messages are dropped. */
bool wouldBePlaced(const Session &session, Request request, std::span<const Long> path,
                   double bandwidth)
{
    request.bandwidth = bandwidth;
    const Long messages = errorManager.top;
    Anything anything;
    using enum PlacementGoal;
    ::Placement end{};
    if (path.empty()) {
        CoreRequest asked{request, LspId{0}};
        end = placePrimary(session.db, asked.get(), proposal, anything);
    } else {
        CoreRequest asked{request, LspId{0}, path};
        end = admitPrimary(session.db, asked.get(), proposal, anything);
    }
    errorManager.top = messages;
    return end == ::Placement::done;
}

/**
 * The largest bandwidth that the core places, from the largest that every link takes. They differ
 * only by rounding, where the whole path is evaluated in another order or what gives way adds up
 * to a little less than is needed.
 */
std::optional<double> placeable(const Session &session, const Request &request,
                                std::span<const Long> path, std::optional<double> largest)
{
    const auto holds = [&](double bandwidth) {
        return wouldBePlaced(session, request, path, bandwidth);
    };
    return largest ? lastHoldingBelow(*largest, holds) : std::nullopt;
}

} // namespace

std::optional<Refusal> refusedEnds(const Session &session, const Request &request)
{
    for (const NodeId end : {request.ingress, request.egress}) {
        if (!nodeAt(session.db->nodeVec, end.value))
            return refusal(Reason::noSuchNode, "There is no " + node(end.value) + ".");
    }
    if (request.ingress == request.egress)
        return refusal(Reason::sameEnds,
                       "Ingress and egress are both " + node(request.ingress.value) + ".");
    return std::nullopt;
}

Refusal whyNoPath(const Session &session, const Request &request, bool inFull)
{
    LinkRooms rooms{session, request};
    Walk walk{rooms, request.ingress, request.egress};
    const std::string ends = fromTo(request.ingress.value, request.egress.value);
    if (!walk.connects())
        return refusal(Reason::notConnected, "No path leads " + ends + ".");
    if (walk.reaches(request.bandwidth))
        throw std::bad_alloc{}; // there is a path with room, so what lacked was memory
    const std::string noRoom = "No path " + ends + " has room" + wanted(session, request);
    Refusal result = refusal(Reason::noRoom, noRoom);
    if (!inFull) {
        result.sentence += '.';
        return result;
    }
    result.inTheWay = walk.boundary();
    const auto largest = placeable(session, request, {}, walk.widest(request.bandwidth));
    result.largestBandwidth = largest.value_or(0.0);
    result.sentence += whatFits(largest);
    return result;
}

Refusal whyNoRoomOn(const Session &session, const Request &request, std::span<const Long> path,
                    Origin origin, bool inFull)
{
    const auto given = origin == Origin::given ? path : std::span<const Long>{};
    if (wouldBePlaced(session, request, given, request.bandwidth))
        throw std::bad_alloc{}; // the path has room, so what lacked was memory
    Refusal result = refusal(Reason::noRoom, "The path " + fromTo(path.front(), path.back()) +
                                                 " has no room" + wanted(session, request));
    if (!inFull) {
        result.sentence += '.';
        return result;
    }
    LinkRooms rooms{session, request, path};
    std::optional<double> largest = std::numeric_limits<double>::max();
    for (std::size_t k = 1; k < path.size(); ++k) {
        const DBLink &link = *linkAt(session.db->linkTab, path[k - 1], path[k]);
        const std::optional<double> room = rooms.room(link.number);
        if (!rooms.takes(link.number, request.bandwidth))
            result.inTheWay.push_back(
                {LinkId{link.id}, room ? rooms.roomOnItsOwn(link.number) : 0.0});
        largest = room && largest ? std::optional{std::min(*room, *largest)} : std::nullopt;
    }
    std::ranges::sort(result.inTheWay, {}, &LinkInTheWay::link);
    // With less bandwidth another path may be found.
    largest = placeable(session, request, given, given.empty() ? request.bandwidth : largest);
    result.largestBandwidth = largest.value_or(0.0);
    result.sentence += whatFits(largest);
    return result;
}

} // namespace inside

} // namespace tarnex
