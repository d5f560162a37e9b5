/**
 * Networks and LSPs as plain data, and the records of the engine made from them. Everything random
 * is drawn from the caller's choices, so a seed names one network.
 */
#ifndef TARNEX_TESTS_SUPPORT_RANDOM_NETWORK_H
#define TARNEX_TESTS_SUPPORT_RANDOM_NETWORK_H

#include "common/records.h"
#include "computation/computation.h"
#include "database/books/network.h"

#include <array>
#include <cstdint>
#include <random>
#include <span>
#include <string>
#include <vector>

namespace property
{

/** Where choices come from: a seed, or bytes, one per choice, and a fixed seed after the last. */
class Rng
{
public:
    using result_type = std::uint64_t;
    explicit Rng(unsigned seed) : generator(seed) {}
    explicit Rng(std::span<const std::uint8_t> chosen) : bytes(chosen) {}

    static constexpr result_type min() { return 0; }
    static constexpr result_type max() { return ~result_type{0}; }
    result_type operator()();
    bool hasBytes() const { return !bytes.empty(); }

private:
    std::span<const std::uint8_t> bytes;
    std::mt19937_64 generator;
};

using NodePath = std::vector<Long>;
using Hop = std::pair<Long, Long>;

struct PlannedLink {
    Long id = 0, src = 0, dst = 0;
    double capacity = 100.0; ///< in every class type
};

struct NetworkPlan {
    NodePath nodes;
    std::vector<PlannedLink> links;
};

/** An LSP, or the request for one. */
struct PlannedLsp {
    Long id = 0;
    DBLSPType type = primaryLSP;
    int precedence = 0;
    std::array<double, MAXOA> bw{};
    NodePath path{};
    Long primID = 0;
    NodePath primPath{};
    Long noContentionId = -1;
};

/** What a list holds. */
inline NodePath idsIn(const LongList &list) { return {inUse(list).begin(), inUse(list).end()}; }

using LspRecord = Owned<DBLabelSwitchedPath, DBlspDestroy>;
using State = Owned<DBLinkState, DBlinkStateDestroy>;
using RequestRecord = Owned<LSPRequest, lspRequestDestroy>;

int randomInt(Rng &rng, int below);

template <class T>
const T &anyOf(Rng &rng, const std::vector<T> &items)
{
    return items[static_cast<std::size_t>(randomInt(rng, static_cast<int>(items.size())))];
}

/** The network "id:src-dst id:src-dst/capacity ...". */
NetworkPlan networkOf(const std::string &text);

/** A ring with random chords. Ids are 0, 1, 2, ... for `idStep` 1, else spread over about `idStep`
 * times as many. */
NetworkPlan randomNetwork(Rng &rng, int nodes, int linksPerNode, int idStep);

/** A path of fewest hops, ties broken at random, that avoids one hop; empty when there is none. */
NodePath hopPath(const NetworkPlan &plan, Long src, Long dst, Rng &rng, Hop avoided = {-1, -1});

/** A path between any nodes that now and then comes back to a node it has passed. */
NodePath randomPath(const NetworkPlan &plan, Rng &rng);

/** A backup of `primary` that leaves it at a random node; its path is empty when there is none. */
PlannedLsp backupOf(const NetworkPlan &plan, const PlannedLsp &primary, DBLSPType type, Rng &rng);

/** The stored state of a link that is there, as the engine reads it. */
DBLinkState &storedState(const DataBase *db, Hop hop);

/** Adds a link without reservations, or a whole network; 0, or -1. */
int addLink(DataBase *db, const PlannedLink &link);
int addNetwork(DataBase *db, const NetworkPlan &plan);

LspRecord recordOf(const PlannedLsp &lsp);
PlannedLsp plannedFrom(const DBLabelSwitchedPath &record);
RequestRecord requestOf(const PlannedLsp &lsp);

} // namespace property

#endif
