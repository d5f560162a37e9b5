#include "cli/table.h"

#include "cli/text.h"

#include <algorithm>

namespace tarnex::cli
{

namespace
{

std::vector<std::size_t> widthsOf(const Grid &grid)
{
    std::vector<std::size_t> widths;
    for (const GridColumn &column : grid.columns)
        widths.push_back(grid.hasHeadings ? columnsOf(column.heading) : 0);
    for (const auto &row : grid.rows)
        for (std::size_t i = 0; i < row.size(); ++i)
            widths[i] = std::max(widths[i], columnsOf(row[i].text));
    return widths;
}

class Lines
{
public:
    Lines(const Grid &theGrid, const Terminal &theTerminal)
        : grid(theGrid), terminal(theTerminal), widths(widthsOf(theGrid))
    {
    }

    void add(std::string &out, const std::vector<GridCell> &row) const
    {
        for (std::size_t i = 0; i < row.size(); ++i) {
            const std::size_t padding = widths[i] - columnsOf(row[i].text);
            const bool isRight = grid.columns[i].isRight;
            out.append(2 + (isRight ? padding : 0), ' ');
            out += terminal.coloured(row[i].text, row[i].tone);
            out.append(isRight ? 0 : padding, ' ');
        }
        out.erase(out.find_last_not_of(' ') + 1);
        out += '\n';
    }

private:
    const Grid &grid;
    const Terminal &terminal;
    std::vector<std::size_t> widths;
};

} // namespace

std::string textOf(const Grid &grid, const Terminal &terminal)
{
    const Lines lines{grid, terminal};
    std::string out;
    if (grid.hasHeadings) {
        std::vector<GridCell> headings;
        for (const GridColumn &column : grid.columns)
            headings.push_back({column.heading, Tone::heading});
        lines.add(out, headings);
    }
    for (const auto &row : grid.rows)
        lines.add(out, row);
    return out;
}

std::string csvLine(std::span<const std::string> fields)
{
    std::string line;
    for (const std::string &field : fields) {
        if (&field != &fields.front())
            line += ',';
        if (field.find_first_of(",\"\r\n") == std::string::npos) {
            line += field;
            continue;
        }
        line += '"';
        for (const char byte : field)
            line += byte == '"' ? "\"\"" : std::string(1, byte);
        line += '"';
    }
    return line + "\r\n";
}

} // namespace tarnex::cli
