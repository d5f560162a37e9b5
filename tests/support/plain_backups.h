/**
 * The search of backups in its plain form: every link state is copied up front, every link priced
 * by setting the whole backup up on a copy of its state.
 */
#ifndef TARNEX_TESTS_SUPPORT_PLAIN_BACKUPS_H
#define TARNEX_TESTS_SUPPORT_PLAIN_BACKUPS_H

#include "support/plain_evaluation.h"

#include <numeric>
#include <utility>

namespace property
{

class PlainBackups
{
public:
    /** `network` has the links with their states and the primary. */
    PlainBackups(const PlainNetwork &network, Long primaryId, DBLSPType type)
        : working(network), primary(network.lsps.at(primaryId)), backup(primary)
    {
        backup.type = type;
        backup.precedence = std::min(primary.precedence + 1, MAXPL - 1);
        backup.primPath = primary.path;
        backup.noContentionId = -1;
    }

    /**
     * Finds the backups in the order of their requests, which hold `earlier` paths; whatever comes
     * before one that is not to be found stays empty.
     */
    std::vector<NodePath> find(const std::vector<NodePath> &earlier)
    {
        const bool isLocal = backup.type == localBackupLSP;
        const std::size_t hops = primary.path.size() - 1;
        std::vector<NodePath> found(isLocal ? hops : 1);
        for (std::size_t i = found.size(); i-- > 0;) {
            found[i] = isLocal ? around(i, i + 1) : around(0, hops);
            if (found[i].empty())
                break;
            if (i < earlier.size())
                reserve(earlier[i], -1.0);
            reserve(found[i], 1.0);
        }
        return found;
    }

    /** Cost of the last hop of a backup; below 0 without room. */
    double price(const NodePath &path) const
    {
        const PlainState &now = working.links.at(lastHop(path)).state;
        PlainState then = now;
        if (!evaluate(then, lastHop(path), path, 1.0))
            return -1.0;
        double after = 0.0, before = 0.0;
        for (int oa = 0; oa < MAXOA; ++oa) {
            if (total(then.rbw[oa]) > then.cap[oa])
                return -1.0;
            after += total(then.rbw[oa]);
            before += total(now.rbw[oa]);
        }
        const auto &prim = primary.primPath;
        const auto rest = prim.end() - std::ranges::find(prim, path.back());
        const double extra = std::max(0.0, after - before);
        return 10.0 / 11.0 * extra + 1.0 / 11.0 * static_cast<double>(rest + 1) * total(primary.bw);
    }

private:
    static double total(const auto &values)
    {
        return std::accumulate(std::begin(values), std::end(values), 0.0);
    }

    static Hop lastHop(const NodePath &path) { return {path[path.size() - 2], path.back()}; }

    /** Node-disjoint from the hops `from` to `to` - 1 of the primary, or else link-disjoint. */
    NodePath around(std::size_t from, std::size_t to) const
    {
        const NodePath &path = primary.path;
        const bool isLocal = backup.type == localBackupLSP;
        const std::set<Long> targets(path.begin() + std::ptrdiff_t(to), path.end());
        std::set<Long> avoided(path.begin() + std::ptrdiff_t(from) + 1,
                               path.begin() + std::ptrdiff_t(to));
        if (isLocal)
            avoided.insert(path[to]);
        std::set<Hop> hops;
        for (std::size_t i = from; i < to; ++i)
            hops.emplace(path[i], path[i + 1]);
        const NodePath disjoint = search(path[from], targets, [&](Hop hop) {
            return !avoided.contains(hop.second) && hop != Hop{path[to - 1], path[to]};
        });
        return disjoint.empty()
                   ? search(path[from], targets, [&](Hop hop) { return !hops.contains(hop); })
                   : disjoint;
    }

    /** Dijkstra's algorithm; of equal costs what was found last goes first. */
    NodePath search(Long start, const std::set<Long> &targets, auto isAllowed) const
    {
        struct Label {
            double cost = -1.0;
            NodePath path{};
            bool isSettled = false;
        };
        std::map<Long, Label> labels{{start, {0.0, {start}}}};
        std::map<std::pair<double, int>, Long> frontier{{{0.0, 0}, start}};
        for (int order = -1; !frontier.empty();) {
            const Long node = frontier.extract(frontier.begin()).mapped();
            if (std::exchange(labels[node].isSettled, true))
                continue;
            const Label label = labels[node];
            if (targets.contains(node))
                return label.path;
            const auto first = working.links.lower_bound({node, -1});
            for (auto at = first; at != working.links.end() && at->first.first == node; ++at) {
                Label &next = labels[at->first.second];
                if (next.isSettled || !isAllowed(at->first))
                    continue;
                NodePath longer = label.path;
                longer.push_back(at->first.second);
                const double step = price(longer);
                const double cost = label.cost + step;
                if (step < 0.0 || (next.cost != -1.0 && (cost <= 0.0 || cost >= next.cost)))
                    continue;
                next = {cost, longer};
                frontier[{cost, order--}] = at->first.second;
            }
        }
        return {};
    }

    bool evaluate(PlainState &state, Hop hop, const NodePath &path, double mult) const
    {
        PlannedLsp lsp = backup;
        lsp.path = path;
        if (!working.change(state, hop, lsp, mult))
            return false;
        PlainNetwork::reserve(state, failures);
        return true;
    }

    void reserve(const NodePath &path, double mult)
    {
        for (std::size_t i = 1; i < path.size(); ++i)
            evaluate(working.links.at({path[i - 1], path[i]}).state, {path[i - 1], path[i]}, path,
                     mult);
    }

    PlainNetwork working;
    PlainNetwork::Failures failures = working.failures();
    PlannedLsp primary, backup;
};

} // namespace property

#endif
