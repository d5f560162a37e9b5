#include "explain.h"

#include "admission/admission.h"
#include "admission/placement.h"
#include "bisection.h"
#include "books.h"
#include "call.h"
#include "room.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>
#include <new>
#include <system_error>

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

std::string node(Long id) { return "node " + std::to_string(id); }

std::string fromTo(Long from, Long to) { return "from " + node(from) + " to " + node(to); }

Refusal refusal(Reason reason, std::string sentence)
{
    return {
        .reason = reason, .sentence = std::move(sentence), .largestBandwidth = 0.0, .inTheWay = {}};
}

/** " for 250 at level 2", with the class type where there are several. */
std::string wanted(const Session &session, const Request &request)
{
    std::string text = " for " + textOf(request.bandwidth);
    if (session.options.classTypes > 1)
        text += " of class type " + std::to_string(request.classType);
    return text + " at level " + std::to_string(request.level);
}

/** A number in at most 12 digits, none of which says more than there is. */
std::string roundedDown(double number)
{
    constexpr int digits = 12;
    for (const double about : {number, number * (1.0 - 1e-12)}) {
        std::array<char, 32> text{};
        const auto end = std::to_chars(text.data(), text.data() + text.size(), about,
                                       std::chars_format::general, digits);
        double rounded = 0.0;
        if (std::from_chars(text.data(), end.ptr, rounded).ec == std::errc{} && rounded <= number)
            return textOf(rounded);
    }
    return textOf(number);
}

/** How a sentence ends that has told what does not fit. */
std::string whatFits(const std::optional<double> &largest)
{
    return largest ? "; " + roundedDown(*largest) + " would fit." : "; nothing would fit.";
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

/** Whether some path leads from a node to one of others over links that may be used. */
template <class MayUse>
bool connects(const DataBase &db, Long start, std::span<const Long> targets, MayUse mayUse)
{
    std::vector<bool> isReached(static_cast<std::size_t>(db.nodeVec.top));
    std::vector<Long> queue{start};
    isReached[static_cast<std::size_t>(start)] = true;
    for (std::size_t i = 0; i < queue.size(); ++i) {
        const Long from = queue[i];
        if (std::ranges::find(targets, from) != targets.end())
            return true;
        for (const Long to : inUse(nodeAt(db.nodeVec, from)->outNeighb)) {
            if (isReached[static_cast<std::size_t>(to)] || !mayUse(from, to))
                continue;
            isReached[static_cast<std::size_t>(to)] = true;
            queue.push_back(to);
        }
    }
    return false;
}

} // namespace

std::string textOf(double number)
{
    std::array<char, 32> text{};
    const auto end = std::to_chars(text.data(), text.data() + text.size(), number).ptr;
    return {text.data(), end};
}

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

Refusal whyNoLocalBackup(const Session &session, const DBLabelSwitchedPath &primary,
                         std::size_t hop)
{
    const auto path = inUse(primary.path);
    const Long from = path[hop];
    const Long to = path[hop + 1];
    const bool isConnected = connects(*session.db, from, path.subspan(hop + 1),
                                      [&](Long a, Long b) { return a != from || b != to; });
    const std::string link =
        "the link " + fromTo(from, to) + " of LSP " + std::to_string(primary.id);
    if (isConnected)
        return refusal(Reason::noRoomForDisjointPath,
                       "No path around " + link + " has room for a backup.");
    return refusal(Reason::noDisjointPath, "No path leads around " + link + ".");
}

Refusal whyNoGlobalBackup(const Session &session, const DBLabelSwitchedPath &primary)
{
    const auto path = inUse(primary.path);
    const bool isConnected =
        connects(*session.db, path.front(), path.last(1), [&](Long from, Long to) {
            const auto at = std::ranges::find(path.first(path.size() - 1), from);
            return at == path.end() - 1 || *(at + 1) != to;
        });
    const std::string ends =
        fromTo(path.front(), path.back()) + " beside LSP " + std::to_string(primary.id);
    if (isConnected)
        return refusal(Reason::noRoomForDisjointPath,
                       "No path " + ends + " has room for a backup.");
    return refusal(Reason::noDisjointPath, "No path leads " + ends + ".");
}

Refusal whyNoRoomForBackup(const Lsp &backup)
{
    return refusal(Reason::noRoomForDisjointPath,
                   "The path " +
                       fromTo(backup.path.nodes.front().value, backup.path.nodes.back().value) +
                       " has no room for a backup of LSP " +
                       std::to_string(backup.protects.primary.value) + ".");
}

} // namespace inside

} // namespace tarnex
