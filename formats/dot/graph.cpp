#include "formats/dot/graph.h"

#include "formats/dot/lexer.h"

#include <fmt/format.h>

#include <utility>

namespace tarnex::formats
{

namespace
{

class GraphReader
{
public:
    GraphReader(std::string_view text, const std::string &file) : lexer(text, file) {}

    DotGraph read()
    {
        if (lexer.peek().isKeyword("strict"))
            lexer.take();
        graph.isDirected = lexer.peek().isKeyword("digraph");
        if (!graph.isDirected && !lexer.peek().isKeyword("graph"))
            lexer.fail("expected 'graph' or 'digraph'");
        lexer.take();
        if (lexer.peek().isId)
            graph.id = lexer.take().text;
        lexer.expect("{");
        scopes.resize(1);
        while (!scopes.empty())
            readStatement();
        if (!lexer.isAtEnd())
            lexer.fail("expected the end of the file after the graph");
        return std::move(graph);
    }

private:
    /** What nodes and edges have unless they say otherwise, from here to the closing brace. */
    struct Scope {
        DotAttributes nodes;
        DotAttributes edges;
    };

    static constexpr std::size_t maxDepth = 64; ///< of subgraphs

    void readStatement()
    {
        if (lexer.takeIf(";"))
            return;
        if (lexer.takeIf("}")) {
            scopes.pop_back();
            return;
        }
        if (lexer.peek().isMark("{") || lexer.peek().isKeyword("subgraph"))
            beginSubgraph();
        else if (lexer.peek().isKeyword("graph") || lexer.peek().isKeyword("node") ||
                 lexer.peek().isKeyword("edge"))
            readDefaults();
        else
            readNodeOrEdges();
    }

    void beginSubgraph()
    {
        if (lexer.peek().isKeyword("subgraph")) {
            lexer.take();
            if (lexer.peek().isId)
                lexer.take();
        }
        if (scopes.size() >= maxDepth)
            lexer.fail(fmt::format("subgraphs are nested more than {} deep", maxDepth));
        lexer.expect("{");
        Scope inner = scopes.back();
        scopes.push_back(std::move(inner));
    }

    void readDefaults()
    {
        const DotToken what = lexer.take();
        const bool isOutermost = scopes.size() == 1;
        DotAttributes ofSubgraph;
        readAttributes(what.isKeyword("node")   ? scopes.back().nodes
                       : what.isKeyword("edge") ? scopes.back().edges
                       : isOutermost            ? graph.attributes
                                                : ofSubgraph);
    }

    /** Whether an attribute of nodes or edges is of use. Others are not kept: defaults are copied
     * to every node and edge, and have to be few and short. */
    static bool isRead(std::string_view name, std::string_view value)
    {
        constexpr std::size_t longestValue = 64;
        const bool isCapacity = name.starts_with("capacity") && name.size() <= sizeof "capacity";
        return value.size() <= longestValue &&
               (isCapacity || name == "type" || name == "longitude" || name == "latitude");
    }

    /** Any number of lists in brackets. */
    void readAttributes(DotAttributes &attributes)
    {
        while (lexer.takeIf("[")) {
            while (!lexer.takeIf("]")) {
                const std::string name = lexer.takeId("the name of an attribute or ']'");
                std::string value = lexer.takeIf("=") ? lexer.takeId("a value") : "true";
                if (&attributes == &graph.attributes || isRead(name, value))
                    attributes[name] = std::move(value);
                if (!lexer.takeIf(","))
                    lexer.takeIf(";");
            }
        }
    }

    void readNodeOrEdges()
    {
        const std::size_t line = lexer.line();
        std::string id = lexer.takeId("a statement or '}'");
        if (lexer.takeIf("=")) {
            std::string value = lexer.takeId("a value");
            if (scopes.size() == 1)
                graph.attributes[id] = std::move(value);
            return;
        }
        skipPort();
        std::vector<std::size_t> chain{nodeNamed(id, line)};
        while (lexer.peek().isMark("->") || lexer.peek().isMark("--")) {
            if (lexer.peek().isMark("->") != graph.isDirected)
                lexer.fail(graph.isDirected ? "expected '->' in a digraph"
                                            : "expected '--' in a graph");
            lexer.take();
            chain.push_back(nodeNamed(lexer.takeId("a node"), line));
            skipPort();
        }
        if (chain.size() == 1) {
            readAttributes(graph.nodes[chain[0]].attributes);
            return;
        }
        DotAttributes attributes = scopes.back().edges;
        readAttributes(attributes);
        for (std::size_t i = 0; i + 1 < chain.size(); ++i)
            graph.edges.push_back({chain[i], chain[i + 1], line, attributes});
    }

    void skipPort()
    {
        while (lexer.takeIf(":"))
            lexer.takeId("a port");
    }

    std::size_t nodeNamed(const std::string &id, std::size_t line)
    {
        const auto [found, isNew] = nodeById.emplace(id, graph.nodes.size());
        if (isNew)
            graph.nodes.push_back({id, line, scopes.back().nodes});
        return found->second;
    }

    DotLexer lexer;
    DotGraph graph;
    std::vector<Scope> scopes;
    std::unordered_map<std::string, std::size_t> nodeById;
};

} // namespace

DotGraph readDotGraph(std::string_view text, const std::string &file)
{
    return GraphReader(text, file).read();
}

} // namespace tarnex::formats
