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

/** By fate. */
constexpr Amount BrokenLsps::*amounts[] = {&BrokenLsps::local,    &BrokenLsps::global,
                                           &BrokenLsps::rerouted, &BrokenLsps::lost,
                                           &BrokenLsps::ended,    &BrokenLsps::displaced};

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
    std::vector<LinkPeak> usual{};                ///< by link: without a failure
    std::vector<LinkPeak> peaks{};                ///< by link: the fullest so far
    std::vector<std::optional<Links>> detours{};  ///< by demand: where a backup leads it now
    std::vector<std::size_t> position{};          ///< by demand: its LSP
    std::optional<Rerouter> rerouter{};

    State(const Plan &borrowed, Reroute reroute);

    void carry(const Lsp &lsp, std::span<const LinkId> links, double sign);
    bool isWhole(const Links &links) const;
    std::optional<Links> aroundFailures(const Lsp &lsp) const;
    std::optional<Links> besideFailures(const Lsp &lsp) const;
    Fate divert(const Lsp &lsp, const Failure &failure);
    std::vector<std::size_t> brokenBy(const Failure &failure) const;
    void reroute(const Failure &failure, std::vector<FailedLsp> &lsps);
    void compare(FailureEffect &effect);
};

FailureStudy::State::State(const Plan &borrowed, Reroute reroute) : plan(borrowed)
{
    if (reroute != Reroute::no)
        rerouter.emplace(plan, reroute);
    const Network &network = plan.network;
    const LinkFinder finder{network};
    over.resize(network.links.size());
    normal.assign(network.links.size(), std::vector<double>(network.classes.size()));
    hasFailed.resize(network.links.size());
    hasChanged.resize(network.links.size());
    detours.resize(plan.outcomes.size());
    position.resize(plan.outcomes.size());
    for (std::size_t i = 0; i < plan.outcomes.size(); ++i) {
        const auto *const planned = std::get_if<PlannedLsp>(&plan.outcomes[i]);
        if (!planned)
            continue;
        const Lsp &lsp = lsps.emplace_back(lspOf(plan, finder, i, *planned));
        position[i] = lsps.size() - 1;
        for (const LinkId link : lsp.links) {
            over[link.index()].push_back(lsps.size() - 1);
            normal[link.index()][lsp.classType] += lsp.bandwidth;
        }
    }
    use = normal;
    for (std::size_t i = 0; i < normal.size(); ++i) {
        LinkPeak &peak = usual.emplace_back();
        peak.link = LinkId{static_cast<std::int32_t>(i)};
        for (std::size_t c = 0; c < network.classes.size(); ++c) {
            const double full = share(normal[i][c], network.links[i].capacity[c]);
            if (full > peak.share)
                peak = {peak.link, static_cast<int>(c), full, full};
        }
    }
    peaks = usual;
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
            // One that leads no further, in a plan that is not right, would be followed for ever.
            return candidate.kind == LspKind::localBackup && candidate.from == at &&
                   candidate.to > at && isWhole(candidate.links);
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
    std::optional<Links> &way = detours[lsp.id.index()];
    way = aroundFailures(lsp);
    const bool isLocal = way.has_value();
    if (!isLocal)
        way = besideFailures(lsp);
    if (!way)
        return Fate::lost;
    carry(lsp, *way, 1.0);
    return isLocal ? Fate::local : Fate::global;
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

/** Has what is lost placed anew, and whatever gives way to it. */
void FailureStudy::State::reroute(const Failure &failure, std::vector<FailedLsp> &failed)
{
    const auto of = [&](Fate fate) {
        std::vector<DemandId> ids;
        for (const FailedLsp &lsp : failed)
            if (lsp.fate == fate)
                ids.push_back(lsp.id);
        return ids;
    };
    for (const ReroutedLsp &tried :
         rerouter->reroute(of(Fate::lost), of(Fate::ended), failure.links)) {
        const Lsp &lsp = lsps[position[tried.id.index()]];
        const auto known = std::ranges::lower_bound(failed, tried.id, {}, &FailedLsp::id);
        const bool wasHit = known != failed.end() && known->id == tried.id;
        const std::optional<Links> &detour = detours[tried.id.index()];
        if (!wasHit || detour) // it gave way
            carry(lsp, detour ? *detour : lsp.links, -1.0);
        const bool isPlaced = !tried.links.empty();
        carry(lsp, tried.links, 1.0);
        const auto reason = isPlaced ? std::nullopt : std::optional{tried.reason};
        if (wasHit)
            *known = {tried.id, isPlaced ? Fate::rerouted : Fate::lost, reason};
        else if (!isPlaced)
            failed.insert(known, {tried.id, Fate::displaced, reason});
    }
}

/** Compares what changed links carry with their capacities. */
void FailureStudy::State::compare(FailureEffect &effect)
{
    std::ranges::sort(changed);
    for (const LinkId link : changed) {
        const std::vector<double> &capacities = plan.network.links[link.index()].capacity;
        LinkPeak &peak = peaks[link.index()];
        const double before = peak.share;
        for (std::size_t c = 0; c < capacities.size(); ++c) {
            const double carried = use[link.index()][c];
            const double unbroken = normal[link.index()][c];
            const double full = share(carried, capacities[c]);
            // What was added and taken off again may leave a little.
            const bool isMore = carried > unbroken * (1.0 + tolerance);
            if (isMore && full > peak.share)
                peak = {link, static_cast<int>(c), full, share(unbroken, capacities[c])};
            if (isMore && carried > capacities[c] * (1.0 + tolerance))
                effect.overloads.push_back({link, static_cast<int>(c), carried, capacities[c]});
        }
        if (peak.share > before)
            effect.peaks.push_back(peak);
        use[link.index()] = normal[link.index()];
        hasChanged[link.index()] = false;
    }
    changed.clear();
}

FailureStudy::FailureStudy(const Plan &plan, Reroute reroute)
    : state(std::make_unique<State>(plan, reroute))
{
}

FailureStudy::~FailureStudy() = default;

FailureEffect FailureStudy::effectOf(const Failure &failure)
{
    FailureEffect effect;
    effect.levels.resize(state->plan.network.levels.size());
    for (const LinkId link : failure.links)
        state->hasFailed[link.index()] = true;
    for (const std::size_t i : state->brokenBy(failure)) {
        const Lsp &lsp = state->lsps[i];
        effect.lsps.push_back({lsp.id, state->divert(lsp, failure), std::nullopt});
    }
    if (state->rerouter)
        state->reroute(failure, effect.lsps);
    for (const FailedLsp &failed : effect.lsps) {
        const Lsp &lsp = state->lsps[state->position[failed.id.index()]];
        BrokenLsps one;
        if (failed.fate != Fate::displaced)
            one.hit.add(lsp.bandwidth);
        (one.*amounts[static_cast<std::size_t>(failed.fate)]).add(lsp.bandwidth);
        effect.all += one;
        effect.levels[lsp.level] += one;
        state->detours[failed.id.index()].reset();
    }
    state->compare(effect);
    for (const LinkId link : failure.links)
        state->hasFailed[link.index()] = false;
    return effect;
}

const std::vector<LinkPeak> &FailureStudy::normal() const { return state->usual; }

std::string_view nameOf(Fate fate)
{
    constexpr std::string_view names[] = {"local", "global", "rerouted",
                                          "lost",  "ended",  "displaced"};
    return names[static_cast<std::size_t>(fate)];
}

BrokenLsps &BrokenLsps::operator+=(const BrokenLsps &other)
{
    hit += other.hit;
    for (Amount BrokenLsps::*const kind : amounts)
        this->*kind += other.*kind;
    return *this;
}

} // namespace tarnex::planning
