/* Nodes and links come and go. */
#include "books.h"
#include "database/books/change.h"
#include "database/reservations/failure_tables.h"
#include "removal.h"
#include "session.h"

#include <algorithm>
#include <cmath>
#include <new>

namespace tarnex
{

namespace
{

using inside::wrong;
using LinkState = Owned<DBLinkState, DBlinkStateDestroy>;

void checkNode(const DataBase &db, NodeId node)
{
    if (!nodeAt(db.nodeVec, node.value))
        wrong("There is no node " + std::to_string(node.value) + ".");
}

void checkLink(const inside::Session &session, const LinkSpec &link)
{
    const DataBase &db = *session.db;
    const std::string name = "link " + std::to_string(link.id.value);
    if (!link.id.isValid() || link.id.value >= maxSlots)
        wrong("No id of a link: " + std::to_string(link.id.value) + ".");
    if (inside::linkOf(db, link.id))
        wrong("There is a " + name + " already.");
    checkNode(db, link.from);
    checkNode(db, link.to);
    if (link.from == link.to)
        wrong("Both ends of " + name + " are node " + std::to_string(link.from.value) + ".");
    if (linkAt(db.linkTab, link.from.value, link.to.value))
        wrong("There is a link from node " + std::to_string(link.from.value) + " to node " +
              std::to_string(link.to.value) + " already.");
    if (link.capacity.size() > static_cast<std::size_t>(session.options.classTypes))
        wrong("More capacities than class types for " + name + ".");
    const auto isCapacity = [](double value) { return std::isfinite(value) && value >= 0.0; };
    if (!std::ranges::all_of(link.capacity, isCapacity))
        wrong("The capacities of " + name + " have to be finite numbers of 0 or more.");
}

/** The ids of LSPs, each once, ascending. */
std::vector<Long> sorted(std::vector<Long> ids)
{
    std::ranges::sort(ids);
    ids.erase(std::unique(ids.begin(), ids.end()), ids.end());
    return ids;
}

void appendLsps(const DBLink &link, std::vector<Long> &ids)
{
    for (const DBLabelSwitchedPath *lsp : inUse(link.lspList))
        ids.push_back(lsp->id);
}

} // namespace

void Engine::addNode(NodeId node)
{
    State &session = live();
    const inside::Turn turn{session};
    if (!node.isValid())
        wrong("No id of a node: " + std::to_string(node.value) + ".");
    if (nodeAt(session.db->nodeVec, node.value))
        wrong("There is a node " + std::to_string(node.value) + " already.");
    if (DBaddNode(session.db, node.value) != 0)
        throw std::bad_alloc{};
}

void Engine::addLink(const LinkSpec &link)
{
    State &session = live();
    const inside::Turn turn{session};
    checkLink(session, link);
    const LinkState linkState{DBlinkStateNew()};
    if (!linkState)
        throw std::bad_alloc{};
    std::ranges::transform(link.capacity, linkState->cap, [](double cap) { return cap + 0.0; });
    linkState->color = link.id.value; // by which requests avoid it
    DataBase &db = *session.db;
    if (DBaddLink(&db, link.id.value, link.from.value, link.to.value, linkState.get()) == 0)
        return;
    if (linkAt(db.linkTab, link.from.value, link.to.value))
        static_cast<void>(DBremoveLink(&db, link.from.value, link.to.value));
    throw std::bad_alloc{};
}

std::vector<Lsp> Engine::removeLink(LinkId link)
{
    State &session = live();
    const inside::Turn turn{session};
    const DBLink *stored = inside::linkOf(*session.db, link);
    if (!stored)
        wrong("There is no link " + std::to_string(link.value) + ".");
    std::vector<Long> ids;
    appendLsps(*stored, ids);
    std::vector<Lsp> gone = inside::withBackups(session, sorted(std::move(ids)));
    inside::removeAll(session, gone);
    const Long from = session.db->linkSrcVec.cont[link.value] - 1;
    const Long to = session.db->linkDstVec.cont[link.value] - 1;
    if (DBremoveLink(session.db, from, to) != 0)
        throw std::bad_alloc{};
    return gone;
}

std::vector<Lsp> Engine::removeNode(NodeId node)
{
    State &session = live();
    const inside::Turn turn{session};
    DataBase &db = *session.db;
    checkNode(db, node);
    const DBNode &stored = *nodeAt(db.nodeVec, node.value);
    std::vector<Long> ids;
    for (const Long from : inUse(stored.inNeighb))
        appendLsps(*linkAt(db.linkTab, from, node.value), ids);
    for (const Long to : inUse(stored.outNeighb))
        appendLsps(*linkAt(db.linkTab, node.value, to), ids);
    std::vector<Lsp> gone = inside::withBackups(session, sorted(std::move(ids)));
    inside::removeAll(session, gone);
    if (DBremoveNode(&db, node.value) != 0)
        throw std::bad_alloc{};
    return gone;
}

} // namespace tarnex
