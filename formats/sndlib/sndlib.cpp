#include "formats/sndlib/sndlib.h"

#include <algorithm>
#include <array>
#include <map>
#include <utility>

namespace tarnex::formats
{

namespace
{

constexpr std::array<std::pair<std::string_view, std::string_view>, 5> unitNames{
    {{"BITSPERSEC", "bit/s"},
     {"KBITPERSEC", "kbit/s"},
     {"MBITPERSEC", "Mbit/s"},
     {"GBITPERSEC", "Gbit/s"},
     {"TBITPERSEC", "Tbit/s"}}};

bool listsBothDirections(const std::vector<SourceEdge> &edges)
{
    std::map<std::pair<std::string_view, std::string_view>, long> balance;
    for (const SourceEdge &edge : edges) {
        const bool isForward = edge.from < edge.to;
        const auto &[low, high] = std::minmax(edge.from, edge.to);
        balance[{low, high}] += isForward ? 1 : -1;
    }
    return !edges.empty() && std::all_of(balance.begin(), balance.end(),
                                         [](const auto &pair) { return pair.second == 0; });
}

} // namespace

std::vector<double> SndlibCapacity::total() const
{
    if (installed == 0.0 && !hasModules())
        return {};
    return {installed + largestModule.value_or(0.0)};
}

std::string unitFromSndlib(std::string_view unit)
{
    for (const auto &[theirs, ours] : unitNames)
        if (unit == theirs)
            return std::string(ours);
    return std::string(unit);
}

std::string unitForSndlib(std::string_view unit)
{
    for (const auto &[theirs, ours] : unitNames)
        if (unit == ours)
            return std::string(theirs);
    return std::string(unit);
}

void completeSndlib(Source &source, bool saysDirected, std::size_t nbLinksWithModules)
{
    const bool listsBoth = !saysDirected && listsBothDirections(source.edges);
    source.isDirected = saysDirected || listsBoth;
    if (listsBoth)
        source.remarks.choose(counted(source.edges.size(), "link"),
                              "taken as directed: each is listed in both directions");
    if (nbLinksWithModules > 0)
        source.remarks.choose("capacity of " + counted(nbLinksWithModules, "link"),
                              "taken as pre-installed plus the largest module");
}

} // namespace tarnex::formats
