/** What the native and the XML form of SNDlib files have in common. */
#ifndef TARNEX_FORMATS_SNDLIB_SNDLIB_H
#define TARNEX_FORMATS_SNDLIB_SNDLIB_H

#include "formats/source.h"

#include <algorithm>
#include <optional>
#include <string>
#include <string_view>

namespace tarnex::formats
{

/** The capacity of a link; module capacities are offered one by one. */
class SndlibCapacity
{
public:
    void install(double capacity) { installed = capacity; }
    void offerModule(double capacity)
    {
        largestModule = std::max(largestModule.value_or(0.0), capacity);
    }
    bool hasModules() const { return largestModule.has_value(); }
    /** Pre-installed plus the largest module; empty when there is neither. */
    std::vector<double> total() const;

private:
    double installed = 0.0;
    std::optional<double> largestModule;
};

/** "Mbit/s" for "MBITPERSEC" and its like, and back; anything else as it is. */
std::string unitFromSndlib(std::string_view unit);
std::string unitForSndlib(std::string_view unit);

/**
 * Completes a parsed file: its links are lines in both directions unless it says that they are
 * directed (`saysDirected`) or lists each of them in both directions; the choice of modules is
 * remarked.
 */
void completeSndlib(Source &source, bool saysDirected, std::size_t nbLinksWithModules);

/** Begins the second line of a native file, which ends in the name of the network. */
inline constexpr std::string_view networkComment = "# network ";

/** Value of the META attribute `link_model` of a file whose links are directed. */
inline constexpr std::string_view directedModel = "DIRECTED";

} // namespace tarnex::formats

#endif
