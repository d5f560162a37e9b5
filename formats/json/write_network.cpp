#include "formats/json/json.h"
#include "formats/json/parts.h"
#include "formats/json/schemas.h"

namespace tarnex::formats
{

namespace json
{

namespace
{

void writeNode(Output &out, const Node &node, std::size_t id)
{
    out.raw(R"({"id":)").integer(id).raw(R"(,"name":)").text(node.name);
    if (node.at)
        out.raw(R"(,"longitude":)")
            .number(node.at->longitude)
            .raw(R"(,"latitude":)")
            .number(node.at->latitude);
    if (!node.hosts.empty())
        writeNames(out.raw(R"(,"hosts":)"), node.hosts);
    out.raw("}");
}

/** Both ends, by name and by id. */
void writeEnds(Output &out, const Network &network, NodeId from, NodeId to)
{
    out.raw(R"("from":)").text(network.nodes.at(from.index()).name);
    out.raw(R"(,"to":)").text(network.nodes.at(to.index()).name);
    out.raw(R"(,"fromId":)").integer(from.index());
    out.raw(R"(,"toId":)").integer(to.index());
}

void writeLink(Output &out, const Network &network, const Link &link, std::size_t id)
{
    out.raw(R"({"id":)").integer(id).raw(",");
    writeEnds(out, network, link.from, link.to);
    out.raw(R"(,"capacity":)")
        .list(link.capacity, [&](double value) { out.number(value); })
        .raw("}");
}

/** Class, level and bandwidth. */
void writeTerms(Output &out, const Network &network, const Demand &demand)
{
    if (!network.classes.empty())
        out.raw(R"(,"class":)")
            .text(network.classes.at(static_cast<std::size_t>(demand.classType)));
    if (!network.levels.empty())
        out.raw(R"(,"level":)").text(network.levels.at(static_cast<std::size_t>(demand.level)));
    out.raw(R"(,"bandwidth":)").number(demand.bandwidth);
}

} // namespace

void writeNames(Output &out, const std::vector<std::string> &names)
{
    out.list(names, [&](const std::string &name) { out.text(name); });
}

void beginDocument(Output &out, std::string_view schema)
{
    out.raw(R"({"schema":)").text(schema).raw(R"(,"version":)").integer(schemaVersion).raw(",\n");
}

void writeNetworkMembers(Output &out, const Network &network)
{
    out.raw(R"("name":)").text(network.name).raw(R"(,"unit":)").text(network.unit).raw(",\n");
    writeNames(out.raw(R"("classes":)"), network.classes);
    writeNames(out.raw(R"(,"levels":)"), network.levels);
    std::size_t id = 0;
    out.raw(",\n\"nodes\":")
        .list(
            network.nodes, [&](const Node &node) { writeNode(out, node, id++); }, "\n");
    id = 0;
    out.raw(",\n\"links\":")
        .list(
            network.links, [&](const Link &link) { writeLink(out, network, link, id++); }, "\n");
}

void writeDemandMembers(Output &out, const Network &network, const Demand &demand, std::size_t id)
{
    out.raw(R"("id":)").integer(id).raw(",");
    if (!demand.name.empty())
        out.raw(R"("name":)").text(demand.name).raw(",");
    writeEnds(out, network, demand.ingress, demand.egress);
    writeTerms(out, network, demand);
}

} // namespace json

void writeNetwork(std::ostream &stream, const Network &network, std::span<const Demand> demands)
{
    json::Output out(stream);
    json::beginDocument(out, json::networkSchema);
    json::writeNetworkMembers(out, network);
    std::size_t id = 0;
    out.raw(",\n\"demands\":")
        .list(
            demands,
            [&](const Demand &demand) {
                json::writeDemandMembers(out.raw("{"), network, demand, id++);
                out.raw("}");
            },
            "\n");
    out.raw("}\n").finish();
}

void writeDemands(std::ostream &stream, const Network &network, std::span<const Demand> demands)
{
    json::Output out(stream);
    json::beginDocument(out, json::demandsSchema);
    out.raw(R"("unit":)").text(network.unit);
    if (!network.classes.empty())
        json::writeNames(out.raw(R"(,"classes":)"), network.classes);
    if (!network.levels.empty())
        json::writeNames(out.raw(R"(,"levels":)"), network.levels);
    out.raw(",\n\"demands\":")
        .list(
            demands,
            [&](const Demand &demand) {
                out.raw("{");
                if (!demand.name.empty())
                    out.raw(R"("name":)").text(demand.name).raw(",");
                out.raw(R"("from":)").text(network.nodes.at(demand.ingress.index()).name);
                out.raw(R"(,"to":)").text(network.nodes.at(demand.egress.index()).name);
                json::writeTerms(out, network, demand);
                out.raw("}");
            },
            "\n");
    out.raw("}\n").finish();
}

} // namespace tarnex::formats
