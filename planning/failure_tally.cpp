#include "planning/failure_tally.h"

#include <algorithm>

namespace tarnex::planning
{

void FailureTally::dropLowPeaks(FailureEffect &effect) const
{
    std::erase_if(effect.peaks, [this](const LinkPeak &peak) {
        return peak.share <= worst[peak.link.index()].share;
    });
}

void FailureTally::add(FailureName name, const FailureEffect &effect)
{
    const std::size_t position = failures.size();
    failures.push_back({std::move(name), effect.all, effect.overloads.size()});
    for (std::size_t level = 0; level < levels.size(); ++level)
        levels[level] += effect.levels[level];
    for (const LinkPeak &peak : effect.peaks) {
        const std::size_t link = peak.link.index();
        if (peak.share > worst[link].share) {
            worst[link] = peak;
            worstFailure[link] = position;
        }
    }
    for (const Overload &overload : effect.overloads)
        overloads.emplace_back(position, overload);
    for (const FailedLsp &lsp : effect.lsps)
        if (lsp.fate == Fate::lost || lsp.fate == Fate::displaced)
            lost.emplace_back(position, lsp);
}

bool FailureTally::isHarmless() const
{
    return std::ranges::all_of(failures, [](const Figures &failure) {
        return failure.all.lost.number == 0 && failure.all.displaced.number == 0 &&
               failure.nbOverloads == 0;
    });
}

} // namespace tarnex::planning
