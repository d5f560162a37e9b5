#include "cli/command.h"
#include "cli/input.h"
#include "cli/output.h"
#include "planning/names.h"
#include "planning/network_facts.h"

#include <algorithm>
#include <fmt/format.h>

namespace tarnex::cli
{

namespace
{

enum class List { none, nodes, links, demands };

const std::vector<std::pair<std::string, List>> &listNames()
{
    static const std::vector<std::pair<std::string, List>> all{
        {"nodes", List::nodes}, {"links", List::links}, {"demands", List::demands}};
    return all;
}

Facts factsOf(const planning::NetworkFacts &found, const Network &network, formats::Format format)
{
    const std::size_t nbParts = found.components.size();
    return {
        "network",
        "Network",
        {{"name", "name", network.name.empty() ? Cell{} : Cell{network.name}},
         {"format", "format", std::string{formats::nameOf(format)}},
         {"nodes", "nodes", number(found.nbNodes)},
         {"links", "directed links", number(found.nbLinks)},
         {"oneWayLinks", "of these without a way back", number(found.linksWithoutReverse.size())},
         {"averageDegree", "links out of a node, on average", found.averageDegree},
         {"isConnected", "every node reaches every other", truth(nbParts <= 1)},
         {"components", "sets of nodes that do", number(nbParts)},
         {"isolatedNodes", "nodes without links", number(found.nbIsolated)},
         {"diameter", "diameter, in links", number(found.diameter)},
         {"demands", "demands", number(found.allDemands.number)},
         {"demandedBandwidth", "demanded altogether", Bandwidth{found.allDemands.bandwidth}}}};
}

Table capacitiesOf(const planning::NetworkFacts &found, const Network &network)
{
    Table table{.key = "capacities",
                .title = "Capacities of the links",
                .columns = {{"class", "class"},
                            {"smallest", "smallest"},
                            {"largest", "largest"},
                            {"total", "all together"}}};
    for (std::size_t i = 0; i < network.classes.size(); ++i)
        table.rows.push_back({network.classes[i], Bandwidth{found.capacity[i].smallest},
                              Bandwidth{found.capacity[i].largest},
                              Bandwidth{found.capacity[i].total}});
    return table;
}

Table demandsPerLevel(const planning::NetworkFacts &found, const Network &network)
{
    Table table{.key = "demandsPerLevel",
                .title = "Demands",
                .columns = {{"class", "class"},
                            {"level", "level"},
                            {"number", "number"},
                            {"bandwidth", "bandwidth"}},
                .ifEmpty = "No demands"};
    for (std::size_t i = 0; i < network.classes.size(); ++i)
        for (std::size_t level = 0; level < network.levels.size(); ++level)
            if (const planning::Amount &amount = found.demands[i][level]; amount.number > 0)
                table.rows.push_back({network.classes[i], network.levels[level],
                                      number(amount.number), Bandwidth{amount.bandwidth}});
    return table;
}

Table nodesOf(const Network &network)
{
    Table table{
        .key = "nodes",
        .columns = {
            {"id", ""}, {"name", "node"}, {"longitude", "longitude"}, {"latitude", "latitude"}}};
    for (std::size_t i = 0; i < network.nodes.size(); ++i) {
        const Node &node = network.nodes[i];
        auto &row = table.rows.emplace_back();
        row = {number(i), node.name, {}, {}};
        if (node.at) {
            row[2] = node.at->longitude;
            row[3] = node.at->latitude;
        }
    }
    return table;
}

Table linksOf(const Network &network)
{
    Table table{.key = "links", .columns = {{"id", ""}, {"from", "from"}, {"to", "to"}}};
    for (const std::string &name : network.classes)
        table.columns.push_back(
            {network.classes.size() == 1 ? "capacity" : "capacity " + name, "capacity, " + name});
    for (std::size_t i = 0; i < network.links.size(); ++i) {
        const Link &link = network.links[i];
        auto &row = table.rows.emplace_back();
        row = {number(i), network.nameOf(link.from), network.nameOf(link.to)};
        for (const double capacity : link.capacity)
            row.emplace_back(Bandwidth{capacity});
    }
    return table;
}

Table demandsOf(const Network &network, const std::vector<Demand> &demands)
{
    Table table{.key = "demandList",
                .columns = {{"id", ""},
                            {"name", "name"},
                            {"from", "from"},
                            {"to", "to"},
                            {"class", "class"},
                            {"level", "level"},
                            {"bandwidth", "bandwidth"}},
                .ifEmpty = "No demands"};
    for (std::size_t i = 0; i < demands.size(); ++i) {
        const Demand &demand = demands[i];
        table.rows.push_back(
            {number(i), demand.name, network.nameOf(demand.ingress), network.nameOf(demand.egress),
             network.classes[static_cast<std::size_t>(demand.classType)],
             network.levels[static_cast<std::size_t>(demand.level)], Bandwidth{demand.bandwidth}});
    }
    return table;
}

class ShowCommand : public Command
{
public:
    const Page &page() const override
    {
        static const Page page{
            .name = "show",
            .summary = "tells what is in a file: nodes, links, capacities, demands",
            .purpose =
                R"(Reads a network, with the demands in its file or in another one, and tells what is in it: how many nodes and links, the capacities per class, the demands per class and level, whether every node reaches every other, and how far apart the two farthest ones are. A plan is read like a network.

With --list it prints all nodes, links or demands instead.)",
            .examples = {{"A network of the text format:", "tarnex show abilene/abilene.network"},
                         {"With demands from a file of their own:",
                          "tarnex show abilene/abilene.network --demands abilene/abilene.demands"},
                         {"All links, for a spreadsheet:",
                          "tarnex show abilene/abilene.network --list links --csv"}},
            .findings = {}};
        return page;
    }

    void declare(Declaration &declaration) override
    {
        declaration.file("FILE", "A network or a plan, in any of the formats", file);
        input.declareDemands(declaration);
        declaration.choice("--list", "WHAT", "Prints a list instead: nodes, links or demands",
                           listNames(), list);
        input.declareReading(declaration);
        declareForms(declaration, form, "the list, or the facts");
    }

    ExitStatus run() override
    {
        const NetworkInput read = readInput(file, input);
        const Network &network = read.theNetwork();
        const std::vector<Demand> &demands =
            read.plan && input.demands.empty() ? read.plan->demands : read.demands;
        Document document{"show", network.unit, {}};
        if (list == List::none)
            document.sections = overviewOf(read, network, demands);
        else
            document.sections.emplace_back(listOf(network, demands));
        print(document, form);
        return ExitStatus::done;
    }

private:
    static std::vector<Section> overviewOf(const NetworkInput &read, const Network &network,
                                           const std::vector<Demand> &demands)
    {
        const planning::NetworkFacts found = planning::factsOf(network, demands);
        return {factsOf(found, network, read.format), capacitiesOf(found, network),
                demandsPerLevel(found, network)};
    }

    Table listOf(const Network &network, const std::vector<Demand> &demands) const
    {
        switch (list) {
        case List::nodes:
            return nodesOf(network);
        case List::links:
            return linksOf(network);
        default:
            return demandsOf(network, demands);
        }
    }

    std::string file;
    InputOptions input;
    List list = List::none;
    Form form = Form::text;
};

} // namespace

std::unique_ptr<Command> makeShow() { return std::make_unique<ShowCommand>(); }

} // namespace tarnex::cli
