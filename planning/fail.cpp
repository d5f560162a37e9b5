#include "planning/fail.h"

#include "planning/link_finder.h"

#include <algorithm>
#include <limits>
#include <optional>
#include <span>

namespace tarnex::planning
{

namespace
{

using Links = std::vector<LinkId>;

/** Rounding in sums of bandwidths is no overload. */
constexpr double tolerance = 1e-9;

struct Backup {
    LspKind kind = LspKind::localBackup;
    std::size_t from = 0; ///< positions in the LSP's path
    std::size_t to = 0;
    Links links;
};

struct Lsp {
    DemandId id;
    std::size_t classType = 0;
    std::size_t level = 0;
    double bandwidth = 0.0;
    std::span<const NodeId> path;
    Links links;
    std::vector<Backup> backups;
};

Lsp lspOf(const Plan &plan, const LinkFinder &finder, std::size_t index, const PlannedLsp &planned)
{
    const Demand &demand = plan.demands[index];
    Lsp lsp{.id = DemandId{static_cast<std::int32_t>(index)},
            .classType = static_cast<std::size_t>(demand.classType),
            .level = static_cast<std::size_t>(demand.level),
            .bandwidth = demand.bandwidth,
            .path = planned.path,
            .links = finder.along(planned.path).value(),
            .backups = {}};
    const auto at = [&](NodeId node) {
        return static_cast<std::size_t>(std::ranges::find(planned.path, node) -
                                        planned.path.begin());
    };
    for (const PlannedBackup &backup : planned.backups)
        lsp.backups.push_back({backup.kind, at(backup.path.front()), at(backup.path.back()),
                               finder.along(backup.path).value()});
    return lsp;
}

double share(double use, double capacity)
{
    if (use <= 0.0)
        return 0.0;
    return capacity > 0.0 ? use / capacity : std::numeric_limits<double>::infinity();
}

} // namespace

struct FailureStudy::State {
    const Plan &plan;
    std::vector<Lsp> lsps{};
    std::vector<std::vector<std::size_t>> over{}; ///< by link: the LSPs whose path uses it
    std::vector<std::vector<double>> normal{};    ///< `[link][classType]`, carried by primaries
    std::vector<std::vector<double>> use{};       ///< likewise, with the failure being tried
    Links changed{};                              ///< links whose use the failure changes
    std::vector<char> hasChanged{};               ///< by link
    std::vector<char> hasFailed{};                ///< by link
    std::vector<WorstUse> worst{};                ///< by link
    std::size_t nbTried = 0;

    explicit State(const Plan &borrowed);

    void carry(const Lsp &lsp, std::span<const LinkId> links, double sign);
    bool isWhole(const Links &links) const;
    std::optional<Links> aroundFailures(const Lsp &lsp) const;
    std::optional<Links> besideFailures(const Lsp &lsp) const;
    Fate divert(const Lsp &lsp, const Failure &failure);
    std::vector<std::size_t> brokenBy(const Failure &failure) const;
    void compare(FailureEffect &effect);
};

FailureStudy::State::State(const Plan &borrowed) : plan(borrowed)
{
    const Network &network = plan.network;
    const LinkFinder finder{network};
    over.resize(network.links.size());
    normal.assign(network.links.size(), std::vector<double>(network.classes.size()));
    hasFailed.resize(network.links.size());
    hasChanged.resize(network.links.size());
    for (std::size_t i = 0; i < plan.outcomes.size(); ++i) {
        const auto *const planned = std::get_if<PlannedLsp>(&plan.outcomes[i]);
        if (!planned)
            continue;
        const Lsp &lsp = lsps.emplace_back(lspOf(plan, finder, i, *planned));
        for (const LinkId link : lsp.links) {
            over[link.index()].push_back(lsps.size() - 1);
            normal[link.index()][lsp.classType] += lsp.bandwidth;
        }
    }
    use = normal;
    worst.resize(network.links.size());
    for (std::size_t i = 0; i < worst.size(); ++i)
        for (std::size_t c = 0; c < network.classes.size(); ++c) {
            const double full = share(normal[i][c], network.links[i].capacity[c]);
            if (full > worst[i].worst)
                worst[i] = {full, full, static_cast<int>(c), full, ~std::size_t{0}};
        }
}

/** Adds an LSP to links, or with `sign` -1 takes it off. */
void FailureStudy::State::carry(const Lsp &lsp, std::span<const LinkId> links, double sign)
{
    for (const LinkId link : links) {
        use[link.index()][lsp.classType] += sign * lsp.bandwidth;
        if (!hasChanged[link.index()])
            changed.push_back(link);
        hasChanged[link.index()] = true;
    }
}

bool FailureStudy::State::isWhole(const Links &links) const
{
    return std::ranges::none_of(links, [this](LinkId link) { return hasFailed[link.index()]; });
}

/** The links that local backups lead an LSP over; none if they do not lead to the egress. */
std::optional<Links> FailureStudy::State::aroundFailures(const Lsp &lsp) const
{
    Links way;
    for (std::size_t at = 0; at < lsp.links.size();) {
        if (!hasFailed[lsp.links[at].index()]) {
            way.push_back(lsp.links[at++]);
            continue;
        }
        const auto backup = std::ranges::find_if(lsp.backups, [&](const Backup &candidate) {
            return candidate.kind == LspKind::localBackup && candidate.from == at &&
                   isWhole(candidate.links);
        });
        if (backup == lsp.backups.end())
            return std::nullopt;
        way.insert(way.end(), backup->links.begin(), backup->links.end());
        at = backup->to;
    }
    return way;
}

/** The links of a global backup that is whole. */
std::optional<Links> FailureStudy::State::besideFailures(const Lsp &lsp) const
{
    const auto backup = std::ranges::find_if(lsp.backups, [&](const Backup &candidate) {
        return candidate.kind == LspKind::globalBackup && isWhole(candidate.links);
    });
    return backup == lsp.backups.end() ? std::nullopt : std::optional{backup->links};
}

/** Has a broken LSP go where it can. */
Fate FailureStudy::State::divert(const Lsp &lsp, const Failure &failure)
{
    carry(lsp, lsp.links, -1.0);
    const auto hasFailedNode = [&](NodeId node) {
        return std::ranges::find(failure.nodes, node) != failure.nodes.end();
    };
    if (hasFailedNode(lsp.path.front()) || hasFailedNode(lsp.path.back()))
        return Fate::ended;
    if (const auto way = aroundFailures(lsp)) {
        carry(lsp, *way, 1.0);
        return Fate::local;
    }
    if (const auto way = besideFailures(lsp)) {
        carry(lsp, *way, 1.0);
        return Fate::global;
    }
    return Fate::lost;
}

/** The LSPs whose path uses a link that fails, ascending. */
std::vector<std::size_t> FailureStudy::State::brokenBy(const Failure &failure) const
{
    std::vector<std::size_t> broken;
    for (const LinkId link : failure.links)
        broken.insert(broken.end(), over[link.index()].begin(), over[link.index()].end());
    std::ranges::sort(broken);
    broken.erase(std::unique(broken.begin(), broken.end()), broken.end());
    return broken;
}

/** Compares what changed links carry with their capacities. */
void FailureStudy::State::compare(FailureEffect &effect)
{
    std::ranges::sort(changed);
    for (const LinkId link : changed) {
        const std::vector<double> &capacities = plan.network.links[link.index()].capacity;
        for (std::size_t c = 0; c < capacities.size(); ++c) {
            const double carried = use[link.index()][c];
            const double full = share(carried, capacities[c]);
            WorstUse &most = worst[link.index()];
            const bool isMore = full > most.worst * (1.0 + tolerance);
            if (isMore)
                most = {most.normal, full, static_cast<int>(c),
                        share(normal[link.index()][c], capacities[c]), nbTried};
            const bool isNew = carried > normal[link.index()][c] * (1.0 + tolerance);
            if (isNew && carried > capacities[c] * (1.0 + tolerance))
                effect.overloads.push_back({link, static_cast<int>(c), carried, capacities[c]});
        }
        use[link.index()] = normal[link.index()];
        hasChanged[link.index()] = false;
    }
    changed.clear();
}

FailureStudy::FailureStudy(const Plan &plan) : state(std::make_unique<State>(plan)) {}

FailureStudy::~FailureStudy() = default;

FailureEffect FailureStudy::effectOf(const Failure &failure)
{
    FailureEffect effect;
    effect.levels.resize(state->plan.network.levels.size());
    for (const LinkId link : failure.links)
        state->hasFailed[link.index()] = true;
    for (const std::size_t i : state->brokenBy(failure)) {
        const Lsp &lsp = state->lsps[i];
        const Fate fate = state->divert(lsp, failure);
        effect.lsps.emplace_back(lsp.id, fate);
        BrokenLsps one;
        one.hit.add(lsp.bandwidth);
        Amount BrokenLsps::*const kinds[] = {&BrokenLsps::local, &BrokenLsps::global,
                                             &BrokenLsps::lost, &BrokenLsps::ended};
        (one.*kinds[static_cast<std::size_t>(fate)]).add(lsp.bandwidth);
        effect.all += one;
        effect.levels[lsp.level] += one;
    }
    state->compare(effect);
    for (const LinkId link : failure.links)
        state->hasFailed[link.index()] = false;
    ++state->nbTried;
    return effect;
}

const std::vector<WorstUse> &FailureStudy::worst() const { return state->worst; }

BrokenLsps &BrokenLsps::operator+=(const BrokenLsps &other)
{
    for (Amount BrokenLsps::*const kind :
         {&BrokenLsps::hit, &BrokenLsps::local, &BrokenLsps::global, &BrokenLsps::lost,
          &BrokenLsps::ended}) {
        (this->*kind).number += (other.*kind).number;
        (this->*kind).bandwidth += (other.*kind).bandwidth;
    }
    return *this;
}

} // namespace tarnex::planning
