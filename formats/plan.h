/** What became of demands on a network, and on what terms. */
#ifndef TARNEX_FORMATS_PLAN_H
#define TARNEX_FORMATS_PLAN_H

#include "formats/network.h"

#include <tarnex/options.h>
#include <tarnex/records.h>
#include <tarnex/refusal.h>

#include <cstdint>
#include <string>
#include <variant>
#include <vector>

namespace tarnex
{

/** An index into a plan's demands. */
using DemandId = Id<struct DemandTag>;

/** In which order demands are placed. */
enum class Order {
    given,
    level,   ///< most important first, then as given
    largest, ///< by bandwidth; equal ones as given
    smallest
};

/** How the LSPs of one level are protected; none: not at all. */
using LevelScheme = std::optional<Scheme>;

/** On what terms a plan was made. */
struct PlanOptions {
    Options engine; ///< `classTypes` and `levels` are those of the network
    Order order = Order::level;
    bool preempts = true;
    int retryRounds = 0; ///< how often LSPs that had to give way are placed again at most
    std::vector<LevelScheme> protection; ///< by level; one that is missing: none
};

/** A backup of a planned LSP. */
struct PlannedBackup {
    LspKind kind = LspKind::localBackup;
    std::vector<NodeId> path;
    std::vector<LinkId> protectedLinks; ///< as in Protects
    std::vector<NodeId> protectedNodes;
};

/** A demand that was placed. */
struct PlannedLsp {
    std::vector<NodeId> path;
    std::optional<double> score; ///< as in Placement
    std::vector<PlannedBackup> backups;
    std::optional<Refusal> unprotected; ///< why it has no backups, if its level asks for them
};

/** A demand that was placed and had to give way to another. */
struct PreemptedLsp {
    DemandId by;
    std::optional<Refusal> retry; ///< why it could not be placed again, if that was tried
};

/** What became of a demand. One that was left out (its ends equal, no bandwidth) is a Refusal or,
 * for want of any other reason, std::monostate. */
using Outcome = std::variant<std::monostate, PlannedLsp, PreemptedLsp, Refusal>;

/** What a plan says that a link reserves, by class type and level. */
struct PlannedUse {
    std::vector<std::vector<double>> primary; ///< `[classType][level]`
    std::vector<std::vector<double>> total;
};

/** A network with demands and what became of them. */
struct Plan {
    Network network;
    PlanOptions options;
    std::vector<Demand> demands;
    std::vector<Outcome> outcomes; ///< by demand
    std::vector<PlannedUse> use;   ///< by link
    /** The placed demands in the order in which their LSPs were set up: first all primaries, then
     * their backups, LSP by LSP in the same order. Who sets them up again like this comes to the
     * same reservations bit for bit. */
    std::vector<DemandId> setUp;
};

} // namespace tarnex

#endif
