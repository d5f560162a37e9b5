#include "formats/line_reader.h"
#include "formats/parsers.h"

#include <fmt/format.h>

namespace tarnex::formats
{

Source parseMatrix(std::string_view text, const std::string &file, std::size_t line,
                   std::span<const std::string> names)
{
    LineReader lines(text, file, '#');
    for (std::size_t matrix = 1; lines.next(); ++matrix)
        if (matrix == line)
            break;
    const std::size_t nbRows = names.size();
    if (lines.words().empty())
        lines.fail(0, fmt::format("expected a matrix in line {}", line));
    if (lines.words().size() != nbRows * nbRows)
        lines.fail(lines.words().size(), fmt::format("expected {} x {} numbers, not {}", nbRows,
                                                     nbRows, lines.words().size()));
    Source source;
    for (std::size_t row = 0; row < nbRows; ++row)
        for (std::size_t column = 0; column < nbRows; ++column) {
            const double bandwidth = lines.number(row * nbRows + column, "a bandwidth");
            if (bandwidth != 0.0) // a 0 is the way to say that there is no demand
                source.demands.push_back(
                    {"", names[row], names[column], "", "", bandwidth, lines.line()});
        }
    return source;
}

std::vector<std::string> parseHosts(std::string_view text, const std::string &file)
{
    LineReader lines(text, file, '#');
    std::vector<std::string> names;
    while (lines.next()) {
        if (lines.words().size() > 1)
            lines.fail(1, "expected one name a line");
        names.emplace_back(lines.words()[0]);
    }
    return names;
}

} // namespace tarnex::formats
