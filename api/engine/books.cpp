#include "books.h"

#include <algorithm>
#include <new>

namespace tarnex::inside
{

namespace
{

LspKind kindOf(DBLSPType type)
{
    return type == primaryLSP       ? LspKind::primary
           : type == localBackupLSP ? LspKind::localBackup
                                    : LspKind::globalBackup;
}

DBLSPType typeOf(LspKind kind)
{
    return kind == LspKind::primary       ? primaryLSP
           : kind == LspKind::localBackup ? localBackupLSP
                                          : globalBackupLSP;
}

LinkId linkBetween(const DataBase &db, Long from, Long to)
{
    return LinkId{linkAt(db.linkTab, from, to)->id};
}

bool copy(std::span<const Long> nodes, LongList &list)
{
    const auto length = static_cast<Long>(nodes.size());
    if (longVecResize(&list, length) != 0)
        return false;
    std::ranges::copy(nodes, list.cont);
    list.top = length;
    return true;
}

} // namespace

DBLink *linkOf(const DataBase &db, LinkId id)
{
    if (!id.isValid() || id.value >= db.linkSrcVec.top)
        return nullptr;
    return linkAt(db.linkTab, db.linkSrcVec.cont[id.value] - 1, db.linkDstVec.cont[id.value] - 1);
}

Path pathOf(const DataBase &db, std::span<const Long> nodes)
{
    Path path;
    path.nodes.reserve(nodes.size());
    path.links.reserve(nodes.size() - 1);
    for (const Long node : nodes)
        path.nodes.emplace_back(node);
    for (std::size_t k = 1; k < nodes.size(); ++k)
        path.links.push_back(linkBetween(db, nodes[k - 1], nodes[k]));
    return path;
}

std::vector<Long> idsOf(std::span<const NodeId> nodes)
{
    std::vector<Long> ids(nodes.size());
    std::ranges::transform(nodes, ids.begin(), &NodeId::value);
    return ids;
}

Protects protectsOf(const DataBase &db, LspKind kind, LspId id, std::span<const Long> nodes,
                    std::span<const Long> primary)
{
    Protects result{.primary = id, .links = {}, .nodes = {}};
    const auto start = std::ranges::find(primary, nodes.front()) - primary.begin();
    auto rest = primary.subspan(static_cast<std::size_t>(start));
    if (kind == LspKind::localBackup)
        rest = rest.first(2);
    for (std::size_t k = 1; k < rest.size(); ++k) {
        result.links.push_back(linkBetween(db, rest[k - 1], rest[k]));
        const bool isAvoided = std::ranges::find(nodes, rest[k]) == nodes.end();
        if (isAvoided && rest[k] != primary.back())
            result.nodes.emplace_back(rest[k]);
    }
    return result;
}

Lsp lspOf(const DataBase &db, const DBLabelSwitchedPath &record, int classType)
{
    Lsp lsp{.id = LspId{record.id},
            .kind = kindOf(record.type),
            .classType = classType,
            .level = record.precedence,
            .bandwidth = record.bw[classType],
            .path = pathOf(db, inUse(record.path)),
            .protects = {}};
    if (lsp.isBackup())
        lsp.protects = protectsOf(db, lsp.kind, LspId{record.primID}, inUse(record.path),
                                  inUse(record.primPath));
    return lsp;
}

LspRecord recordOf(const Lsp &lsp, std::span<const Long> primary)
{
    LspRecord record{DBlspNew()};
    if (!record || !copy(idsOf(lsp.path.nodes), record->path) ||
        (lsp.isBackup() && !copy(primary, record->primPath)))
        throw std::bad_alloc{};
    record->id = lsp.id.value;
    record->precedence = lsp.level;
    record->bw[lsp.classType] = lsp.bandwidth;
    record->type = typeOf(lsp.kind);
    record->primID = lsp.protects.primary.value;
    return record;
}

} // namespace tarnex::inside
