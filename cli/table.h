/** Text in columns, for people and as CSV. */
#ifndef TARNEX_CLI_TABLE_H
#define TARNEX_CLI_TABLE_H

#include "cli/terminal.h"

#include <span>
#include <string>
#include <vector>

namespace tarnex::cli
{

/** A column: its heading, and whether it lines up on the right. */
struct GridColumn {
    std::string heading;
    bool isRight = false;
};

/** A piece of text in its tone. */
struct GridCell {
    std::string text;
    Tone tone = Tone::plain;
};

/** Rows of as many cells as there are columns. */
struct Grid {
    std::vector<GridColumn> columns{};
    std::vector<std::vector<GridCell>> rows{};
    bool hasHeadings = true;
};

/** A line per row, two spaces in, columns aligned and two spaces apart. */
std::string textOf(const Grid &grid, const Terminal &terminal);

/** One record as RFC 4180 has it, with its line end. */
std::string csvLine(std::span<const std::string> fields);

} // namespace tarnex::cli

#endif
