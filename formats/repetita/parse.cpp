#include "formats/line_reader.h"
#include "formats/parsers.h"

#include <fmt/format.h>

#include <algorithm>

namespace tarnex::formats
{

namespace
{

/** Positions of the columns that are read, by the labels at the head of a section. */
struct Columns {
    std::size_t first = 0;
    std::size_t second = 0;
    std::size_t third = 0;
};

class RepetitaParser
{
public:
    RepetitaParser(std::string_view text, const std::string &file) : lines(text, file) {}

    Source parse()
    {
        source.unit = "kbit/s";
        source.demandsByPosition = true;
        while (lines.next())
            readSection();
        return std::move(source);
    }

private:
    void readSection()
    {
        const std::string section(lines.words()[0]);
        if (section == "NODES")
            readRows(source.nodes, &RepetitaParser::node, {"x", "y"});
        else if (section == "EDGES")
            readRows(source.edges, &RepetitaParser::edge, {"src", "dest", "bw"});
        else if (section == "DEMANDS")
            readRows(source.demands, &RepetitaParser::demand, {"src", "dest", "bw"});
        else
            lines.fail(0, "expected NODES, EDGES or DEMANDS");
    }

    /** A count of rows, a line of labels, the rows. */
    template <class Row>
    void readRows(std::vector<Row> &rows, Row (RepetitaParser::*rowIn)(const Columns &) const,
                  const std::vector<std::string_view> &labels)
    {
        constexpr std::size_t shortestRow = 6; // "a 0 0" and the end of the line
        const std::string section(lines.words()[0]);
        const std::size_t count = lines.position(1, "the number of rows");
        if (!lines.next() || lines.words()[0] != "label")
            lines.fail(0, fmt::format("expected the labels of the columns of {}", section));
        const Columns columns{column(labels[0]), column(labels[1]),
                              labels.size() > 2 ? column(labels[2]) : 0};
        rows.reserve(rows.size() + std::min(count, lines.sizeOfRest() / shortestRow));
        for (std::size_t row = 0; row < count; ++row) {
            if (!lines.next())
                lines.fail(0, fmt::format("expected {} rows of {}, not {}", count, section, row));
            rows.push_back((this->*rowIn)(columns));
        }
    }

    std::size_t column(std::string_view label) const
    {
        const auto &words = lines.words();
        const auto found = std::find(words.begin(), words.end(), label);
        if (found == words.end())
            lines.fail(words.size(), fmt::format("expected a column labelled '{}'", label));
        return static_cast<std::size_t>(found - words.begin());
    }

    SourceNode node(const Columns &columns) const
    {
        SourceNode node;
        node.key = std::to_string(source.nodes.size());
        node.name = lines.words()[0];
        node.line = lines.line();
        const Coordinates at{lines.number(columns.first, "x"), lines.number(columns.second, "y")};
        if (at != Coordinates{}) // which stands for a place that is not known
            node.at = at;
        return node;
    }

    template <class Ends>
    Ends ends(const Columns &columns) const
    {
        Ends result;
        result.from = std::to_string(lines.position(columns.first, "src"));
        result.to = std::to_string(lines.position(columns.second, "dest"));
        result.line = lines.line();
        return result;
    }

    SourceEdge edge(const Columns &columns) const
    {
        auto edge = ends<SourceEdge>(columns);
        edge.capacity = {lines.number(columns.third, "bw")};
        return edge;
    }

    SourceDemand demand(const Columns &columns) const
    {
        auto demand = ends<SourceDemand>(columns);
        demand.name = lines.words()[0];
        demand.bandwidth = lines.number(columns.third, "bw");
        return demand;
    }

    LineReader lines;
    Source source;
};

} // namespace

Source parseRepetita(std::string_view text, const std::string &file)
{
    return RepetitaParser(text, file).parse();
}

} // namespace tarnex::formats
