/**
 * The reservation rules in their plain form, as a reference for the engine's: every failure of
 * every link and node, every class type and level. The tables of a PlainNetwork must equal the
 * engine's bit for bit, because the additions happen in the same order.
 */
#ifndef TARNEX_TESTS_SUPPORT_PLAIN_EVALUATION_H
#define TARNEX_TESTS_SUPPORT_PLAIN_EVALUATION_H

#include "planning/largest_needs.h"
#include "support/random_network.h"

#include <algorithm>
#include <cstring>
#include <map>
#include <set>
#include <tuple>

namespace property
{

/** A table of one link; slots beyond its end count as 0. */
using PlainTable = std::vector<double>;

struct PlainState {
    double cap[MAXOA]{};
    double rbw[MAXOA][MAXPL]{}, pbw[MAXOA][MAXPL]{};
    PlainTable bbw[MAXOA][MAXPL], fbw[MAXOA][MAXPL];
};

/** Position of consecutive `nodes` from `from` on; -1 when they are not there. */
inline std::ptrdiff_t find(const NodePath &path, const NodePath &nodes, std::ptrdiff_t from = 0)
{
    const auto found = std::search(path.begin() + from, path.end(), nodes.begin(), nodes.end());
    return found == path.end() ? -1 : found - path.begin();
}

/** Position of a hop, judged where its first node comes first; -1 when it is none. */
inline std::ptrdiff_t hopOn(const NodePath &path, Hop hop)
{
    const auto at = find(path, {hop.first});
    return at >= 0 && find(path, {hop.first, hop.second}, at) == at ? at : -1;
}

/** For each position of a path, whether a link starts there. */
inline std::vector<bool> positions(const NodePath &path, Hop link)
{
    std::vector<bool> starts;
    for (std::size_t i = 1; i < path.size(); ++i)
        starts.push_back(Hop{path[i - 1], path[i]} == link);
    return starts;
}

/** Whether an LSP comes before another in the list of a link. */
inline bool comesFirst(const PlannedLsp &a, const PlannedLsp &b)
{
    return std::tie(b.precedence, b.bw, a.id) < std::tie(a.precedence, a.bw, b.id);
}

struct PlainNetwork {
    struct Link : PlannedLink {
        PlainState state{};
    };
    std::map<Hop, Link> links;
    std::map<Long, PlannedLsp> lsps;

    void add(const PlannedLink &link)
    {
        Link &added = links[{link.src, link.dst}] = {link};
        std::ranges::fill(added.state.cap, link.capacity);
    }

    void add(const PlannedLsp &lsp)
    {
        list(lsp);
        for (auto &[hop, link] : links) {
            for (auto times = updates(hop, lsp); times > 0; --times)
                update(link.state, hop, lsp, 1.0);
        }
    }

    void removeLsp(Long id)
    {
        const PlannedLsp lsp = lsps.at(id);
        for (auto &[hop, link] : links) {
            for (auto times = updates(hop, lsp); times > 0; --times)
                update(link.state, hop, lsp, -1.0);
        }
        lsps.erase(id);
        pair(lsp.noContentionId, -1);
    }

    /** Lists an LSP and pairs it with its partner; no link changes. */
    void list(const PlannedLsp &lsp)
    {
        lsps[lsp.id] = lsp;
        pair(lsp.noContentionId, lsp.id);
        pair(lsp.id, lsps.contains(lsp.noContentionId) ? lsp.noContentionId : -1);
    }

    /** How often an admission updates a link: once per passage, or once for the protected path. */
    static std::ptrdiff_t updates(Hop link, const PlannedLsp &lsp)
    {
        const auto passages = std::ranges::count(positions(lsp.path, link), true);
        return passages > 0 ? passages : concerns(link, lsp) ? 1 : 0;
    }

    /** Sets `lsp` up (`mult` 1) or removes it (-1); false when a link it needs is gone. */
    bool update(PlainState &state, Hop link, const PlannedLsp &lsp, double mult) const
    {
        if (!change(state, link, lsp, mult))
            return false;
        if (concerns(link, lsp))
            reserve(state);
        return true;
    }

    static bool concerns(Hop link, const PlannedLsp &lsp)
    {
        return hopOn(lsp.path, link) >= 0 ||
               (lsp.type != primaryLSP && hopOn(lsp.primPath, link) >= 0);
    }

    /** The tables of `update`, without the reservation. */
    bool change(PlainState &state, Hop link, const PlannedLsp &lsp, double mult) const
    {
        const bool isPrimary = lsp.type == primaryLSP;
        const bool isLocal = lsp.type == localBackupLSP;
        const NodePath &failing = isPrimary ? lsp.path : lsp.primPath;
        const bool onPath = hopOn(lsp.path, link) >= 0;
        const auto onPrim = isPrimary ? -1 : hopOn(failing, link);
        if (!onPath && onPrim < 0)
            return true;

        const auto found = lsps.find(onPath ? lsp.noContentionId : -1);
        const PlannedLsp *partner = found == lsps.end() ? nullptr : &found->second;
        const bool rerouting = partner && hopOn(partner->path, link) >= 0;
        std::set<Hop> partnerHops;
        for (std::size_t i = 1; partner && i < partner->path.size(); ++i)
            partnerHops.emplace(partner->path[i - 1], partner->path[i]);

        const auto isGone = [&](Hop hop) { return !links.contains(hop); };
        const auto amount = [&](std::size_t oa, bool shared) {
            const bool competes = !shared || partner->precedence != lsp.precedence;
            return competes ? lsp.bw[oa] : std::max(0.0, lsp.bw[oa] - partner->bw[oa]);
        };
        /** Changes the slots of the hops from `from` to `to` - 1; false at one that is no link. */
        const auto addTo = [&](auto table, std::ptrdiff_t from, std::ptrdiff_t to, double sign) {
            for (auto node = failing.begin() + from; node < failing.begin() + to; ++node) {
                const Hop hop{node[0], node[1]};
                if (isGone(hop))
                    return false;
                const auto k = static_cast<std::size_t>(links.at(hop).id);
                const bool shared = rerouting && (!isPrimary || partnerHops.contains(hop));
                for (std::size_t oa = 0; oa < MAXOA; ++oa) {
                    PlainTable &slots = (state.*table)[oa][lsp.precedence];
                    if (amount(oa, shared) == 0.0)
                        continue;
                    slots.resize(std::max(slots.size(), k + 1));
                    slots[k] += sign * mult * amount(oa, shared);
                }
            }
            return true;
        };

        const auto last = static_cast<std::ptrdiff_t>(failing.size()) - 1;
        if (isPrimary) {
            for (std::size_t oa = 0; oa < MAXOA; ++oa)
                state.pbw[oa][lsp.precedence] += mult * amount(oa, rerouting);
            if (std::ranges::any_of(partnerHops, isGone) || !addTo(&PlainState::fbw, 0, last, 1))
                return false;
        } else {
            const auto b = find(failing, {lsp.path.front()});
            const auto end = isLocal ? b + 1 : last;
            if (b < 0 || end > last)
                return false;
            const auto first = failing.begin() + b;
            if (isLocal && isGone({first[0], first[1]}))
                return false;
            if (onPath && !addTo(&PlainState::bbw, b, end, 1))
                return false;
            const bool bypassed =
                isLocal && onPrim >= b && onPrim < find(failing, {lsp.path.back()}, b);
            const auto freed = isLocal ? std::pair{b, end} : std::pair{std::ptrdiff_t{0}, b};
            if (onPrim >= 0 && !bypassed && !addTo(&PlainState::fbw, freed.first, freed.second, -1))
                return false;
        }
        return true;
    }

    /** The links that fail together, one by one and all the links into a node. */
    using Failures = std::map<std::pair<bool, Long>, NodePath>;
    Failures failures() const
    {
        Failures all;
        for (const auto &[ends, link] : links) {
            all[{false, link.id}] = {link.id};
            all[{true, ends.second}].push_back(link.id);
        }
        return all;
    }

    /** Recomputes the reservation of one state. */
    void reserve(PlainState &state) const { reserve(state, failures()); }
    static void reserve(PlainState &state, const Failures &failures)
    {
        const Failures none;
        const auto at = [](const PlainTable &table, Long k) {
            return k < static_cast<Long>(table.size()) ? table[static_cast<std::size_t>(k)] : 0.0;
        };
        for (int oa = 0; oa < MAXOA; ++oa) {
            const bool isEmpty = std::ranges::all_of(state.bbw[oa], &PlainTable::empty) &&
                                 std::ranges::all_of(state.fbw[oa], &PlainTable::empty);
            const auto in = [at](const PlainTable(&tables)[MAXPL]) {
                return [&tables, at](Long k, std::size_t p) { return at(tables[p], k); };
            };
            const std::vector<double> largest =
                tarnex::planning::largestNeeds(isEmpty ? none : failures, MAXPL, in(state.bbw[oa]),
                                               in(state.fbw[oa]), &Failures::value_type::second);
            for (std::size_t p = 0; p < MAXPL; ++p)
                state.rbw[oa][p] = state.pbw[oa][p] + largest[p] - (p > 0 ? largest[p - 1] : 0.0);
        }
    }

private:
    void pair(Long id, Long partner)
    {
        if (lsps.contains(id))
            lsps.at(id).noContentionId = partner;
    }
};

/** Whether two tables hold the same; slots beyond an end count as 0. */
inline bool areSame(std::span<const double> a, std::span<const double> b)
{
    const auto [end, rest] = std::ranges::mismatch(a, b);
    const auto isZero = [](double value) { return value == 0.0; };
    return std::all_of(end, a.end(), isZero) && std::all_of(rest, b.end(), isZero);
}

/** A stored state as it is. */
inline PlainState plainFrom(const DBLinkState &stored)
{
    PlainState state;
    std::ranges::copy(stored.cap, state.cap);
    std::memcpy(state.rbw, stored.rbw, sizeof state.rbw);
    std::memcpy(state.pbw, stored.pbw, sizeof state.pbw);
    for (int oa = 0; oa < MAXOA; ++oa) {
        for (int p = 0; p < MAXPL; ++p) {
            state.bbw[oa][p] = {slots(stored.bbw[oa][p]).begin(), slots(stored.bbw[oa][p]).end()};
            state.fbw[oa][p] = {slots(stored.fbw[oa][p]).begin(), slots(stored.fbw[oa][p]).end()};
        }
    }
    return state;
}

/** Whether two states agree bit for bit. */
inline bool areSame(const DBLinkState &engine, const PlainState &plain)
{
    bool same = std::memcmp(engine.rbw, plain.rbw, sizeof plain.rbw) == 0 &&
                std::memcmp(engine.pbw, plain.pbw, sizeof plain.pbw) == 0;
    for (int oa = 0; oa < MAXOA; ++oa) {
        for (int p = 0; p < MAXPL; ++p)
            same = same && areSame(slots(engine.bbw[oa][p]), plain.bbw[oa][p]) &&
                   areSame(slots(engine.fbw[oa][p]), plain.fbw[oa][p]);
    }
    return same;
}

} // namespace property

#endif
