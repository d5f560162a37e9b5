/** Plans as documents tell of them. People see names; ids stand beside them in files. */
#ifndef TARNEX_CLI_PLAN_TABLES_H
#define TARNEX_CLI_PLAN_TABLES_H

#include "cli/document.h"
#include "formats/plan.h"
#include "planning/explain.h"
#include "planning/summary.h"

#include <span>
#include <string>
#include <vector>

namespace tarnex::cli
{

/** The names along a path. */
NodeNames namesOf(const Network &network, std::span<const NodeId> path);

/** What became of the demands, level by level and altogether. */
Table levelsOf(const Plan &plan, const planning::Summary &summary);
/** Why demands and backups were refused. */
Table reasonsOf(const planning::Summary &summary);
/** How many LSPs of each level are protected against what. */
Table coverageOf(const Plan &plan, const planning::Summary &summary);
/** What protection costs, shared and if it were not. */
Facts protectionCost(const planning::Summary &summary);
/** Links and how full they are: those of a summary. */
Table loadsOf(const Plan &plan, const std::vector<planning::LinkLoad> &loads, std::string key,
              std::string title);

/** Every LSP. */
Table lspsOf(const Plan &plan);
/** Every backup. */
Table backupsOf(const Plan &plan);
/** Every demand without an LSP, and every LSP without the backups it was to have. */
Table refusalsOf(const Plan &plan);

/** Backups of one LSP, with what each protects. */
void addBackups(Table &table, const Network &network, const PlannedLsp &lsp,
                const std::string &demand);
/** An empty table for them. */
Table backupTable();
/** The links in the way of a request. */
Table linksInTheWay(const planning::NamedRefusal &refusal);

} // namespace tarnex::cli

#endif
