/* Backups are computed, proposed and added. */
#include "admission/admission.h"
#include "admission/placement.h"
#include "bisection.h"
#include "books.h"
#include "call.h"
#include "common/records.h"
#include "computation/backup/driver.h"
#include "refused_backup.h"
#include "removal.h"
#include "sentences.h"
#include "session.h"

#include <algorithm>
#include <array>
#include <limits>
#include <new>

namespace tarnex
{

namespace
{

using inside::RefusedBackup;
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

    /** Computes them for a stored primary with the bandwidths that they are to have; the one that
     * there is no path for. std::bad_alloc. */
    std::optional<RefusedBackup> compute(const Session &session, DBLabelSwitchedPath &primary,
                                         LspKind ofKind)
    {
        kind = ofKind;
        const bool isLocal = kind == LspKind::localBackup;
        if (lspRequestListResize(&list, 0) != 0)
            throw std::bad_alloc{};
        const Long messages = errorManager.top;
        if (computeBackupOf(*session.db, list, primary, isLocal ? LOCAL_BACKUP : GLOBAL_BACKUP) ==
            0)
            return std::nullopt;
        // That there is no path is no failure of the computation, and leaves no message.
        for (const ErrorElem &entry :
             std::span{errorManager.list + messages, errorManager.list + errorManager.top}) {
            if (entry.gravity >= CRITICAL)
                throw std::bad_alloc{};
        }
        return RefusedBackup{&primary, kind, isLocal ? lastWithout() : 0};
    }

    std::span<LSPRequest> all() const { return {list.cont, static_cast<std::size_t>(list.size)}; }

    LspKind kind = LspKind::localBackup;

private:
    /** Local backups are computed from the egress backwards, up to the one that is not found. */
    std::size_t lastWithout() const
    {
        std::size_t hop = all().size();
        while (hop > 1 && all()[hop - 1].path.top > 0)
            --hop;
        return hop > 0 ? hop - 1 : 0;
    }

    LSPRequestList list{};
};

/** The primary that is to be protected, WrongUse when it cannot be. */
DBLabelSwitchedPath &existingPrimary(const Session &session, LspId id)
{
    if (!session.options.allowsBackups)
        wrong("This engine allows no backups.");
    DBLabelSwitchedPath *primary = lspAt(session.db->lspVec, id.value);
    if (!primary)
        wrong("There is no LSP " + std::to_string(id.value) + ".");
    if (primary->type != primaryLSP)
        wrong("LSP " + std::to_string(id.value) + " is a backup.");
    return *primary;
}

/** Computes the backups of a scheme; the one in the way, if there are none. */
std::optional<RefusedBackup> compute(const Session &session, DBLabelSwitchedPath &primary,
                                     Scheme scheme, ComputedBackups &backups)
{
    std::optional<RefusedBackup> refused;
    if (scheme != Scheme::global)
        refused = backups.compute(session, primary, LspKind::localBackup);
    if (scheme == Scheme::global || (refused && scheme == Scheme::localOrGlobal))
        return backups.compute(session, primary, LspKind::globalBackup);
    return refused;
}

/** A stored primary with the bandwidth that its backups are to have; shares the record's lists. */
DBLabelSwitchedPath withBandwidth(const Session &session, const DBLabelSwitchedPath &record,
                                  double bandwidth)
{
    DBLabelSwitchedPath part = record;
    part.bw[session.lspOf(record).classType] = bandwidth;
    return part;
}

/** A computed backup in full. */
Lsp describe(const Session &session, const DBLabelSwitchedPath &primary, const LSPRequest &backup,
             LspKind kind, LspId id)
{
    const Lsp protectedLsp = session.lspOf(primary);
    const auto nodes = inUse(backup.path);
    return {.id = id,
            .kind = kind,
            .classType = protectedLsp.classType,
            .level = 0,
            .bandwidth = protectedLsp.bandwidth,
            .path = inside::pathOf(*session.db, nodes),
            .protects =
                inside::protectsOf(*session.db, kind, protectedLsp.id, nodes, inUse(primary.path))};
}

/** Describes computed backups, under ids that are free. */
std::vector<Lsp> describe(Session &session, const DBLabelSwitchedPath &primary,
                          const ComputedBackups &backups, LspId firstId)
{
    std::vector<Lsp> lsps;
    lsps.reserve(backups.all().size());
    std::int64_t id = session.idFor(firstId).value;
    for (const LSPRequest &request : backups.all()) {
        if (id > std::numeric_limits<std::int32_t>::max())
            wrong("There are not enough LSP ids left.");
        lsps.push_back(describe(session, primary, request, backups.kind,
                                session.idFor(LspId{static_cast<std::int32_t>(id++)})));
    }
    session.makeRoom(id);
    session.makeRoomForBackups(LspId{primary.id}, lsps.size());
    return lsps;
}

/** Whether a backup would find room; std::bad_alloc. */
bool hasRoom(const Session &session, const inside::LspRecord &record)
{
    Scoped<LongList, longVecEnd> inTheWay;
    if (longVecInit(&inTheWay, -1) != 0)
        throw std::bad_alloc{};
    return proposeLSP(session.db, record.get(), &inTheWay) == 0;
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
    if (hasRoom(session, record))
        throw std::bad_alloc{}; // there is room, so what lacked was memory
    return false;
}

/** As compute, for backups that each have room when they are added, too: sums in another order
 * round differently. */
std::optional<RefusedBackup> attempt(const Session &session, DBLabelSwitchedPath &primary,
                                     Scheme scheme)
{
    ComputedBackups computed;
    if (auto refused = compute(session, primary, scheme, computed))
        return refused;
    for (std::size_t k = 0; k < computed.all().size(); ++k) {
        const Lsp backup = describe(session, primary, computed.all()[k], computed.kind, LspId{0});
        if (!hasRoom(session, inside::recordOf(backup, inUse(primary.path))))
            return RefusedBackup{&primary, computed.kind, k};
    }
    return std::nullopt;
}

/** The largest bandwidth below a primary's own with which it gets all backups of a scheme; nothing
 * without one above 0. */
std::optional<double> largestProtected(const Session &session, const DBLabelSwitchedPath &record,
                                       Scheme scheme)
{
    const Long messages = errorManager.top;
    const double own = session.lspOf(record).bandwidth;
    const double largest = inside::lastHolding(0.0, own, own / 2, [&](double bandwidth) {
        DBLabelSwitchedPath part = withBandwidth(session, record, bandwidth);
        const bool isFound = !attempt(session, part, scheme);
        errorManager.top = messages;
        return isFound;
    });
    return largest > 0.0 ? std::optional{largest} : std::nullopt;
}

/** Why a backup is refused, without figures. */
Refusal inBrief(const Session &session, const RefusedBackup &backup)
{
    Refusal why = inside::whyNoBackup(session, backup);
    why.sentence += '.';
    return why;
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

Result<Protection> Engine::protect(LspId primary, Scheme scheme, LspId firstId,
                                   std::optional<double> bandwidth)
{
    State &session = live();
    const inside::Turn turn{session};
    const DBLabelSwitchedPath &record = existingPrimary(session, primary);
    const double own = session.lspOf(record).bandwidth;
    if (bandwidth && !(*bandwidth >= 0.0 && *bandwidth <= own))
        wrong("The bandwidth to protect is that of the LSP, " + inside::textOf(own) + ", or less.");
    static_cast<void>(session.idFor(firstId));
    DBLabelSwitchedPath part = withBandwidth(session, record, bandwidth.value_or(own));
    ComputedBackups computed;
    if (const auto refused = compute(session, part, scheme, computed))
        return inBrief(session, *refused);
    Protection protection{describe(session, part, computed, firstId)};
    const std::size_t reached = admitAll(session, protection.backups, record);
    if (reached < protection.backups.size()) // by rounding: the search found room
        return inBrief(session, RefusedBackup{&part, computed.kind, reached});
    for (const Lsp &backup : protection.backups)
        session.remember(backup);
    return protection;
}

std::optional<Refusal> Engine::explainProtection(LspId primary, Scheme scheme)
{
    State &session = live();
    const inside::Turn turn{session};
    DBLabelSwitchedPath &record = existingPrimary(session, primary);
    const auto refused = attempt(session, record, scheme);
    if (!refused)
        return std::nullopt;
    Refusal why = inside::whyNoBackup(session, *refused);
    if (why.reason == Reason::noDisjointPath) {
        why.sentence += '.';
        return why;
    }
    why.inTheWay = inside::linksInTheWay(session, *refused);
    const auto largest = largestProtected(session, record, scheme);
    why.largestBandwidth = largest.value_or(0.0);
    why.sentence += inside::whatFits(largest);
    return why;
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
        return inside::refusal(Reason::noRoomForDisjointPath,
                               "The path " + inside::fromTo(nodes.front(), nodes.back()) +
                                   " has no room for a backup of LSP " +
                                   std::to_string(backup.primary.value) + ".");
    session.remember(lsp);
    return lsp;
}

} // namespace tarnex
