/** The last double for which something holds. */
#ifndef TARNEX_API_BISECTION_H
#define TARNEX_API_BISECTION_H

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <optional>

namespace tarnex::inside
{

/**
 * Finds a double for which `holds` is true, with the next larger one for which it is not: the last
 * one, where it is true up to some number. Gallops from a guess and then halves, so a good guess
 * costs a few questions and a bad one 64 or so.
 *
 * @param holdsAt a number of 0 or more for which it holds; it is not asked
 * @param failsAt a larger one for which it does not; it is not asked
 */
template <class Holds>
double lastHolding(double holdsAt, double failsAt, double guess, Holds holds)
{
    // Doubles of 0 or more are ordered as their bits are.
    auto low = std::bit_cast<std::uint64_t>(holdsAt);
    auto high = std::bit_cast<std::uint64_t>(failsAt);
    const auto ask = [&](std::uint64_t at) {
        const bool isHeld = holds(std::bit_cast<double>(at));
        (isHeld ? low : high) = at;
        return isHeld;
    };
    const auto start = std::bit_cast<std::uint64_t>(std::max(guess, 0.0));
    if (low < start && start < high) {
        const bool climbs = ask(start);
        // NOLINTNEXTLINE(bugprone-infinite-loop): asking moves low or high
        for (std::uint64_t step = 1; high - low > step; step *= 2) {
            if (ask(climbs ? low + step : high - step) != climbs)
                break;
        }
    }
    while (high - low > 1) // NOLINT(bugprone-infinite-loop): likewise
        ask(low + (high - low) / 2);
    return std::bit_cast<double>(low);
}

/**
 * The same downwards from a number that is the last one but for rounding: the number itself, if it
 * holds, or else the first found below it; nothing when it does not even hold for 0.
 */
template <class Holds>
std::optional<double> lastHoldingBelow(double about, Holds holds)
{
    if (holds(about))
        return about;
    for (int exponent = -50; exponent < 0; ++exponent) {
        const double low = about * (1.0 - std::ldexp(1.0, exponent));
        if (holds(low))
            return lastHolding(low, about, low, holds);
    }
    if (about <= 0.0 || !holds(0.0))
        return std::nullopt;
    return lastHolding(0.0, about, 0.0, holds);
}

} // namespace tarnex::inside

#endif
