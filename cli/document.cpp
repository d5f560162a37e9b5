#include "cli/document.h"

#include "cli/table.h"
#include "cli/text.h"
#include "formats/bandwidth.h"

#include <algorithm>
#include <fmt/format.h>

namespace tarnex::cli
{

namespace
{

/** A path in one cell. */
std::string pathOf(const NodeNames &names) { return joined(names, " > "); }

struct ForPeople {
    const std::string &unit;

    std::string operator()(std::monostate) const { return {}; }
    std::string operator()(const std::string &text) const { return text; }
    std::string operator()(bool isSo) const { return isSo ? "yes" : "no"; }
    std::string operator()(std::int64_t count) const { return std::to_string(count); }
    std::string operator()(double value) const { return formats::formatBandwidth(value); }
    std::string operator()(Bandwidth bandwidth) const
    {
        return formats::formatBandwidth(bandwidth.value) + (unit.empty() ? "" : " " + unit);
    }
    std::string operator()(Ratio ratio) const { return fmt::format("{:.1f} %", 100 * ratio.value); }
    std::string operator()(const NodeNames &names) const { return pathOf(names); }
    std::string operator()(const NameList &list) const { return joined(list.names, ", "); }
};

struct ForFiles {
    std::string operator()(std::monostate) const { return {}; }
    std::string operator()(const std::string &text) const { return text; }
    std::string operator()(bool isSo) const { return isSo ? "true" : "false"; }
    std::string operator()(std::int64_t count) const { return std::to_string(count); }
    std::string operator()(double value) const { return fmt::format("{}", value); }
    std::string operator()(Bandwidth bandwidth) const { return (*this)(bandwidth.value); }
    std::string operator()(Ratio ratio) const { return (*this)(ratio.value); }
    std::string operator()(const NodeNames &names) const { return pathOf(names); }
    std::string operator()(const NameList &list) const { return joined(list.names, ", "); }
};

bool isNumber(const Value &value)
{
    return std::holds_alternative<std::int64_t>(value) || std::holds_alternative<double>(value) ||
           std::holds_alternative<Bandwidth>(value) || std::holds_alternative<Ratio>(value);
}

bool hasBandwidths(const Table &table)
{
    return std::ranges::any_of(table.rows, [](const auto &row) {
        return std::ranges::any_of(
            row, [](const Cell &cell) { return std::holds_alternative<Bandwidth>(cell.value); });
    });
}

/** The title, with the unit of the bandwidths, which need none of their own then. */
std::string titleOf(const Table &table, const std::string &unit)
{
    if (unit.empty() || !hasBandwidths(table))
        return table.title;
    return table.title.empty() ? fmt::format("Bandwidths in {}", unit)
                               : fmt::format("{}, bandwidths in {}", table.title, unit);
}

Grid gridOf(const Table &table)
{
    Grid grid;
    std::vector<std::size_t> columns; // those that people see
    const std::size_t nbRows = std::min(table.rows.size(), table.shown);
    for (std::size_t column = 0; column < table.columns.size(); ++column) {
        if (table.columns[column].heading.empty())
            continue;
        columns.push_back(column);
        const bool isRight = std::ranges::any_of(
            table.rows, [column](const auto &row) { return isNumber(row[column].value); });
        grid.columns.push_back({table.columns[column].heading, isRight});
    }
    const std::string inTitle;
    for (std::size_t row = 0; row < nbRows; ++row) {
        std::vector<GridCell> &cells = grid.rows.emplace_back();
        for (const std::size_t column : columns) {
            const Cell &cell = table.rows[row][column];
            cells.push_back({std::visit(ForPeople{inTitle}, cell.value), cell.tone});
        }
    }
    return grid;
}

struct Sections {
    const std::string &unit;
    const Terminal &terminal;

    std::string title(const std::string &text) const
    {
        return text.empty() ? "" : terminal.coloured(text, Tone::heading) + "\n";
    }
    std::string operator()(const Note &note) const { return wrapped(note.text, 80, 0); }
    std::string operator()(const Facts &facts) const
    {
        Grid grid{.columns = {{}, {}}, .hasHeadings = false};
        for (const Fact &fact : facts.facts)
            if (!std::holds_alternative<std::monostate>(fact.cell.value))
                grid.rows.push_back(
                    {{fact.label, Tone::plain},
                     {std::visit(ForPeople{unit}, fact.cell.value), fact.cell.tone}});
        return title(facts.title) + textOf(grid, terminal);
    }
    std::string operator()(const Table &table) const
    {
        if (table.rows.empty())
            return table.ifEmpty.empty() ? "" : table.ifEmpty + "\n";
        std::string text = title(titleOf(table, unit)) + textOf(gridOf(table), terminal);
        const std::size_t nbRows = table.rows.size() + table.nbLeftOut;
        if (nbRows > table.shown)
            text += fmt::format("  and {} more\n", nbRows - table.shown);
        return text;
    }
};

std::string csvOf(const Table &table)
{
    std::vector<std::string> fields;
    for (const Column &column : table.columns)
        fields.push_back(column.key);
    std::string csv = csvLine(fields);
    for (const auto &row : table.rows) {
        fields.clear();
        for (const Cell &cell : row)
            fields.push_back(std::visit(ForFiles{}, cell.value));
        csv += csvLine(fields);
    }
    return csv;
}

} // namespace

Value truth(bool isSo) { return isSo; }

Value number(std::size_t count) { return static_cast<std::int64_t>(count); }

std::string textOf(const Document &document, const Terminal &terminal)
{
    std::string text;
    for (const Section &section : document.sections) {
        const std::string part = std::visit(Sections{document.unit, terminal}, section);
        if (!part.empty())
            text += (text.empty() ? "" : "\n") + part;
    }
    return text;
}

std::string csvOf(const Document &document)
{
    for (const Section &section : document.sections)
        if (const auto *const table = std::get_if<Table>(&section))
            return csvOf(*table);
    Table asTable{.columns = {{"key", ""}, {"value", ""}}};
    for (const Section &section : document.sections)
        if (const auto *const facts = std::get_if<Facts>(&section))
            for (const Fact &fact : facts->facts)
                asTable.rows.push_back({fact.key, fact.cell});
    return csvOf(asTable);
}

void print(const Document &document, Form form)
{
    switch (form) {
    case Form::text:
        return print(textOf(document, Terminal::output()));
    case Form::json:
        return print(jsonOf(document));
    case Form::jsonLines:
        return print(jsonLinesOf(document));
    case Form::csv:
        return print(csvOf(document));
    }
}

} // namespace tarnex::cli
