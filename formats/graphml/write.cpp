#include "formats/keys.h"
#include "formats/words.h"
#include "formats/writers.h"

#include <fmt/format.h>
#include <pugixml.hpp>

namespace tarnex::formats
{

namespace
{

/** Builds the document; the ids of its attributes are their names. */
class GraphmlWriter
{
public:
    explicit GraphmlWriter(const Network &described) : network(described)
    {
        root = document.append_child("graphml");
        root.append_attribute("xmlns") = "http://graphml.graphdrawing.org/xmlns";
        addKeys();
        graph = root.append_child("graph");
        graph.append_attribute("edgedefault") = "directed";
        addGraphData();
        for (std::size_t i = 0; i < network.nodes.size(); ++i)
            addNode(i);
        for (const Link &link : network.links)
            addEdge(link);
    }

    void save(std::ostream &out) const { document.save(out, "  "); }

private:
    void addKey(const char *domain, const std::string &name, const char *type)
    {
        pugi::xml_node key = root.append_child("key");
        key.append_attribute("id") = (std::string(domain) + "-" + name).c_str();
        key.append_attribute("for") = domain;
        key.append_attribute("attr.name") = name.c_str();
        key.append_attribute("attr.type") = type;
    }

    static void addData(pugi::xml_node element, const std::string &name, const std::string &value)
    {
        pugi::xml_node data = element.append_child("data");
        data.append_attribute("key") = (std::string(element.name()) + "-" + name).c_str();
        data.text() = value.c_str();
    }

    void addKeys()
    {
        addKey("graph", "label", "string");
        addKey("graph", ownKeys.unit, "string");
        if (hasClasses(network))
            for (std::size_t i = 0; i < network.classes.size(); ++i)
                addKey("graph", ownKeys.classType(i), "string");
        if (hasLevels(network))
            for (std::size_t i = 0; i < network.levels.size(); ++i)
                addKey("graph", ownKeys.level(i), "string");
        addKey("node", "label", "string");
        addKey("node", "Longitude", "double");
        addKey("node", "Latitude", "double");
        for (std::size_t i = 0; i < network.classes.size(); ++i)
            addKey("edge", capacityName(i), "double");
    }

    std::string capacityName(std::size_t classType) const
    {
        return hasClasses(network) ? ownKeys.capacity(classType) : "capacity";
    }

    void addGraphData()
    {
        addData(graph, "label", network.name);
        addData(graph, ownKeys.unit, network.unit);
        if (hasClasses(network))
            for (std::size_t i = 0; i < network.classes.size(); ++i)
                addData(graph, ownKeys.classType(i), network.classes[i]);
        if (hasLevels(network))
            for (std::size_t i = 0; i < network.levels.size(); ++i)
                addData(graph, ownKeys.level(i), network.levels[i]);
    }

    static std::string idOf(std::size_t node) { return std::to_string(node); }

    void addNode(std::size_t i)
    {
        pugi::xml_node element = graph.append_child("node");
        element.append_attribute("id") = idOf(i).c_str();
        addData(element, "label", network.nodes[i].name);
        if (const auto &at = network.nodes[i].at) {
            addData(element, "Longitude", fmt::format("{}", at->longitude));
            addData(element, "Latitude", fmt::format("{}", at->latitude));
        }
    }

    void addEdge(const Link &link)
    {
        pugi::xml_node element = graph.append_child("edge");
        element.append_attribute("source") = idOf(link.from.index()).c_str();
        element.append_attribute("target") = idOf(link.to.index()).c_str();
        for (std::size_t i = 0; i < link.capacity.size(); ++i)
            addData(element, capacityName(i), fmt::format("{}", link.capacity[i]));
    }

    const Network &network;
    pugi::xml_document document;
    pugi::xml_node root;
    pugi::xml_node graph;
};

} // namespace

void writeGraphml(std::ostream &out, const Network &network) { GraphmlWriter(network).save(out); }

} // namespace tarnex::formats
