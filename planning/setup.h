/**
 * From a plan to an engine that carries it. The LSP of a demand has the demand's id; backups have
 * the ids from the number of demands on, in the order of setting up.
 */
#ifndef TARNEX_PLANNING_SETUP_H
#define TARNEX_PLANNING_SETUP_H

#include "formats/plan.h"

#include <tarnex/engine.h>

#include <optional>
#include <stdexcept>
#include <string>

namespace tarnex::planning
{

/** A plan that cannot be set up; the text names the LSP and says why. */
class SetUpError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/** The id of a demand's LSP, and back. */
constexpr LspId lspOf(DemandId demand) { return LspId{demand.value}; }
constexpr DemandId demandOf(LspId primary) { return DemandId{primary.value}; }

/** The options with the class types and levels of a network. WrongUse when it has too many. */
Options optionsFor(const Network &network, Options options);

/** An engine with the nodes and links of a network and no LSPs. */
Engine engineOf(const Network &network, const Options &options);

/** What is asked of an engine to place a demand. */
Request requestOf(const Demand &demand, DemandId id, bool mayPreempt);

/** Sets up the LSP of a demand, without its backups. */
std::optional<Refusal> setUpPrimary(Engine &engine, const Demand &demand, DemandId id,
                                    const PlannedLsp &lsp);

/** Sets up the backups of a demand's LSP, under the ids from `first` on; a refusal leaves none of
 * them set up. */
std::optional<Refusal> setUpBackups(Engine &engine, DemandId id, const PlannedLsp &lsp,
                                    LspId first);

/** An engine with all LSPs of a plan, set up in the plan's order. SetUpError when one is refused;
 * WrongUse when the plan is not sound. */
Engine setUp(const Plan &plan);
/** The same without backups, and with options of one's own. */
Engine setUpPrimaries(const Plan &plan, const Options &options);

/** A backup that an engine has set up, as a plan has it. */
PlannedBackup plannedBackup(const Lsp &backup);

/** What an engine reserves on a link, as a plan has it. */
PlannedUse plannedUse(const Engine &engine, LinkId link);

} // namespace tarnex::planning

#endif
