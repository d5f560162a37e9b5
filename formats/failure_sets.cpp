#include "formats/failure_sets.h"

#include "formats/line_reader.h"
#include "formats/names.h"

#include <fmt/format.h>

#include <map>
#include <optional>
#include <unordered_set>
#include <utility>

namespace tarnex::formats
{

namespace
{

class FailureSetParser
{
public:
    FailureSetParser(std::string_view text, const std::string &file, const Network &network)
        : lines(text, file, '#')
    {
        for (std::size_t i = 0; i < network.nodes.size(); ++i)
            nodes.emplace(network.nodes[i].name, static_cast<std::int32_t>(i));
        for (std::size_t i = 0; i < network.links.size(); ++i)
            links.emplace(std::pair{network.links[i].from, network.links[i].to},
                          static_cast<std::int32_t>(i));
    }

    std::vector<NamedFailure> parse()
    {
        std::vector<NamedFailure> failures;
        while (lines.next())
            failures.push_back(readFailure());
        if (failures.empty())
            lines.fail(0, "expected: failure NAME and what fails");
        return failures;
    }

private:
    NamedFailure readFailure()
    {
        const auto &words = lines.words();
        if (words[0] != "failure")
            lines.fail(0, fmt::format("unknown statement '{}' (failure)", words[0]));
        if (words.size() < 3)
            lines.fail(words.size(), "expected: failure NAME (link FROM TO | duplex FROM TO | "
                                     "node NAME)...");
        NamedFailure failure{.name = std::string{words[1]}, .links = {}, .nodes = {}};
        if (!isUtf8(failure.name))
            lines.fail(1, "expected a name in UTF-8");
        if (!names.insert(failure.name).second)
            lines.fail(1, fmt::format("there is a failure {} already", failure.name));
        for (std::size_t word = 2; word < words.size();) {
            if (words[word] == "node") {
                failure.nodes.push_back(nodeAt(word + 1));
                word += 2;
            } else if (words[word] == "link" || words[word] == "duplex") {
                readLinks(word, failure.links);
                word += 3;
            } else {
                lines.fail(word,
                           fmt::format("expected link, duplex or node, not '{}'", words[word]));
            }
        }
        return failure;
    }

    void readLinks(std::size_t word, std::vector<LinkId> &found) const
    {
        const NodeId from = nodeAt(word + 1);
        const NodeId to = nodeAt(word + 2);
        const auto there = linkBetween(from, to);
        const auto back = lines.words()[word] == "duplex" ? linkBetween(to, from) : std::nullopt;
        if (!there && !back)
            lines.fail(word + 1, fmt::format("there is no link from {} to {}",
                                             lines.words()[word + 1], lines.words()[word + 2]));
        for (const auto &link : {there, back}) {
            if (link)
                found.push_back(*link);
        }
    }

    NodeId nodeAt(std::size_t word) const
    {
        if (word >= lines.words().size())
            lines.fail(word, "expected the name of a node");
        const auto node = nodes.find(lines.words()[word]);
        if (node == nodes.end())
            lines.fail(word, fmt::format("there is no node {}", lines.words()[word]));
        return node->second;
    }

    std::optional<LinkId> linkBetween(NodeId from, NodeId to) const
    {
        const auto link = links.find({from, to});
        return link == links.end() ? std::nullopt : std::optional{link->second};
    }

    LineReader lines;
    std::map<std::string, NodeId, std::less<>> nodes;
    std::map<std::pair<NodeId, NodeId>, LinkId> links;
    std::unordered_set<std::string> names;
};

} // namespace

std::vector<NamedFailure> parseFailureSets(std::string_view text, const std::string &file,
                                           const Network &network)
{
    return FailureSetParser{text, file, network}.parse();
}

} // namespace tarnex::formats
