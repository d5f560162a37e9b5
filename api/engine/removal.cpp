#include "removal.h"

#include "admission/admission.h"
#include "books.h"
#include "common/records.h"
#include "database/books/lookup.h"

#include <algorithm>
#include <new>

namespace tarnex
{

namespace inside
{

namespace
{

bool isStored(const Session &session, const Lsp &lsp)
{
    return lspAt(session.db->lspVec, lsp.id.value) != nullptr;
}

/** Those of the LSPs that are not stored are lost. */
void forgetMissing(Session &session, std::span<const Lsp> lsps)
{
    for (const Lsp &lsp : lsps) {
        if (!isStored(session, lsp))
            session.forget(lsp);
    }
}

} // namespace

std::vector<Lsp> withBackups(const Session &session, std::span<const Long> ids)
{
    std::vector<Lsp> lsps;
    lsps.reserve(ids.size());
    for (const Long id : ids) {
        const DBLabelSwitchedPath &record = *lspAt(session.db->lspVec, id);
        if (isBackup(record.type) && std::ranges::binary_search(ids, record.primID))
            continue;
        lsps.push_back(session.lspOf(record));
        for (const LspId backup : session.backupsOf(LspId{id}))
            lsps.push_back(session.lspOf(*lspAt(session.db->lspVec, backup.value)));
    }
    return lsps;
}

void restore(Session &session, std::span<const Lsp> lsps)
{
    const bool testsCapacity = tarnexConfig.predicateConfig.capacityClause;
    tarnexConfig.predicateConfig.capacityClause = false;
    for (const Lsp &lsp : lsps) {
        if (isStored(session, lsp))
            continue;
        const DBLabelSwitchedPath *primary = lspAt(session.db->lspVec, lsp.protects.primary.value);
        const LspRecord record =
            recordOf(lsp, primary ? inUse(primary->path) : std::span<const Long>{});
        Scoped<LongList, longVecEnd> preempted;
        if (longVecInit(&preempted, -1) == 0 && DBaddLSP(session.db, record.get(), &preempted) == 0)
            continue;
        forgetMissing(session, lsps);
        throw std::bad_alloc{};
    }
    tarnexConfig.predicateConfig.capacityClause = testsCapacity;
}

void removeAll(Session &session, std::span<const Lsp> lsps)
{
    // Backups first: each stands behind its primary.
    for (std::size_t k = lsps.size(); k-- > 0;) {
        if (DBremoveLSP(session.db, lsps[k].id.value) == 0)
            continue;
        restore(session, lsps.subspan(k));
        throw std::bad_alloc{};
    }
    for (const Lsp &lsp : lsps)
        session.forget(lsp);
}

} // namespace inside

void Engine::remove(LspId lsp)
{
    State &session = live();
    const inside::Turn turn{session};
    if (!has(lsp))
        inside::wrong("There is no LSP " + std::to_string(lsp.value) + ".");
    const Long id = lsp.value;
    inside::removeAll(session, inside::withBackups(session, {&id, 1}));
}

} // namespace tarnex
