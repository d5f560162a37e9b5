#include "refused_backup.h"

#include "bisection.h"
#include "common/records.h"
#include "computation/backup/backup_type.h"
#include "computation/backup/cost.h"
#include "database/reservations/question.h"
#include "sentences.h"

#include <algorithm>
#include <array>
#include <vector>

namespace tarnex::inside
{

namespace
{

/** The walks from where a backup starts, over links that it may use. */
class BackupWalk
{
public:
    BackupWalk(const Session &session, const RefusedBackup &refused)
        : db(*session.db), backup(refused), start(refused.stretch().front())
    {
        std::ranges::copy(refused.primary->bw, bandwidths.begin());
        bandwidth =
            &bandwidths[static_cast<std::size_t>(session.lspOf(*refused.primary).classType)];
    }

    BackupWalk(const BackupWalk &) = delete; // points into itself
    BackupWalk &operator=(const BackupWalk &) = delete;

    /** Whether a target is reached. */
    bool connects()
    {
        return run([](Long, Long) { return true; });
    }
    /** Whether one is reached over links with room. */
    bool hasRoom()
    {
        return run([this](Long from, Long to) { return takes(from, to); });
    }
    /** Links from nodes that the last walk has reached to others, by id. */
    std::vector<LinkInTheWay> boundary()
    {
        std::vector<LinkInTheWay> links;
        for (Long from = 0; from < db.nodeVec.top; ++from) {
            if (!isReached[static_cast<std::size_t>(from)])
                continue;
            for (const Long to : inUse(nodeAt(db.nodeVec, from)->outNeighb)) {
                if (!isReached[static_cast<std::size_t>(to)] && !isProtected(from, to))
                    links.push_back({LinkId{linkAt(db.linkTab, from, to)->id}, room(from, to)});
            }
        }
        std::ranges::sort(links, {}, &LinkInTheWay::link);
        return links;
    }

private:
    template <class Uses>
    bool run(Uses uses)
    {
        const auto targets = backup.targets();
        isReached.assign(static_cast<std::size_t>(db.nodeVec.top), false);
        isReached[static_cast<std::size_t>(start)] = true;
        std::vector<Long> queue{start};
        for (std::size_t i = 0; i < queue.size(); ++i) {
            const Long from = queue[i];
            if (std::ranges::find(targets, from) != targets.end())
                return true;
            for (const Long to : inUse(nodeAt(db.nodeVec, from)->outNeighb)) {
                if (isReached[static_cast<std::size_t>(to)] || isProtected(from, to) ||
                    !uses(from, to))
                    continue;
                isReached[static_cast<std::size_t>(to)] = true;
                queue.push_back(to);
            }
        }
        return false;
    }

    /** Whether the link is one of those whose failure the backup is for. */
    bool isProtected(Long from, Long to) const
    {
        const auto stretch = backup.stretch();
        const std::array hop{from, to};
        return std::search(stretch.begin(), stretch.end(), hop.begin(), hop.end()) != stretch.end();
    }

    /** Whether a link has room for the backup. */
    bool takes(Long from, Long to) const
    {
        const DBLink &link = *linkAt(db.linkTab, from, to);
        const bool isLocal = backup.kind == LspKind::localBackup;
        const ReducedPath path{start, from, to};
        const Candidate candidate{{.path = path.path(),
                                   .primPath = {},
                                   .bw = bandwidths.data(),
                                   .precedence = backupPrecedence(*backup.primary),
                                   .type = isLocal ? localBackupLSP : globalBackupLSP,
                                   .noContentionId = -1},
                                  backup.primary->id};
        double reserved[MAXOA][MAXPL];
        if (reservationAfterSetup(&db, from, to, &link.state, candidate, reserved) != 0)
            return false;
        for (int oa = 0; oa < MAXOA; ++oa) {
            if (sumOf(reserved[oa]) > link.state.cap[oa])
                return false;
        }
        return true;
    }

    /** The largest bandwidth that a link without room takes. */
    double room(Long from, Long to)
    {
        const double wanted = *bandwidth;
        const double largest = lastHolding(0.0, wanted, wanted / 2, [&](double less) {
            *bandwidth = less;
            return takes(from, to);
        });
        *bandwidth = wanted;
        return largest;
    }

    const DataBase &db;
    const RefusedBackup &backup;
    Long start;
    std::array<double, MAXOA> bandwidths{};
    double *bandwidth; ///< the one of them that varies
    std::vector<bool> isReached;
};

} // namespace

std::span<const Long> RefusedBackup::stretch() const
{
    const auto path = inUse(primary->path);
    return kind == LspKind::localBackup ? path.subspan(hop, 2) : path;
}

std::span<const Long> RefusedBackup::targets() const
{
    const auto path = inUse(primary->path);
    return kind == LspKind::localBackup ? path.subspan(hop + 1) : path.last(1);
}

Refusal whyNoBackup(const Session &session, const RefusedBackup &backup)
{
    const auto stretch = backup.stretch();
    const std::string ends = fromTo(stretch.front(), stretch.back());
    const std::string lsp = "LSP " + std::to_string(backup.primary->id);
    const bool isLocal = backup.kind == LspKind::localBackup;
    if (BackupWalk{session, backup}.connects())
        return refusal(Reason::noRoomForDisjointPath,
                       (isLocal ? "No path around the link " + ends + " of " + lsp
                                : "No path " + ends + " beside " + lsp) +
                           " has room for a backup");
    return refusal(Reason::noDisjointPath,
                   isLocal ? "No path leads around the link " + ends + " of " + lsp
                           : "No path leads " + ends + " beside " + lsp);
}

std::vector<LinkInTheWay> linksInTheWay(const Session &session, const RefusedBackup &backup)
{
    BackupWalk walk{session, backup};
    if (walk.hasRoom()) // for each link alone, but not for the backups of all links together
        return {};
    return walk.boundary();
}

} // namespace tarnex::inside
