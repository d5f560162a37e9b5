#include "planning/verify_backups.h"

#include "planning/names.h"

#include <algorithm>
#include <cstddef>

#include <fmt/format.h>

namespace tarnex::planning
{

namespace
{

using Nodes = std::vector<NodeId>;
using Links = std::vector<LinkId>;

bool contains(const auto &ids, auto id) { return std::ranges::find(ids, id) != ids.end(); }

std::ptrdiff_t positionOn(const Nodes &path, NodeId node)
{
    return std::ranges::find(path, node) - path.begin();
}

/** One backup and its primary, both with sound paths. */
struct Case {
    const Network &network;
    const PlannedLsp &lsp;
    Links primaryLinks;
    const PlannedBackup &backup;
    Links backupLinks;

    bool isLocal() const { return backup.kind == LspKind::localBackup; }
    std::ptrdiff_t start() const { return positionOn(lsp.path, backup.path.front()); }
    std::ptrdiff_t end() const { return positionOn(lsp.path, backup.path.back()); }
};

std::optional<Deviation> endsFault(const Case &c)
{
    const auto last = static_cast<std::ptrdiff_t>(c.lsp.path.size()) - 1;
    const bool isRight =
        c.isLocal() ? c.start() < c.end() && c.end() <= last : c.start() == 0 && c.end() == last;
    if (isRight)
        return std::nullopt;
    return Deviation{Fault::backupEnds,
                     fmt::format("leads from {} to {}, which does not bypass {}",
                                 c.network.nameOf(c.backup.path.front()),
                                 c.network.nameOf(c.backup.path.back()),
                                 c.isLocal() ? "a link of the path" : "the whole path")};
}

/** The links that a backup with sound ends is for. */
Links linksFor(const Case &c)
{
    const auto first = c.primaryLinks.begin() + c.start();
    return c.isLocal() ? Links{*first} : c.primaryLinks;
}

/** The nodes that could fail within what a backup is for and that it keeps clear of. */
Nodes nodesFor(const Case &c)
{
    const auto first = c.lsp.path.begin() + c.start() + 1;
    const auto end = c.lsp.path.end() - 1;
    Nodes nodes(first, c.isLocal() ? std::min(first + 1, end) : end);
    std::erase_if(nodes, [&c](NodeId node) { return contains(c.backup.path, node); });
    return nodes;
}

std::vector<Deviation> protectionFaults(const Case &c)
{
    std::vector<Deviation> faults;
    const Links links = linksFor(c);
    for (const LinkId link : links) {
        if (contains(c.backupLinks, link))
            faults.push_back({Fault::backupOverlap,
                              fmt::format("uses {}, against whose failure it is to protect",
                                          nameOf(c.network, link))});
    }
    for (const NodeId node : c.backup.protectedNodes) {
        if (contains(c.backup.path, node))
            faults.push_back({Fault::backupOverlap,
                              fmt::format("passes {}, against whose failure it claims to protect",
                                          nameOf(c.network, Nodes{node}))});
    }
    if (c.backup.protectedLinks != links)
        faults.push_back({Fault::claim, "does not claim the links that it protects"});
    if (faults.empty() && c.backup.protectedNodes != nodesFor(c))
        faults.push_back({Fault::claim, "does not claim the nodes that it protects"});
    return faults;
}

/** Whether backups are none, one local one for each link, or a global one. */
bool areWhole(const PlannedLsp &lsp)
{
    if (lsp.backups.empty())
        return true;
    const auto isAll = [&lsp](LspKind kind, std::size_t number) {
        return lsp.backups.size() == number &&
               std::ranges::all_of(lsp.backups,
                                   [kind](const PlannedBackup &b) { return b.kind == kind; });
    };
    return isAll(LspKind::localBackup, lsp.path.size() - 1) || isAll(LspKind::globalBackup, 1);
}

} // namespace

std::optional<Deviation> pathFault(const Network &network, const LinkFinder &finder,
                                   const std::vector<NodeId> &path)
{
    if (path.size() < 2)
        return Deviation{Fault::path, "has a path without a link"};
    const auto links = finder.along(path);
    if (!links)
        return Deviation{Fault::path,
                         fmt::format("takes {}, which is no path", nameOf(network, path))};
    for (auto node = path.begin(); node != path.end(); ++node) {
        if (std::find(path.begin(), node, *node) != node)
            return Deviation{Fault::loop,
                             fmt::format("takes {}, which passes {} twice", nameOf(network, path),
                                         network.nameOf(*node))};
    }
    return std::nullopt;
}

std::vector<Deviation> backupFaults(const Network &network, const LinkFinder &finder,
                                    const PlannedLsp &lsp)
{
    std::vector<Deviation> faults;
    if (!areWhole(lsp))
        faults.push_back(
            {Fault::backupKind, "has neither a backup for each link nor a single one for all"});
    Nodes starts;
    for (std::size_t i = 0; i < lsp.backups.size(); ++i) {
        const PlannedBackup &backup = lsp.backups[i];
        const auto add = [&](Deviation fault) {
            fault.sentence = fmt::format("backup {} {}", i, fault.sentence);
            faults.push_back(std::move(fault));
        };
        if (backup.kind == LspKind::primary) {
            add({Fault::backupKind, "is a primary"});
            continue;
        }
        if (auto fault = pathFault(network, finder, backup.path)) {
            add(*std::move(fault));
            continue;
        }
        const Case c{.network = network,
                     .lsp = lsp,
                     .primaryLinks = finder.along(lsp.path).value(),
                     .backup = backup,
                     .backupLinks = finder.along(backup.path).value()};
        if (auto fault = endsFault(c)) {
            add(*std::move(fault));
            continue;
        }
        for (Deviation &fault : protectionFaults(c))
            add(std::move(fault));
        if (contains(starts, backup.path.front()))
            add({Fault::backupKind, "protects what another one does"});
        starts.push_back(backup.path.front());
    }
    return faults;
}

} // namespace tarnex::planning
