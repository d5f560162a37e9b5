/**
 * What failures need of a link at most, in the plain form that checks the engine's: every failure
 * is looked at, with nothing but the tables of the link.
 */
#ifndef TARNEX_PLANNING_LARGEST_NEEDS_H
#define TARNEX_PLANNING_LARGEST_NEEDS_H

#include <algorithm>
#include <cstddef>
#include <functional>
#include <vector>

namespace tarnex::planning
{

/**
 * The largest need over all failures, by level, each counting the levels up to it; at least 0.
 *
 * @param failures what can fail; `linksOf` has the links that fail together, which are added up in
 *        their order
 * @param needed what backups take on the link, `needed(failing, level)`
 * @param freed what primaries leave there, `freed(failing, level)`
 */
template <class Failures, class Needed, class Freed, class LinksOf = std::identity>
std::vector<double> largestNeeds(const Failures &failures, std::size_t nbLevels, Needed needed,
                                 Freed freed, LinksOf linksOf = {})
{
    std::vector<double> largest(nbLevels);
    for (const auto &failure : failures) {
        double taken = 0.0;
        double left = 0.0;
        for (std::size_t level = 0; level < nbLevels; ++level) {
            for (const auto failing : std::invoke(linksOf, failure)) {
                taken += needed(failing, level);
                left += freed(failing, level);
            }
            largest[level] = std::max(largest[level], taken - left);
        }
    }
    return largest;
}

} // namespace tarnex::planning

#endif
