#include "formats/keys.h"
#include "formats/parsers.h"
#include "formats/xml.h"

#include <fmt/format.h>
#include <tarnex/options.h>

#include <array>
#include <cstring>
#include <map>

namespace tarnex::formats
{

namespace
{

/** Attribute ids by what they are declared for and by the attribute's name. */
class KeyTable
{
public:
    explicit KeyTable(const XmlDocument &document)
    {
        for (const pugi::xml_node key : document.root().children("key")) {
            const char *domain = key.attribute("for").as_string("all");
            ids[{domain, key.attribute("attr.name").value()}] = document.attribute(key, "id");
        }
    }

    /** The id of an attribute of nodes, edges or the graph; null when none is declared. */
    const char *idOf(const char *domain, const std::string &name) const
    {
        auto found = ids.find({domain, name});
        if (found == ids.end())
            found = ids.find({"all", name});
        return found == ids.end() ? nullptr : found->second;
    }

private:
    std::map<std::pair<std::string, std::string>, const char *> ids;
};

pugi::xml_node dataOf(pugi::xml_node element, const char *id)
{
    return id ? element.find_child_by_attribute("data", "key", id) : pugi::xml_node{};
}

class GraphmlParser
{
public:
    GraphmlParser(std::string_view text, const std::string &file)
        : document(text, file, "graphml"), keys(document)
    {
    }

    Source parse()
    {
        const pugi::xml_node graph = document.root().child("graph");
        if (!graph)
            document.fail(document.root(), "expected a <graph> in <graphml>");
        readGraph(graph);
        if (const pugi::xml_node next = graph.next_sibling("graph"))
            source.remarks.note("further graphs", "left out", next.attribute("id").value());
        return std::move(source);
    }

private:
    void readGraph(pugi::xml_node graph)
    {
        const std::string_view directed = document.attribute(graph, "edgedefault");
        if (directed != "directed" && directed != "undirected")
            document.fail(graph, R"(expected edgedefault="directed" or "undirected")");
        source.isDirected = directed == "directed";
        source.name = graphData(graph, "label");
        if (source.name.empty())
            source.name = graphData(graph, "Network");
        readOwn(graph);
        findCapacities();
        for (const pugi::xml_node child : graph.children())
            if (std::strcmp(child.name(), "node") == 0)
                readNode(child);
            else if (std::strcmp(child.name(), "edge") == 0)
                readEdge(child);
            else if (std::strcmp(child.name(), "hyperedge") == 0)
                source.remarks.note("hyperedges", "left out", child.attribute("id").value());
    }

    std::string graphData(pugi::xml_node graph, const std::string &name) const
    {
        return dataOf(graph, keys.idOf("graph", name)).child_value();
    }

    /** What our own writer adds: unit, classes and levels. */
    void readOwn(pugi::xml_node graph)
    {
        source.unit = graphData(graph, ownKeys.unit);
        for (std::size_t i = 0; i <= maxClassTypes && keys.idOf("graph", ownKeys.classType(i)); ++i)
            source.classes.push_back(graphData(graph, ownKeys.classType(i)));
        for (std::size_t i = 0; i <= maxLevels && keys.idOf("graph", ownKeys.level(i)); ++i)
            source.levels.push_back(graphData(graph, ownKeys.level(i)));
    }

    void findCapacities()
    {
        for (std::size_t i = 0; i < source.classes.size(); ++i)
            if (const char *id = keys.idOf("edge", ownKeys.capacity(i)))
                capacityIds.push_back(id);
        if (capacityIds.size() != source.classes.size() || capacityIds.empty())
            capacityIds.assign(1, keys.idOf("edge", "capacity"));
        if (!capacityIds[0]) {
            capacityIds[0] = keys.idOf("edge", "LinkSpeedRaw");
            if (capacityIds[0])
                source.unit = "bit/s";
        }
    }

    void readNode(pugi::xml_node element)
    {
        SourceNode node;
        node.key = document.attribute(element, "id");
        node.line = document.lineOf(element);
        node.name = dataOf(element, keys.idOf("node", "label")).child_value();
        const pugi::xml_node longitude = dataOf(element, keys.idOf("node", "Longitude"));
        const pugi::xml_node latitude = dataOf(element, keys.idOf("node", "Latitude"));
        if (longitude && latitude)
            node.at = Coordinates{document.number(longitude, "the longitude"),
                                  document.number(latitude, "the latitude")};
        if (const pugi::xml_node nested = element.child("graph"))
            source.remarks.note("graphs in nodes", "left out", node.key);
        source.nodes.push_back(std::move(node));
    }

    void readEdge(pugi::xml_node element)
    {
        SourceEdge edge;
        edge.from = document.attribute(element, "source");
        edge.to = document.attribute(element, "target");
        edge.line = document.lineOf(element);
        if (const pugi::xml_attribute directed = element.attribute("directed"))
            edge.isDirected = directed.as_bool();
        for (const char *id : capacityIds)
            if (const pugi::xml_node capacity = dataOf(element, id))
                edge.capacity.push_back(document.number(capacity, "a capacity"));
        if (edge.capacity.size() != capacityIds.size() && !edge.capacity.empty())
            document.fail(element, fmt::format("expected a capacity for each of the {} classes",
                                               capacityIds.size()));
        source.edges.push_back(std::move(edge));
    }

    XmlDocument document;
    KeyTable keys;
    Source source;
    std::vector<const char *> capacityIds; ///< one, which may be null, or one per class
};

} // namespace

Source parseGraphml(std::string_view text, const std::string &file)
{
    return GraphmlParser(text, file).parse();
}

} // namespace tarnex::formats
