#include "support/consistency.h"

#include <tuple>

namespace property
{

namespace
{

NodePath nodesOf(const DataBase &db)
{
    NodePath nodes;
    for (const DBNode *node : slots(db.nodeVec)) {
        if (node)
            nodes.push_back(node->id);
    }
    return nodes;
}

std::string countersOf(const DataBase &db, const PlainNetwork &contents)
{
    const NodePath nodes = nodesOf(db);
    const Long nbNodes = static_cast<Long>(nodes.size());
    const Long nbLinks = static_cast<Long>(contents.links.size());
    if (std::tie(db.nbNodes, db.nbLinks) != std::tie(nbNodes, nbLinks))
        return "a counter is wrong";
    if (db.nodeVec.top != (nbNodes == 0 ? 0 : nodes.back() + 1))
        return "the top of the node table is wrong";
    std::map<Long, Hop> byId;
    for (const auto &[hop, link] : contents.links)
        byId[link.id] = hop;
    if (byId.size() != contents.links.size())
        return "two links share an id";
    if (db.linkSrcVec.top != (byId.empty() ? 0 : byId.rbegin()->first + 1))
        return "the top of the translators is wrong";
    for (Long id = 0; id < std::max(db.linkSrcVec.size, db.linkDstVec.size); ++id) {
        const Hop hop = byId.contains(id) ? byId[id] : Hop{-1, -1};
        const auto end = [id](const LongVec &v) { return id < v.size ? v.cont[id] - 1 : -1; };
        if (hop != Hop{end(db.linkSrcVec), end(db.linkDstVec)})
            return "a translator is wrong at link " + std::to_string(id);
    }
    return {};
}

std::string neighboursOf(const DataBase &db, const PlainNetwork &contents)
{
    std::map<Long, NodePath> in;
    std::map<Long, NodePath> out;
    for (const auto &[hop, link] : contents.links) {
        out[hop.first].push_back(hop.second);
        in[hop.second].push_back(hop.first);
    }
    for (const Long id : nodesOf(db)) {
        const DBNode &node = *db.nodeVec.cont[id];
        if (idsIn(node.inNeighb) != in[id] || idsIn(node.outNeighb) != out[id])
            return "the neighbours of node " + std::to_string(id) + " are wrong";
    }
    return {};
}

/** The LSPs on a link as its list must have them. */
NodePath listed(const PlainNetwork &contents, Hop hop)
{
    std::vector<const PlannedLsp *> lsps;
    for (const auto &[id, lsp] : contents.lsps) {
        for (auto at = find(lsp.path, {hop.first, hop.second}); at >= 0;
             at = find(lsp.path, {hop.first, hop.second}, at + 1))
            lsps.push_back(&lsp);
    }
    std::ranges::sort(lsps,
                      [](const PlannedLsp *a, const PlannedLsp *b) { return comesFirst(*a, *b); });
    NodePath ids;
    std::ranges::transform(lsps, std::back_inserter(ids), &PlannedLsp::id);
    return ids;
}

std::string reservationsOf(const DataBase &db, const PlainNetwork &contents,
                           const std::set<Hop> &undefined)
{
    PlainNetwork network;
    network.links = contents.links;
    for (const auto &[id, lsp] : contents.lsps) { // as added in the order of their ids
        network.list(lsp);
        for (auto &[hop, link] : network.links) {
            if (undefined.contains(hop))
                continue;
            for (auto times = PlainNetwork::updates(hop, lsp); times > 0; --times)
                network.change(link.state, hop, network.lsps.at(id), 1.0);
        }
    }
    const PlainNetwork::Failures failures = network.failures();
    for (auto &[hop, link] : network.links) {
        if (undefined.contains(hop))
            continue;
        const DBLink &stored = *linkAt(db.linkTab, hop.first, hop.second);
        NodePath ids;
        std::ranges::transform(inUse(stored.lspList), std::back_inserter(ids),
                               &DBLabelSwitchedPath::id);
        PlainNetwork::reserve(link.state, failures);
        if (ids != listed(contents, hop) || !areSame(stored.state, link.state))
            return "link " + std::to_string(link.id) + " is wrong";
    }
    return {};
}

/** Compares the carriers that backups are searched by with the slots that are not 0; states that
 * may be written from outside are not read from there. */
std::string carriersOf(const DataBase &db, const PlainNetwork &contents)
{
    /** Failing link, link, level, table and value. */
    using Use = std::tuple<Long, Long, int, FailureTable, double>;
    std::set<Long> exposed;
    for (const auto &[hop, link] : contents.links) {
        if (linkAt(db.linkTab, hop.first, hop.second)->summary.isExposed)
            exposed.insert(link.id);
    }
    for (int oa = 0; oa < MAXOA; ++oa) {
        std::multiset<Use> listed;
        std::multiset<Use> used;
        for (const auto table : {FailureTable::backup, FailureTable::freed}) {
            for (Long id = 0; id < db.carriers.nbIds[oa]; ++id) {
                const CarrierList &list = db.carriers.of(oa, id, table);
                if (list.top > 0 && !db.carriers.isListed(oa, id))
                    return "a list of carriers is left over";
                for (Long i = 0; i < list.top; ++i) {
                    const Carrier carrier = list.carriers[i];
                    if (!exposed.contains(carrier.linkId()))
                        listed.emplace(id, carrier.linkId(), carrier.level(), table,
                                       list.values[i]);
                }
            }
            for (const auto &[hop, link] : contents.links) {
                for (int p = 0; p < MAXPL && !exposed.contains(link.id); ++p) {
                    const auto values = slots(tableOf(storedState(&db, hop), table, oa, p));
                    for (std::size_t id = 0; id < values.size(); ++id) {
                        if (values[id] == 0.0)
                            continue;
                        Long from = link.id;
                        if (!db.carriers.areMarksLost &&
                            (!nextMarked(db, Long(id), from) || from != link.id + 1))
                            return "a carrier is not marked";
                        if (db.carriers.isListed(oa, Long(id)))
                            used.emplace(Long(id), link.id, p, table, values[id]);
                    }
                }
            }
        }
        if (listed != used)
            return "the carriers of class type " + std::to_string(oa) + " are wrong";
    }
    return {};
}

template <class... Lists>
std::size_t countedIn(const Lists &...lists)
{
    return (countedBytes(lists.cont) + ...);
}

std::size_t bytesOf(const DBLink &link)
{
    std::size_t bytes = countedBytes(&link) + countedIn(link.lspList);
    for (const LongList &needy : link.summary.needy)
        bytes += needy.cont ? countedIn(needy) : 0;
    const DBLinkState &s = link.state;
    for (const auto *table : {&s.bbw, &s.remoteBbw, &s.fbw, &s.remoteFbw}) {
        for (const auto &levels : *table) {
            for (const DoubleVec &slots : levels)
                bytes += countedIn(slots);
        }
    }
    return bytes;
}

std::size_t bytesOf(const FailureCarriers &carriers)
{
    std::size_t bytes = carriers.marks ? countedBytes(carriers.marks) : 0;
    for (const CarrierMarks *marks : std::span{carriers.marks, std::size_t(carriers.nbMarked)})
        bytes += marks ? countedBytes(marks) : 0;
    for (int oa = 0; oa < MAXOA; ++oa) {
        if (!carriers.lists[oa])
            continue;
        bytes += countedBytes(carriers.lists[oa]);
        for (const CarrierList &list :
             std::span{carriers.lists[oa], 2 * std::size_t(carriers.nbIds[oa])})
            bytes += list.values ? countedBytes(list.values) : 0;
    }
    return bytes;
}

} // namespace

PlainNetwork contentsOf(const DataBase &db)
{
    PlainNetwork network;
    const NodePath nodes = nodesOf(db);
    for (const Long src : nodes) {
        for (const Long dst : nodes) {
            if (const DBLink *link = linkAt(db.linkTab, src, dst))
                network.add(PlannedLink{link->id, src, dst});
        }
    }
    for (const DBLabelSwitchedPath *record : slots(db.lspVec)) {
        if (record)
            network.list(plannedFrom(*record));
    }
    return network;
}

std::string inconsistencyOf(const DataBase &db, const std::set<Hop> &undefined)
{
    const PlainNetwork contents = contentsOf(db);
    std::string wrong = countersOf(db, contents);
    if (wrong.empty())
        wrong = neighboursOf(db, contents);
    if (wrong.empty())
        wrong = carriersOf(db, contents);
    return wrong.empty() ? reservationsOf(db, contents, undefined) : wrong;
}

std::size_t countedBytes(const void *block)
{
    std::uint32_t size = 0;
    std::memcpy(&size, static_cast<const char *>(block) - sizeof size, sizeof size);
    return size;
}

std::size_t ownedBytes(const DataBase &db)
{
    std::size_t bytes = countedBytes(&db) +
                        countedIn(db.nodeVec, db.lspVec, db.linkTab, db.linkSrcVec, db.linkDstVec);
    for (const DBNode *node : slots(db.nodeVec))
        bytes += node ? countedBytes(node) + countedIn(node->inNeighb, node->outNeighb) : 0;
    for (const DBLabelSwitchedPath *lsp : slots(db.lspVec)) {
        if (lsp)
            bytes += countedBytes(lsp) +
                     countedIn(lsp->forbidLinks, lsp->path, lsp->primPath, lsp->backLSPIDs);
    }
    bytes += countedBytes(db.linkTab.emptyRow);
    for (const void *block : {db.index.block, db.index.workspace, db.backups.block})
        bytes += block ? countedBytes(block) : 0;
    for (const BackupFigures *figures : db.backups.figures)
        bytes += figures ? countedBytes(figures) : 0;
    bytes += bytesOf(db.carriers);
    for (DBLink **row : slots(db.linkTab)) {
        if (row == db.linkTab.emptyRow)
            continue;
        bytes += countedBytes(row);
        for (const DBLink *link : std::span{row, std::size_t(db.linkTab.size)})
            bytes += link ? bytesOf(*link) : 0;
    }
    return bytes;
}

} // namespace property
