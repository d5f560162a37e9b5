/**
 * The engine as a C++ library: a network, the LSPs on it, and the books about what they reserve.
 *
 *     tarnex::Engine engine{{.classTypes = 1, .weights = tarnex::Weights::of(Objective::hops)}};
 *     engine.addNode(NodeId{0}); ...
 *     if (const auto placed = engine.place({.ingress = a, .egress = b, .bandwidth = 100.0}))
 *         use(placed->path);
 *     else
 *         tell(placed.refusal().sentence);
 *
 * An engine may be used from one thread at a time, different ones from different threads; inside,
 * calls take turns. Results depend on nothing but the calls before.
 *
 * What cannot be done is a Refusal and changes nothing. Wrong use (an id that is taken or unknown
 * where one must exist, a level out of range, a bandwidth that is no number) throws WrongUse, a
 * lack of memory std::bad_alloc; the network and its reservations are then as they were, but for
 * the rounding of bandwidths that had to be taken back.
 *
 * Nothing is printed, and sessions of the native methods may be used in the same process.
 */
#ifndef TARNEX_ENGINE_H
#define TARNEX_ENGINE_H

#include <tarnex/options.h>
#include <tarnex/records.h>
#include <tarnex/refusal.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <vector>

namespace tarnex
{

/** A call that its caller had no right to make; the text says what is wrong with it. */
class [[gnu::visibility("default")]] WrongUse : public std::logic_error
{
public:
    using std::logic_error::logic_error;
};

/** One network with its LSPs. Movable; a moved-from engine refuses every call with WrongUse. */
class [[gnu::visibility("default")]] Engine
{
public:
    explicit Engine(const Options &options = {});
    ~Engine();
    Engine(Engine && other) noexcept;
    Engine &operator=(Engine &&other) noexcept;

    const Options &options() const;

    // --- topology ---

    void addNode(NodeId node);
    void addLink(const LinkSpec &link);
    /** Removes a link, and before it the LSPs that use it, which are returned by id, each primary
     * followed by its backups; a backup that uses it without its primary goes alone. */
    std::vector<Lsp> removeLink(LinkId link);
    /** Removes a node with its links; as removeLink. */
    std::vector<Lsp> removeNode(NodeId node);

    // --- LSPs ---

    /** Computes the path of least score that has room, and sets the LSP up; LSPs that have to give
     * way are removed with their backups. */
    Result<Placement> place(const Request &request);
    /** Places many, one after the other, a result for each. Either all of them name their ids or
     * none does; wrong use by any is found before the first is placed. After std::bad_alloc those
     * before it are placed. */
    std::vector<Result<Placement>> placeAll(std::span<const Request> requests);
    /** As place, but nothing changes; the id in the result is invalid if the request names none. */
    Result<Placement> propose(const Request &request);
    /** Computes backups for a primary and sets them up, all or none; their ids are the next ones
     * never used or, if `firstId` is valid, the ones from there on. They carry the bandwidth of the
     * primary, or a part of it. */
    Result<Protection> protect(LspId primary, Scheme scheme, LspId firstId = {},
                               std::optional<double> bandwidth = {});
    /** Sets up a primary on a given path, which passes no node twice; the request's ends are taken
     * from the path. */
    Result<Placement> add(const Request &request, std::span<const NodeId> path);
    /**
     * Sets up a given backup of a primary, which uses no link that it is to protect. A local one
     * protects the link of the primary's path after its own first node and leads to a later node;
     * a global one protects all links from its first node on and leads to the egress.
     */
    Result<Lsp> add(const BackupSpec &backup);
    /** Removes an LSP, a primary with its backups. */
    void remove(LspId lsp);

    /** Why a request would get no path, in full even if `explainsRefusals` is off; none when it
     * would get one. */
    std::optional<Refusal> explain(const Request &request);
    /** Why a primary would get no such backups, in full; none when it would. The largest bandwidth
     * is what of its own could be protected; the links in the way are those of the last backup that
     * was sought. */
    std::optional<Refusal> explainProtection(LspId primary, Scheme scheme);

    // --- reading back ---

    std::size_t nbNodes() const;
    std::size_t nbLinks() const;
    std::size_t nbLsps() const;
    /** All ids in use, ascending. */
    std::vector<NodeId> nodes() const;
    std::vector<LinkId> links() const;
    std::vector<LspId> lsps() const;
    /** The link from a node to another; none when there is none. */
    std::optional<LinkId> linkBetween(NodeId from, NodeId to) const;
    /** What a link carries; WrongUse for an unknown one, as below. */
    LinkUse use(LinkId link) const;
    /** The LSPs whose path uses a link, in the order of the engine's list: least important level
     * first, then larger bandwidth, then smaller id. */
    std::vector<LspId> lspsOn(LinkId link) const;
    bool has(LspId lsp) const;
    Lsp lsp(LspId lsp) const;
    /** The backups of a primary, along its path. */
    std::vector<LspId> backupsOf(LspId primary) const;
    /** The engine's messages about the last call that changes or computes something, the cause
     * last, one per line; empty when there is nothing to say. */
    std::string trail() const;
    /** Bytes in the engines' tables in this process, modulo 2^32. */
    static std::int64_t countedMemory();

private:
    struct State;
    State &live() const;
    std::unique_ptr<State> state;
};

} // namespace tarnex

#endif
