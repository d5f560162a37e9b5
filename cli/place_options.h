/** The options of `tarnex place` that say on what terms demands are placed. */
#ifndef TARNEX_CLI_PLACE_OPTIONS_H
#define TARNEX_CLI_PLACE_OPTIONS_H

#include "cli/declaration.h"
#include "formats/plan.h"

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace tarnex::cli
{

/** The words for schemes of protection, "none" among them. */
const std::vector<std::pair<std::string, LevelScheme>> &schemeNames();

/** Only what was given on the command line: the rest is that of a plan that is gone on from. */
class PlaceOptions
{
public:
    void declare(Declaration &declaration);
    /** Puts what was given into the options of a plan on a network; UsageError for a level that
     * the network does not have. */
    void applyTo(PlanOptions &options, const Network &network) const;

private:
    void declareScore(Declaration &declaration);
    void applyWeights(Weights &weights) const;

    using Setting = std::pair<std::string, double>;

    std::optional<Order> order;
    std::optional<bool> preempts;
    std::optional<std::size_t> retryRounds;
    std::vector<std::pair<std::string, LevelScheme>> protection; ///< level; empty: all of them
    std::optional<Objective> objective;
    std::vector<Setting> weights;
    std::vector<Setting> prices; ///< by level
    bool testsCapacity = true;
};

} // namespace tarnex::cli

#endif
