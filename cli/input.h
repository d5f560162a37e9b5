/** Reading networks, demands and plans for a command: the options, and what is said on the way. */
#ifndef TARNEX_CLI_INPUT_H
#define TARNEX_CLI_INPUT_H

#include "cli/declaration.h"
#include "formats/read.h"

#include <string>
#include <utility>

namespace tarnex::cli
{

/** How input is read. */
struct InputOptions {
    formats::ReadOptions reading;
    std::string demands; ///< a file with demands; empty: those of the network's file

    /** Declares `--demands`. */
    void declareDemands(Declaration &declaration);
    /** Declares the choices that formats leave open. */
    void declareReading(Declaration &declaration);
};

/** What was read: a network with demands, or a plan with further demands beside it. */
struct NetworkInput {
    formats::Format format = formats::Format::json;
    Network network;
    std::vector<Demand> demands; ///< all of them; with a plan: those of the file of demands
    std::optional<Plan> plan;    ///< has the network, and demands of its own

    const Network &theNetwork() const { return plan ? plan->network : network; }
};

/** Reads a file and, if one is given, the file of demands; InputError. Remarks go to standard
 * error. */
NetworkInput readInput(const std::string &file, const InputOptions &options);

/** Reads a plan; InputError when the file is something else. */
Plan readPlan(const std::string &file);

/** A plan, and what tells its file from others (formats::digestOf). */
struct DigestedPlan {
    Plan plan;
    std::string digest;
};

/** The same, where it has to be known which file it was. */
DigestedPlan readDigestedPlan(const std::string &file);

/** Reads two plans to compare; UsageError when they count bandwidth in different units. */
std::pair<Plan, Plan> readPlans(const std::string &before, const std::string &after);

/** "30%" or "0.3", 1 at most; UsageError. */
double shareFrom(const std::string &text, const std::string &what);

/** "500", or "2G" in bits per second, in a network's unit; UsageError. */
double bandwidthFrom(const std::string &text, const std::string &unit, const std::string &what);

/** The class or level of a name; UsageError, with the names that there are, when there is none. */
std::size_t indexNamed(const std::vector<std::string> &names, const std::string &name,
                       const char *what);

/** Says what was found odd, a line each. */
void tell(const Remarks &remarks);

} // namespace tarnex::cli

#endif
