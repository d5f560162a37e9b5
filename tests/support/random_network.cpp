#include "support/random_network.h"
#include "database/books/change.h"

#include <algorithm>
#include <map>
#include <set>
#include <sstream>

namespace property
{

namespace
{

void fill(LongList &list, const NodePath &values)
{
    for (const Long value : values)
        static_cast<void>(longVecPushBack(&list, value));
}

/** Writes what a record and a request have in common. */
void describe(auto &record, const PlannedLsp &lsp)
{
    record.id = lsp.id;
    record.type = lsp.type;
    record.precedence = lsp.precedence;
    std::ranges::copy(lsp.bw, record.bw);
    record.primID = lsp.primID;
    fill(record.path, lsp.path);
}

} // namespace

Rng::result_type Rng::operator()()
{
    if (bytes.empty())
        return generator();
    const std::uint8_t byte = bytes.front();
    bytes = bytes.subspan(1);
    return byte * 0x0101010101010101U;
}

int randomInt(Rng &rng, int below) { return std::uniform_int_distribution{0, below - 1}(rng); }

namespace
{

/** Two nodes, maybe the same; in braces they are drawn in the same order by every compiler. */
std::pair<Long, Long> twoOf(Rng &rng, const NodePath &nodes)
{
    return {anyOf(rng, nodes), anyOf(rng, nodes)};
}

} // namespace

NetworkPlan networkOf(const std::string &text)
{
    NetworkPlan plan;
    std::set<Long> nodes;
    std::istringstream words{text};
    for (std::string word; words >> word;) {
        PlannedLink &link = plan.links.emplace_back();
        std::sscanf(word.c_str(), "%d:%d-%d/%lf", &link.id, &link.src, &link.dst, &link.capacity);
        nodes.insert({link.src, link.dst});
    }
    plan.nodes.assign(nodes.begin(), nodes.end());
    return plan;
}

NetworkPlan randomNetwork(Rng &rng, int nodes, int linksPerNode, int idStep)
{
    NetworkPlan plan;
    for (int i = 0; i < nodes; ++i)
        plan.nodes.push_back(i * idStep + randomInt(rng, idStep));
    std::set<Hop> linked;
    const auto link = [&](Long src, Long dst) {
        if (src != dst && linked.emplace(src, dst).second)
            plan.links.push_back({static_cast<Long>(plan.links.size()), src, dst});
    };
    for (std::size_t i = 0; i < plan.nodes.size(); ++i)
        link(plan.nodes[i], plan.nodes[(i + 1) % plan.nodes.size()]);
    while (plan.links.size() < static_cast<std::size_t>(nodes * linksPerNode)) {
        const auto [dst, src] = twoOf(rng, plan.nodes);
        link(src, dst);
    }
    std::ranges::shuffle(plan.links, rng);
    for (PlannedLink &planned : plan.links)
        planned.id = planned.id * idStep + randomInt(rng, idStep);
    return plan;
}

NodePath hopPath(const NetworkPlan &plan, Long src, Long dst, Rng &rng, Hop avoided)
{
    std::map<Long, NodePath> out;
    for (const PlannedLink &link : plan.links) {
        if (Hop{link.src, link.dst} != avoided)
            out[link.src].push_back(link.dst);
    }
    std::map<Long, Long> from{{src, -1}};
    NodePath queue{src};
    for (std::size_t i = 0; i < queue.size() && queue[i] != dst; ++i) {
        const Long reached = queue[i];
        std::ranges::shuffle(out[reached], rng);
        for (const Long node : out[reached]) {
            if (from.emplace(node, reached).second)
                queue.push_back(node);
        }
    }
    NodePath path;
    for (Long node = from.contains(dst) ? dst : -1; node >= 0; node = from.at(node))
        path.insert(path.begin(), node);
    return path;
}

NodePath randomPath(const NetworkPlan &plan, Rng &rng)
{
    const auto [dst, src] = twoOf(rng, plan.nodes);
    NodePath path = hopPath(plan, src, dst, rng);
    if (randomInt(rng, 4) == 0) {
        const NodePath rest = hopPath(plan, path.back(), anyOf(rng, plan.nodes), rng);
        path.insert(path.end(), rest.begin() + 1, rest.end());
    }
    return path;
}

PlannedLsp backupOf(const NetworkPlan &plan, const PlannedLsp &primary, DBLSPType type, Rng &rng)
{
    PlannedLsp backup = primary;
    backup.type = type;
    backup.primID = primary.id;
    backup.primPath = primary.path;
    const int hops = static_cast<int>(primary.path.size()) - 1;
    const int first = randomInt(rng, hops);
    const int last = type == globalBackupLSP ? hops : first + 1 + randomInt(rng, hops - first);
    const auto start = primary.path.begin() + first;
    backup.path = hopPath(plan, start[0], start[last - first], rng, {start[0], start[1]});
    return backup;
}

DBLinkState &storedState(const DataBase *db, Hop hop)
{
    return linkAt(db->linkTab, hop.first, hop.second)->state;
}

int addLink(DataBase *db, const PlannedLink &link)
{
    const Owned<DBLinkState, DBlinkStateDestroy> state{DBlinkStateNew()};
    std::ranges::fill(state->cap, link.capacity);
    return DBaddLink(db, link.id, link.src, link.dst, state.get());
}

int addNetwork(DataBase *db, const NetworkPlan &plan)
{
    int result = 0;
    for (const Long node : plan.nodes)
        result |= DBaddNode(db, node);
    for (const PlannedLink &link : plan.links)
        result |= addLink(db, link);
    return result;
}

LspRecord recordOf(const PlannedLsp &lsp)
{
    LspRecord record{DBlspNew()};
    describe(*record, lsp);
    record->noContentionId = lsp.noContentionId;
    fill(record->primPath, lsp.primPath);
    return record;
}

PlannedLsp plannedFrom(const DBLabelSwitchedPath &record)
{
    PlannedLsp lsp{record.id, record.type, record.precedence};
    std::ranges::copy(record.bw, lsp.bw.begin());
    lsp.path = idsIn(record.path);
    lsp.primID = record.primID;
    lsp.primPath = idsIn(record.primPath);
    lsp.noContentionId = record.noContentionId;
    return lsp;
}

RequestRecord requestOf(const PlannedLsp &lsp)
{
    RequestRecord request{lspRequestNew()};
    describe(*request, lsp);
    request->rerouteInfo.id = lsp.noContentionId;
    return request;
}

} // namespace property
