/** Numbers in files, and the units of bandwidth. */
#ifndef TARNEX_FORMATS_NUMBER_H
#define TARNEX_FORMATS_NUMBER_H

#include <cstddef>
#include <optional>
#include <string_view>

namespace tarnex::formats
{

/** Far above any bandwidth there is, and far enough below infinity for sums and other units. */
inline constexpr double largestBandwidth = 1e100;

/** A text that is a finite number and nothing else. */
std::optional<double> numberIn(std::string_view text);

/** A text that is an integer of 0 or more, without a sign, and nothing else. */
std::optional<std::size_t> positionIn(std::string_view text);

/** How many bit/s a unit of bandwidth is, from "bit/s" to "Tbit/s"; nothing for any other. */
std::optional<double> bitsPerSecond(std::string_view unit);

} // namespace tarnex::formats

#endif
