/** What is asked of an engine and what it tells. Bandwidths are in the caller's unit. */
#ifndef TARNEX_RECORDS_H
#define TARNEX_RECORDS_H

#include <tarnex/ids.h>
#include <tarnex/options.h>

#include <optional>
#include <span>
#include <vector>

namespace tarnex
{

/** A directed link to add. At most one leads from a node to another. */
struct LinkSpec {
    LinkId id;
    NodeId from;
    NodeId to;
    /** Per class type in use, finite and 0 or more; one that is missing is 0. */
    std::span<const double> capacity;
};

/** A primary LSP that is wanted. */
struct Request {
    NodeId ingress{};
    NodeId egress{};
    double bandwidth = 0.0; ///< finite, 0 or more
    int classType = 0;
    int level = 0;           ///< 0 is the most important
    bool mayPreempt = false; ///< whether LSPs of less important levels may have to give way
    LspId id{};              ///< for the LSP; invalid: the engine takes the next one never used
    std::span<const LinkId> avoid{}; ///< links that a path that is sought must not use; borrowed,
                                     ///< those that are not there are no matter
};

/** A way through the network. */
struct Path {
    std::vector<NodeId> nodes; ///< ingress first
    std::vector<LinkId> links; ///< one less

    friend bool operator==(const Path &, const Path &) = default;
};

/** What an LSP is. */
enum class LspKind { primary, localBackup, globalBackup };

/** What a backup keeps alive when it fails. */
struct Protects {
    LspId primary;
    std::vector<LinkId>
        links; ///< of the primary's path: one for a local backup, all for a global one
    std::vector<NodeId> nodes; ///< nodes between the primary's ends that the backup avoids as well:
                               ///< at most one for a local backup
};

/** An LSP in full. */
struct Lsp {
    LspId id;
    LspKind kind = LspKind::primary;
    int classType = 0;
    int level = 0; ///< of a backup: 0
    double bandwidth = 0.0;
    Path path;
    Protects protects; ///< empty for a primary

    bool isBackup() const { return kind != LspKind::primary; }
};

/** A primary LSP that was placed, or would be. */
struct Placement {
    LspId id;
    Path path;
    /** Of the path, on the terms of the engine's weights. None for a given path, and where a link
     * has no finite cost: a link that becomes full has no delay that is one. */
    std::optional<double> score;
    /** The LSPs that have given way, or would: primaries by id, each followed by its backups. */
    std::vector<Lsp> victims;
};

/** How an LSP is to be protected. */
enum class Scheme {
    local,        ///< a backup for every link of the path, around the node behind it where possible
    global,       ///< one backup from end to end, avoiding the path's nodes where possible
    localOrGlobal ///< global where local is refused
};

/** The backups of one primary, along its path. */
struct Protection {
    std::vector<Lsp> backups;
};

/** A backup computed elsewhere. */
struct BackupSpec {
    LspId primary;
    LspKind kind = LspKind::localBackup;
    std::vector<NodeId> path; ///< a local backup starts at the node before the link it protects
    LspId id{};               ///< as in Request
};

/** What a link carries. Levels are single here: their sums over 0 to p are what p may rely on. */
struct LinkUse {
    LinkId id;
    NodeId from;
    NodeId to;
    std::array<double, maxClassTypes> capacity{};
    PerLevel primary{}; ///< reserved by primaries
    PerLevel shared{};  ///< what the largest need over all single failures adds at each level
    PerLevel total{};   ///< reserved altogether
};

} // namespace tarnex

#endif
