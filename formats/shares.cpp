#include "formats/shares.h"

#include "formats/remarks.h"

#include <fmt/format.h>
#include <tarnex/options.h>

#include <algorithm>
#include <cmath>
#include <set>

namespace tarnex::formats
{

void checkShares(const std::vector<Share> &shares, std::string_view option, Total total)
{
    constexpr double margin = 1e-9;
    const auto fail = [&](const std::string &problem) {
        throw InputError(std::string(option), 0, 0, problem);
    };
    std::set<std::string> names;
    double sum = 0.0;
    for (const Share &part : shares) {
        if (!(part.share > 0.0) || !(part.share <= 1.0 + margin))
            fail(fmt::format("the share of {} is {:g} %, not above 0 and up to 100 %", part.name,
                             part.share * 100.0));
        if (part.name.empty() || !names.insert(part.name).second)
            fail(fmt::format("expected different names, not '{}' again", part.name));
        sum += part.share;
    }
    if (shares.size() > static_cast<std::size_t>(std::max(maxClassTypes, maxLevels)))
        fail(fmt::format("{} shares, at most {} are possible", shares.size(), maxLevels));
    if (sum > 1.0 + margin || (total == Total::one && sum < 1.0 - margin))
        fail(fmt::format("the shares add up to {:g} %, not to 100 %", sum * 100.0));
}

std::vector<std::string> namesOf(const std::vector<Share> &shares)
{
    std::vector<std::string> names;
    for (const Share &part : shares)
        names.push_back(part.name);
    return names;
}

std::size_t Turns::next()
{
    ++nbTurns;
    std::size_t best = 0;
    double most = -INFINITY;
    for (std::size_t i = 0; i < shares.size(); ++i) {
        const double due =
            shares[i].share * static_cast<double>(nbTurns) - static_cast<double>(nbTaken[i]);
        if (due > most) {
            most = due;
            best = i;
        }
    }
    ++nbTaken[best];
    return best;
}

} // namespace tarnex::formats
