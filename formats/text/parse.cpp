#include "formats/line_reader.h"
#include "formats/parsers.h"

#include <fmt/format.h>

#include <algorithm>
#include <unordered_set>

namespace tarnex::formats
{

namespace
{

class TextParser
{
public:
    TextParser(std::string_view text, const std::string &file) : lines(text, file, '#') {}

    Source parse()
    {
        while (lines.next())
            readStatement();
        return std::move(source);
    }

private:
    void readStatement()
    {
        const std::string_view keyword = lines.words()[0];
        if (keyword == "link")
            readLink();
        else if (keyword == "demand")
            readDemand();
        else if (keyword == "node")
            readNode();
        else if (keyword == "classes")
            readNames(source.classes);
        else if (keyword == "levels")
            readNames(source.levels);
        else if (keyword == "unit")
            readUnit();
        else
            lines.fail(0, fmt::format("unknown statement '{}' (unit, classes, levels, node, link "
                                      "or demand)",
                                      keyword));
    }

    void expectWords(std::size_t least, std::size_t most, std::string_view form) const
    {
        if (lines.words().size() < least || lines.words().size() > most)
            lines.fail(std::min(lines.words().size(), most), fmt::format("expected: {}", form));
    }

    void readUnit()
    {
        expectWords(2, 2, "unit NAME");
        if (!source.unit.empty())
            lines.fail(0, "the unit is given already");
        source.unit = lines.words()[1];
    }

    void readNames(std::vector<std::string> &names) const
    {
        const auto &words = lines.words();
        if (!names.empty())
            lines.fail(0, fmt::format("the {} are given already", words[0]));
        expectWords(2, words.size(), fmt::format("{} NAME...", words[0]));
        names.assign(words.begin() + 1, words.end());
    }

    void takeId(std::unordered_set<std::string> &ids, std::string_view what) const
    {
        if (!ids.insert(std::string(lines.words()[1])).second)
            lines.fail(1, fmt::format("there is a {} {} already", what, lines.words()[1]));
    }

    void readNode()
    {
        const bool hasPlace = lines.words().size() > 3;
        expectWords(hasPlace ? 5 : 3, 5, "node ID NAME [LONGITUDE LATITUDE]");
        takeId(nodeIds, "node");
        SourceNode node;
        node.key = lines.words()[2];
        node.line = lines.line();
        if (hasPlace)
            node.at = {.longitude = lines.number(3, "a longitude"),
                       .latitude = lines.number(4, "a latitude")};
        source.nodes.push_back(std::move(node));
    }

    void readLink()
    {
        constexpr std::size_t fixed = 4; // keyword, id and the two ends
        if (source.classes.empty())
            expectWords(fixed, fixed + 1, "link ID FROM TO [CAPACITY]");
        else
            expectWords(fixed + source.classes.size(), fixed + source.classes.size(),
                        fmt::format("link ID FROM TO and a capacity for each of the {} classes",
                                    source.classes.size()));
        takeId(linkIds, "link");
        SourceEdge edge;
        edge.from = lines.words()[2];
        edge.to = lines.words()[3];
        edge.line = lines.line();
        for (std::size_t word = fixed; word < lines.words().size(); ++word)
            edge.capacity.push_back(lines.number(word, "a capacity"));
        source.edges.push_back(std::move(edge));
    }

    void readDemand()
    {
        const auto &words = lines.words();
        if (words.size() != 5)
            expectWords(7, 7, "demand ID INGRESS EGRESS [CLASS LEVEL] BANDWIDTH");
        SourceDemand demand;
        demand.name = words[1];
        demand.from = words[2];
        demand.to = words[3];
        demand.line = lines.line();
        if (words.size() == 7) {
            demand.className = words[4];
            demand.level = words[5];
        }
        demand.bandwidth = lines.number(words.size() - 1, "the bandwidth");
        source.demands.push_back(std::move(demand));
    }

    LineReader lines;
    Source source;
    std::unordered_set<std::string> nodeIds;
    std::unordered_set<std::string> linkIds;
};

} // namespace

Source parseText(std::string_view text, const std::string &file)
{
    return TextParser(text, file).parse();
}

} // namespace tarnex::formats
