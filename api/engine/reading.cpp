/* Reading back; nothing here changes what the engine reserves. */
#include "books.h"
#include "common/common.h"
#include "common/engine_lock.h"
#include "database/books/lookup.h"
#include "database/reservations/needs.h"
#include "session.h"

#include <algorithm>

namespace tarnex
{

namespace
{

const DBLabelSwitchedPath &existing(const inside::Session &session, LspId lsp)
{
    const DBLabelSwitchedPath *record = lspAt(session.db->lspVec, lsp.value);
    if (!record)
        inside::wrong("There is no LSP " + std::to_string(lsp.value) + ".");
    return *record;
}

DBLink &existing(const inside::Session &session, LinkId link)
{
    DBLink *stored = inside::linkOf(*session.db, link);
    if (!stored)
        inside::wrong("There is no link " + std::to_string(link.value) + ".");
    return *stored;
}

/** The ids below `end` that are in use. */
template <class Id, class IsUsed>
std::vector<Id> idsWhere(Long end, IsUsed isUsed)
{
    std::vector<Id> ids;
    for (Long id = 0; id < end; ++id)
        if (isUsed(id))
            ids.push_back(Id{id});
    return ids;
}

} // namespace

std::size_t Engine::nbNodes() const { return static_cast<std::size_t>(live().db->nbNodes); }
std::size_t Engine::nbLinks() const { return static_cast<std::size_t>(live().db->nbLinks); }
std::size_t Engine::nbLsps() const { return live().nbLsps; }

std::vector<NodeId> Engine::nodes() const
{
    const DBNodeVec &nodes = live().db->nodeVec;
    return idsWhere<NodeId>(nodes.top, [&](Long id) { return nodes.cont[id] != nullptr; });
}

std::vector<LinkId> Engine::links() const
{
    const LongVec &starts = live().db->linkSrcVec;
    return idsWhere<LinkId>(starts.top, [&](Long id) { return starts.cont[id] != 0; });
}

std::vector<LspId> Engine::lsps() const
{
    const DBLSPVec &lsps = live().db->lspVec;
    return idsWhere<LspId>(lsps.size, [&](Long id) { return lspAt(lsps, id) != nullptr; });
}

std::optional<LinkId> Engine::linkBetween(NodeId from, NodeId to) const
{
    const DBLink *link = linkAt(live().db->linkTab, from.value, to.value);
    return link ? std::optional{LinkId{link->id}} : std::nullopt;
}

LinkUse Engine::use(LinkId link) const
{
    const State &session = live();
    const DataBase &db = *session.db;
    DBLink &stored = existing(session, link);
    LinkUse use{.id = link,
                .from = NodeId{db.linkSrcVec.cont[link.value] - 1},
                .to = NodeId{db.linkDstVec.cont[link.value] - 1}};
    std::ranges::copy(stored.state.cap, use.capacity.begin());
    for (std::size_t oa = 0; oa < static_cast<std::size_t>(session.options.classTypes); ++oa) {
        std::ranges::copy(stored.state.pbw[oa], use.primary[oa].begin());
        std::ranges::copy(stored.state.rbw[oa], use.total[oa].begin());
        Needs largest;
        presentLargest(db, tablesOf(stored.state), trustedSummary(&stored), static_cast<int>(oa),
                       largest);
        double below = 0.0;
        for (std::size_t p = 0; p < maxLevels; ++p) {
            use.shared[oa][p] = largest[p] - below;
            below = largest[p];
        }
    }
    return use;
}

std::vector<LspId> Engine::lspsOn(LinkId link) const
{
    const auto listed = inUse(existing(live(), link).lspList);
    std::vector<LspId> ids(listed.size());
    std::ranges::transform(listed, ids.begin(),
                           [](const DBLabelSwitchedPath *lsp) { return LspId{lsp->id}; });
    return ids;
}

bool Engine::has(LspId lsp) const { return lspAt(live().db->lspVec, lsp.value) != nullptr; }

Lsp Engine::lsp(LspId lsp) const
{
    const State &session = live();
    return session.lspOf(existing(session, lsp));
}

std::vector<LspId> Engine::backupsOf(LspId primary) const
{
    const State &session = live();
    static_cast<void>(existing(session, primary));
    const auto backups = session.backupsOf(primary);
    return {backups.begin(), backups.end()};
}

std::string Engine::trail() const
{
    std::string text;
    const auto messages = std::span{live().trail.list, static_cast<std::size_t>(live().trail.top)};
    for (std::size_t k = messages.size(); k-- > 0;)
        text.append(messages[k].message).append("\n");
    return text;
}

std::int64_t Engine::countedMemory()
{
    const EngineLock lock = lockEngine();
    return static_cast<std::uint32_t>(allocatedMemory);
}

} // namespace tarnex
