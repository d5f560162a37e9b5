/**
 * How much room there is for a request: on one link, along a path, and over all paths.
 *
 * The network's index knows of every link a bandwidth that surely fits and one that surely does
 * not (database/indices/network_index.h). In between the admission predicate decides, so the exact
 * room of a link is found by bisection over the doubles in between, and that only for links that
 * it depends on.
 */
#ifndef TARNEX_API_ROOM_H
#define TARNEX_API_ROOM_H

#include "call.h"
#include "session.h"

#include <optional>
#include <span>
#include <vector>

namespace tarnex::inside
{

/** The room on single links for a request of any bandwidth. */
class LinkRooms
{
public:
    /** For a path that is sought, or, with `path`, for a given one. Brings the index up to date;
     * std::bad_alloc. */
    LinkRooms(const Session &session, const Request &request, std::span<const Long> path = {});

    /** Whether a link, by number, takes a bandwidth. */
    bool takes(Long link, double bandwidth);
    /** Whether the request avoids a link. */
    bool isAvoided(Long link) const;
    /** A bandwidth that a link surely takes; below 0 when none is known. */
    double sure(Long link) const;
    /**
     * The largest bandwidth that a link takes; nothing when not even 0.
     *
     * @param known one that it takes, below 0 when none is known
     */
    std::optional<double> room(Long link, double known = -1.0);
    /** The largest bandwidth that a path over this link alone would get, also counting that what
     * gives way has to add up to what it needs; 0 when not even 0 gets it. */
    double roomOnItsOwn(Long link);

    const DataBase &db;

private:
    bool ask(Long link, double bandwidth);
    bool isFreed(Long link, double bandwidth);
    bool isDoubtedByOthers(Long link) const;

    CoreRequest asked;
    const int oa;
    const int level;
    const std::span<const LinkId> avoid; ///< nothing for a given path
    double gain[MAXOA] = {}; ///< what has to give way for the bandwidth asked about last
    const bool isGiven;      ///< on a given path the figures of the index do not decide
};

/** The ways from a request's ingress, as far as there is room; nodes are numbers. */
class Walk
{
public:
    Walk(LinkRooms &rooms, NodeId ingress, NodeId egress);

    /** Whether the egress is reached at all. */
    bool connects();
    /** Whether the egress is reached over links that take a bandwidth. */
    bool reaches(double bandwidth);
    /** The links from nodes that the last walk has reached to others, with their room, by id. */
    std::vector<LinkInTheWay> boundary();
    /**
     * The largest bandwidth with which the egress is reached, nothing when there is none.
     *
     * @param refused one with which it is not
     */
    std::optional<double> widest(double refused);

private:
    template <class Uses>
    bool run(Uses uses);
    bool findSurelyWidest();
    double roomAlongWay(double known);

    LinkRooms &rooms;
    const NetworkIndex &index;
    Long src;
    Long dst;
    std::vector<Long> via; ///< by node: the link it was reached over; -1: not reached; -2: ingress
};

} // namespace tarnex::inside

#endif
