#include "formats/words.h"

#include "formats/names.h"

#include <fmt/format.h>

#include <numeric>

namespace tarnex::formats
{

std::vector<std::string> nodeWords(const Network &network, std::string_view marks)
{
    std::vector<std::string> words;
    words.reserve(network.nodes.size());
    for (const Node &node : network.nodes)
        words.push_back(wordOf(node.name, marks));
    tellApart(words);
    return words;
}

std::vector<std::string> demandWords(std::span<const Demand> demands, std::string_view prefix,
                                     std::string_view marks)
{
    std::vector<std::string> words;
    words.reserve(demands.size());
    for (const Demand &demand : demands)
        words.push_back(demand.name.empty() ? fmt::format("{}{}", prefix, words.size())
                                            : wordOf(demand.name, marks));
    tellApart(words);
    return words;
}

double totalCapacity(const Link &link)
{
    return std::accumulate(link.capacity.begin(), link.capacity.end(), 0.0);
}

bool hasClasses(const Network &network)
{
    return network.classes != std::vector<std::string>{defaultClass};
}

bool hasLevels(const Network &network)
{
    return network.levels != std::vector<std::string>{defaultLevel};
}

} // namespace tarnex::formats
