#include "formats/json/json.h"
#include "formats/json/shape.h"
#include "formats/place.h"

#include <utility>

namespace tarnex::formats
{

namespace json
{

namespace
{

/** A file while it is being read. */
struct Graph {
    explicit Graph(std::string_view content) : text(content), lines(content) {}

    TextStream text;
    LineCounter lines;
    Source source;
    SourceNode node;
    std::optional<double> longitude;
    std::optional<double> latitude;
    SourceEdge edge;
    bool hasEdges = false;

    void beginNode();
    void addNode();
    void beginEdge();
};

void Graph::beginNode()
{
    node = {};
    node.line = lines.lineOf(text.offset());
    longitude.reset();
    latitude.reset();
}

void Graph::addNode()
{
    if (longitude && latitude)
        node.at = Coordinates{*longitude, *latitude};
    source.nodes.push_back(std::move(node));
}

void Graph::beginEdge()
{
    edge = {};
    edge.line = lines.lineOf(text.offset());
}

// --- nodes ---

/** Ids may be numbers or texts. */
template <std::string SourceNode::*key>
constexpr Shape<Graph> nodeText{
    .what = "a text or an integer",
    .text = [](Graph &graph, std::string &text) { graph.node.*key = std::move(text); },
    .integer = [](Graph &graph, std::int64_t id) { graph.node.*key = std::to_string(id); }};

template <std::optional<double> Graph::*coordinate>
constexpr Shape<Graph> degrees{
    .what = "a number of degrees",
    .number = [](Graph &graph, double value) { graph.*coordinate = value; },
    .takesNull = true};

constexpr Member<Graph> nodeMembers[] = {
    {"id", &nodeText<&SourceNode::key>},
    {"name", &nodeText<&SourceNode::name>, false},
    {"label", &nodeText<&SourceNode::name>, false},
    {"longitude", &degrees<&Graph::longitude>, false},
    {"latitude", &degrees<&Graph::latitude>, false},
    {"Longitude", &degrees<&Graph::longitude>, false},
    {"Latitude", &degrees<&Graph::latitude>, false},
    {"x", &degrees<&Graph::longitude>, false},
    {"y", &degrees<&Graph::latitude>, false},
};

constexpr Shape<Graph> node{.what = "a node",
                            .members = nodeMembers,
                            .begin = [](Graph &graph) { graph.beginNode(); },
                            .end = [](Graph &graph) { graph.addNode(); }};

// --- edges ---

template <std::string SourceEdge::*key>
constexpr Shape<Graph> edgeEnd{
    .what = "the id of a node",
    .text = [](Graph &graph, std::string &text) { graph.edge.*key = std::move(text); },
    .integer = [](Graph &graph, std::int64_t id) { graph.edge.*key = std::to_string(id); }};

constexpr Shape<Graph> capacity{.what = "a number of 0 or more",
                                .number =
                                    [](Graph &graph, double value) {
                                        if (value < 0.0)
                                            throw Problem("expected a number of 0 or more");
                                        graph.edge.capacity = {value};
                                    },
                                .takesNull = true};

constexpr Member<Graph> edgeMembers[] = {
    {"source", &edgeEnd<&SourceEdge::from>},
    {"target", &edgeEnd<&SourceEdge::to>},
    {"capacity", &capacity, false},
};

constexpr Shape<Graph> edge{
    .what = "a link",
    .members = edgeMembers,
    .begin = [](Graph &graph) { graph.beginEdge(); },
    .end = [](Graph &graph) { graph.source.edges.push_back(std::move(graph.edge)); }};

// --- the graph ---

constexpr Shape<Graph> isDirected{.what = "true or false", .flag = [](Graph &graph, bool value) {
                                      graph.source.isDirected = value;
                                  }};

constexpr Shape<Graph> graphName{.what = "a text", .text = [](Graph &graph, std::string &name) {
                                     graph.source.name = std::move(name);
                                 }};

constexpr Member<Graph> attributeMembers[] = {{"name", &graphName, false}};

constexpr Shape<Graph> attributes{.what = "attributes", .members = attributeMembers};

constexpr Shape<Graph> nodes{.what = "a list of nodes", .element = &node};

constexpr Shape<Graph> edges{
    .what = "a list of links", .element = &edge, .begin = [](Graph &graph) {
        if (graph.hasEdges)
            throw Problem("a second list of links");
        graph.hasEdges = true;
    }};

constexpr Member<Graph> graphMembers[] = {
    {"directed", &isDirected, false}, {"graph", &attributes, false}, {"nodes", &nodes},
    {"links", &edges, false},         {"edges", &edges, false},
};

constexpr Shape<Graph> graph{.what = "a graph", .members = graphMembers, .end = [](Graph &whole) {
                                 if (!whole.hasEdges)
                                     throw Problem(R"(expected "links" or "edges" in a graph)");
                             }};

} // namespace

} // namespace json

Source parseNodeLink(std::string_view text, const std::string &file)
{
    json::Graph graph(text);
    graph.source.isDirected = false; // unless it says so, as the libraries have it
    json::ShapeReader<json::Graph> reader(json::graph, graph);
    json::parse(graph.text, file, reader);
    return std::move(graph.source);
}

} // namespace tarnex::formats
