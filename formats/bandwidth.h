/** Bandwidths as people type and read them. */
#ifndef TARNEX_FORMATS_BANDWIDTH_H
#define TARNEX_FORMATS_BANDWIDTH_H

#include <stdexcept>
#include <string>
#include <string_view>

namespace tarnex::formats
{

/** A text that is no bandwidth; says what was expected. */
class BandwidthError : public std::invalid_argument
{
public:
    using std::invalid_argument::invalid_argument;
};

/**
 * What a person types, "2G", "500M", "64k", "1.5", "2e3", in a network's unit. A plain number is in
 * that unit; a suffix k, M, G or T stands for 10^3 to 10^12 bit/s or, if the unit is none that is
 * known, for so many of the unit. The result is the double next to what was typed: "2G" in Mbit/s
 * is 2000.
 */
double parseBandwidth(std::string_view text, std::string_view unit);

/** A bandwidth for people: six significant digits at most, or all before the point where these are
 * more, and an exponent only below 0.0001 and from 10^15 on. Without the unit. */
std::string formatBandwidth(double bandwidth);

} // namespace tarnex::formats

#endif
