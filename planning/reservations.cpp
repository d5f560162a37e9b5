#include "planning/reservations.h"

#include "planning/largest_needs.h"
#include "planning/link_finder.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <utility>
#include <variant>

namespace tarnex::planning
{

namespace
{

using Levels = std::vector<double>;
using Links = std::vector<LinkId>;

bool contains(const Links &links, LinkId link)
{
    return std::ranges::find(links, link) != links.end();
}

/** A backup with the links that matter to it. */
struct BackupWay {
    Links path;
    Links activating; ///< those of its primary whose failure it is for
    Links bypassed;   ///< those of its primary between its ends
};

/** An LSP with its links. */
struct Way {
    const Demand *demand = nullptr;
    Links path;
    std::vector<BackupWay> backups;
};

/** A way that concerns a link: as a primary's path, or through one of its backups. */
struct Concern {
    const Way *way = nullptr;
    const BackupWay *backup = nullptr; ///< none: the primary's own path
};

/** What the failure of each link does to one link: `[failing link][level]`. */
struct FailureTable {
    std::vector<Levels> needed;
    std::vector<Levels> freed;
};

BackupWay backupWay(const PlannedBackup &backup, const PlannedLsp &lsp, const Links &links,
                    const LinkFinder &finder)
{
    const auto at = [&lsp](NodeId node) {
        return std::ranges::find(lsp.path, node) - lsp.path.begin();
    };
    const auto from = links.begin() + at(backup.path.front());
    const auto to = links.begin() + at(backup.path.back());
    BackupWay way;
    way.path = finder.along(backup.path).value();
    way.bypassed = Links(from, to);
    way.activating = backup.kind == LspKind::localBackup ? Links{*from} : way.bypassed;
    return way;
}

std::vector<Way> waysOf(const Plan &plan)
{
    const LinkFinder finder{plan.network};
    std::vector<Way> ways;
    for (std::size_t i = 0; i < plan.demands.size(); ++i) {
        const auto *lsp = std::get_if<PlannedLsp>(&plan.outcomes[i]);
        if (!lsp)
            continue;
        Way &way = ways.emplace_back();
        way.demand = &plan.demands[i];
        way.path = finder.along(lsp->path).value();
        for (const PlannedBackup &backup : lsp->backups)
            way.backups.push_back(backupWay(backup, *lsp, way.path, finder));
    }
    return ways;
}

/** What concerns each link, in the order of the demands. */
std::vector<std::vector<Concern>> concernsOf(const std::vector<Way> &ways, std::size_t nbLinks)
{
    std::vector<std::vector<Concern>> concerns(nbLinks);
    for (const Way &way : ways) {
        for (const LinkId link : way.path)
            concerns[link.index()].push_back({&way, nullptr});
        for (const BackupWay &backup : way.backups) {
            for (const LinkId link : backup.path)
                concerns[link.index()].push_back({&way, &backup});
            for (const LinkId link : way.path) {
                if (!contains(backup.path, link))
                    concerns[link.index()].push_back({&way, &backup});
            }
        }
    }
    return concerns;
}

/** Enters what concerns a link in one class type. */
void enter(FailureTable &table, LinkId link, const std::vector<Concern> &concerns, int classType)
{
    for (const auto &[way, backup] : concerns) {
        if (way->demand->classType != classType)
            continue;
        const double bandwidth = way->demand->bandwidth;
        if (!backup) {
            for (const LinkId failing : way->path)
                table.freed[failing.index()][static_cast<std::size_t>(way->demand->level)] +=
                    bandwidth;
            continue;
        }
        if (contains(backup->path, link)) {
            for (const LinkId failing : backup->activating)
                table.needed[failing.index()][0] += bandwidth;
        }
        // Before and after what a local backup bypasses, the primary's traffic stays.
        if (contains(way->path, link) && !contains(backup->bypassed, link)) {
            for (const LinkId failing : backup->activating)
                table.freed[failing.index()][0] -= bandwidth;
        }
    }
}

/** What fails together: each link, and all links into each node. */
std::vector<Links> failuresOf(const Network &network)
{
    std::vector<Links> intoNode(network.nodes.size());
    std::vector<Links> failures;
    for (std::size_t i = 0; i < network.links.size(); ++i) {
        const LinkId link{static_cast<std::int32_t>(i)};
        failures.push_back({link});
        intoNode[network.links[i].to.index()].push_back(link);
    }
    std::ranges::move(intoNode, std::back_inserter(failures));
    return failures;
}

} // namespace

std::vector<Reservation> reservationsOf(const Plan &plan)
{
    const std::size_t nbClasses = plan.network.classes.size();
    const std::size_t nbLevels = plan.network.levels.size();
    const std::size_t nbLinks = plan.network.links.size();
    const std::vector<Way> ways = waysOf(plan);
    const auto concerns = concernsOf(ways, nbLinks);
    const std::vector<Links> failures = failuresOf(plan.network);
    const std::vector<Levels> zeros(nbLinks, Levels(nbLevels));
    std::vector<Reservation> reservations(nbLinks);
    FailureTable table;
    for (std::size_t i = 0; i < nbLinks; ++i) {
        auto &[use, handled] = reservations[i];
        use.primary.assign(nbClasses, Levels(nbLevels));
        handled.assign(nbClasses, 0.0);
        std::vector<bool> hasBackups(nbClasses);
        for (const auto &[way, backup] : concerns[i]) {
            const auto c = static_cast<std::size_t>(way->demand->classType);
            handled[c] += way->demand->bandwidth;
            if (backup)
                hasBackups[c] = true;
            else
                use.primary[c][static_cast<std::size_t>(way->demand->level)] +=
                    way->demand->bandwidth;
        }
        use.total = use.primary;
        for (std::size_t c = 0; c < nbClasses; ++c) {
            if (!hasBackups[c])
                continue; // what primaries leave is never needed
            table.needed = zeros;
            table.freed = zeros;
            enter(table, LinkId{static_cast<std::int32_t>(i)}, concerns[i], static_cast<int>(c));
            const auto in = [](const std::vector<Levels> &levels) {
                return [&levels](LinkId failing, std::size_t level) {
                    return levels[failing.index()][level];
                };
            };
            const Levels largest =
                largestNeeds(failures, nbLevels, in(table.needed), in(table.freed));
            for (std::size_t p = 0; p < nbLevels; ++p)
                use.total[c][p] += largest[p] - (p > 0 ? largest[p - 1] : 0.0);
        }
    }
    return reservations;
}

std::vector<PlannedUse> usesOf(const Plan &plan)
{
    if (plan.use.size() == plan.network.links.size())
        return plan.use;
    std::vector<PlannedUse> uses;
    for (Reservation &link : reservationsOf(plan))
        uses.push_back(std::move(link.use));
    return uses;
}

} // namespace tarnex::planning
