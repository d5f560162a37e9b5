/**
 * The engine and the peer on one network with the same LSPs in place, and the demands put to both.
 */
#ifndef TARNEX_BENCH_SIDES_H
#define TARNEX_BENCH_SIDES_H

#include "computation/backup/driver.h"
#include "peer.h"

#include <deque>
#include <optional>

struct Demand {
    Long src, dst;
    int oa, level;
    double bw;
};

/** What a network is to carry. */
struct Setting {
    int nodes = 0;
    LinkCost cost = LinkCost::fortz;
    int classes = 1;
    int levels = 1;           ///< LSPs preempt where there are several
    bool isProtected = false; ///< whether a fifth of the primaries have local backups
};

/** A sequence of demands that a seed names. */
class Demands
{
public:
    Demands(unsigned seed, const Setting &wanted) : rng(seed), setting(wanted) {}
    Demand operator()();

private:
    property::Rng rng;
    Setting setting;
};

/** A network with 5 links per node and capacities of about 14 LSPs. */
property::NetworkPlan planFor(int nodes);

/** The engine on a network. What requests place is removed again, oldest first. */
class Engine
{
public:
    Engine(const property::NetworkPlan &plan, LinkCost cost, bool preempts);
    ~Engine();
    Engine(const Engine &) = delete;
    Engine &operator=(const Engine &) = delete;

    /** The LSP that a demand asks for, under a new id and without a path. */
    property::PlannedLsp lspFor(const Demand &demand);

    /** @name The seconds that an operation takes; nothing when it is refused. */
    ///@{
    /** Path, record and admission; the path stays in `lastPath`, its score in COST. */
    std::optional<double> request(const Demand &demand);
    /** The path alone; its score stays in COST. */
    std::optional<double> search(const Demand &demand);
    /** Admission of an LSP whose path is known; it preempts nothing. */
    std::optional<double> admit(const property::PlannedLsp &lsp);
    std::optional<double> protect(Long primary, BackupType type,
                                  std::vector<property::NodePath> &backups);
    double remove(Long id);
    double removeOldest();
    /** A link goes, with LSPs on it, and comes again; they are not removed later. */
    double exchange(const property::PlannedLink &link);
    ///@}

    /** Gives every link its id as its colour. */
    void colorLinks(const property::NetworkPlan &plan);
    /** Takes the LSPs that cross a node away, and then its links. */
    void cutOff(const property::NetworkPlan &plan, Long node);

    std::vector<Long> avoided;  ///< colours that requests avoid
    std::deque<Long> removable; ///< unprotected primaries, oldest first; some may be preempted
    property::NodePath lastPath;
    std::size_t nbPreempted = 0;

private:
    DataBase *db;
    LongList preempted{};
    Long nextId = 0;
};

/** An LSP as the peer keeps it. */
struct Held {
    LinkPath path;
    double bw;
};

/**
 * Both sides, loaded so that a fifth of the links lack room for a typical demand. The peer knows
 * one class type, so there is a peer for each; only the first is measured.
 */
class Sides
{
public:
    explicit Sides(const Setting &wanted);

    Peer &peer() { return peers.front(); }
    double fullShare() const;

    /** The peer's request with admission: seconds, or nothing when it is refused. */
    std::optional<double> requestAtPeer(const Demand &demand, Extent extent);
    void removeOldestAtPeer();
    /** Exchanges the path of the peer's newest LSP. */
    void takeOver(const property::NodePath &path);
    /** The LSP that a demand asks for on the path that the peer finds; nothing when it has none. */
    std::optional<property::PlannedLsp> routedLsp(const Demand &demand);

    Setting setting;
    property::NetworkPlan plan;
    Engine engine;
    std::vector<Peer> peers;
    std::deque<Held> held; ///< in step with `engine.removable` as long as both sides agree
    std::size_t nbPrimaries = 0;
    std::size_t nbBackups = 0;

private:
    void place(const Demand &demand, const LinkPath &path);
    void protect(const Demand &demand, const property::PlannedLsp &primary, const LinkPath &path);
};

#endif
