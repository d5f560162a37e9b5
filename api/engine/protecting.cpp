/* Backups are computed, proposed and added. */
#include "admission/admission.h"
#include "admission/placement.h"
#include "books.h"
#include "call.h"
#include "common/records.h"
#include "computation/backup/driver.h"
#include "explain.h"
#include "removal.h"
#include "session.h"

#include <algorithm>
#include <array>
#include <limits>
#include <new>

namespace tarnex
{

namespace
{

using inside::Session;
using inside::wrong;

/** The computed backups of a primary, or why there are none. */
class ComputedBackups
{
public:
    ComputedBackups()
    {
        if (lspRequestListInit(&list, -1) != 0)
            throw std::bad_alloc{};
    }
    ~ComputedBackups() { lspRequestListEnd(&list); }
    ComputedBackups(const ComputedBackups &) = delete;
    ComputedBackups &operator=(const ComputedBackups &) = delete;

    /** Computes them; std::bad_alloc. */
    std::optional<Refusal> compute(const Session &session, DBLabelSwitchedPath &primary,
                                   LspKind ofKind)
    {
        kind = ofKind;
        const bool isLocal = kind == LspKind::localBackup;
        if (lspRequestListResize(&list, 0) != 0)
            throw std::bad_alloc{};
        const Long messages = errorManager.top;
        if (computeBackup(session.db, &list, primary.id, isLocal ? LOCAL_BACKUP : GLOBAL_BACKUP) ==
            0)
            return std::nullopt;
        // That there is no path is no failure of the computation, and leaves no message.
        for (const ErrorElem &entry :
             std::span{errorManager.list + messages, errorManager.list + errorManager.top}) {
            if (entry.gravity >= CRITICAL)
                throw std::bad_alloc{};
        }
        return isLocal ? inside::whyNoLocalBackup(session, primary, lastWithout())
                       : inside::whyNoGlobalBackup(session, primary);
    }

    std::span<LSPRequest> all() const { return {list.cont, static_cast<std::size_t>(list.size)}; }

    LspKind kind = LspKind::localBackup;

private:
    /** Local backups are computed from the egress backwards, up to the one that is not found. */
    std::size_t lastWithout() const
    {
        std::size_t hop = all().size() - 1;
        while (hop > 0 && all()[hop].path.top > 0)
            --hop;
        return hop;
    }

    LSPRequestList list{};
};

DBLabelSwitchedPath &existingPrimary(const Session &session, LspId id)
{
    DBLabelSwitchedPath *primary = lspAt(session.db->lspVec, id.value);
    if (!primary)
        wrong("There is no LSP " + std::to_string(id.value) + ".");
    if (primary->type != primaryLSP)
        wrong("LSP " + std::to_string(id.value) + " is a backup.");
    return *primary;
}

/** Computes the backups of a scheme; why not, if there are none. */
std::optional<Refusal> compute(const Session &session, DBLabelSwitchedPath &primary, Scheme scheme,
                               ComputedBackups &backups)
{
    std::optional<Refusal> refused;
    if (scheme != Scheme::global)
        refused = backups.compute(session, primary, LspKind::localBackup);
    if (scheme == Scheme::global || (refused && scheme == Scheme::localOrGlobal))
        refused = backups.compute(session, primary, LspKind::globalBackup);
    return refused;
}

/** Describes computed backups, under ids that are free. */
std::vector<Lsp> describe(Session &session, const DBLabelSwitchedPath &primary,
                          const ComputedBackups &backups, LspId firstId)
{
    const Lsp protectedLsp = session.lspOf(primary);
    std::vector<Lsp> lsps;
    lsps.reserve(backups.all().size());
    std::int64_t id = session.idFor(firstId).value;
    for (const LSPRequest &request : backups.all()) {
        if (id > std::numeric_limits<std::int32_t>::max())
            wrong("There are not enough LSP ids left.");
        const auto nodes = inUse(request.path);
        lsps.push_back({.id = session.idFor(LspId{static_cast<std::int32_t>(id++)}),
                        .kind = backups.kind,
                        .classType = protectedLsp.classType,
                        .level = 0,
                        .bandwidth = protectedLsp.bandwidth,
                        .path = inside::pathOf(*session.db, nodes),
                        .protects = inside::protectsOf(*session.db, backups.kind, protectedLsp.id,
                                                       nodes, inUse(primary.path))});
    }
    session.makeRoom(id);
    session.makeRoomForBackups(protectedLsp.id, lsps.size());
    return lsps;
}

/** Adds one backup; false when it finds no room. std::bad_alloc. */
bool admit(const Session &session, const Lsp &backup, const DBLabelSwitchedPath &primary)
{
    const inside::LspRecord record = inside::recordOf(backup, inUse(primary.path));
    Scoped<LongList, longVecEnd> inTheWay;
    if (longVecInit(&inTheWay, -1) != 0)
        throw std::bad_alloc{};
    if (DBaddLSP(session.db, record.get(), &inTheWay) == 0)
        return true;
    if (proposeLSP(session.db, record.get(), &inTheWay) == 0)
        throw std::bad_alloc{}; // there is room, so what lacked was memory
    return false;
}

/** Adds backups, all or none; the position of the one that finds no room, else their number. */
std::size_t admitAll(const Session &session, std::span<const Lsp> backups,
                     const DBLabelSwitchedPath &primary)
{
    std::size_t added = 0;
    const auto takeBack = [&] {
        while (added > 0)
            static_cast<void>(DBremoveLSP(session.db, backups[--added].id.value));
    };
    try {
        while (added < backups.size() && admit(session, backups[added], primary))
            ++added;
    } catch (...) {
        takeBack();
        throw;
    }
    const std::size_t reached = added;
    if (reached < backups.size())
        takeBack();
    return reached;
}

/** What is wrong with a backup that is given; its nodes by id. */
std::vector<Long> checkedPath(const Session &session, const BackupSpec &backup,
                              std::span<const Long> primary)
{
    std::vector<Long> nodes = inside::checkedPath(session, backup.path);
    const auto start = std::ranges::find(primary, nodes.front());
    if (start >= primary.end() - 1)
        wrong("A backup starts at a node of its primary's path before the egress.");
    const auto end = std::find(start + 1, primary.end(), nodes.back());
    const bool isLocal = backup.kind == LspKind::localBackup;
    if (end == primary.end() || (!isLocal && end != primary.end() - 1))
        wrong(isLocal ? "A local backup ends at a later node of its primary's path."
                      : "A global backup ends at the egress of its primary.");
    const auto last = isLocal ? start + 1 : primary.end() - 1;
    for (auto at = start; at != last; ++at) {
        const std::array hop{*at, *(at + 1)};
        if (std::search(nodes.begin(), nodes.end(), hop.begin(), hop.end()) != nodes.end())
            wrong("A backup uses no link that it is to protect.");
    }
    return nodes;
}

} // namespace

Result<Protection> Engine::protect(LspId primary, Scheme scheme, LspId firstId)
{
    State &session = live();
    const inside::Turn turn{session};
    DBLabelSwitchedPath &record = existingPrimary(session, primary);
    static_cast<void>(session.idFor(firstId));
    ComputedBackups computed;
    if (auto refused = compute(session, record, scheme, computed))
        return std::move(*refused);
    Protection protection{describe(session, record, computed, firstId)};
    const std::size_t reached = admitAll(session, protection.backups, record);
    if (reached < protection.backups.size()) // by rounding: the search found room
        return computed.kind == LspKind::localBackup
                   ? inside::whyNoLocalBackup(session, record, reached)
                   : inside::whyNoGlobalBackup(session, record);
    for (const Lsp &backup : protection.backups)
        session.remember(backup);
    return protection;
}

std::optional<Refusal> Engine::explainProtection(LspId primary, Scheme scheme)
{
    State &session = live();
    const inside::Turn turn{session};
    ComputedBackups computed;
    return compute(session, existingPrimary(session, primary), scheme, computed);
}

Result<Lsp> Engine::add(const BackupSpec &backup)
{
    State &session = live();
    const inside::Turn turn{session};
    if (backup.kind == LspKind::primary)
        wrong("A backup is local or global.");
    const DBLabelSwitchedPath &record = existingPrimary(session, backup.primary);
    const std::vector<Long> nodes = checkedPath(session, backup, inUse(record.path));
    const Lsp primary = session.lspOf(record);
    Lsp lsp{.id = session.idFor(backup.id),
            .kind = backup.kind,
            .classType = primary.classType,
            .level = 0,
            .bandwidth = primary.bandwidth,
            .path = inside::pathOf(*session.db, nodes),
            .protects = inside::protectsOf(*session.db, backup.kind, backup.primary, nodes,
                                           inUse(record.path))};
    session.makeRoom(std::int64_t{lsp.id.value} + 1);
    session.makeRoomForBackups(backup.primary, 1);
    if (!admit(session, lsp, record))
        return inside::whyNoRoomForBackup(lsp);
    session.remember(lsp);
    return lsp;
}

} // namespace tarnex
