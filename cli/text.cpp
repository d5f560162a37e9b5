#include "cli/text.h"

#include <algorithm>
#include <numeric>

namespace tarnex::cli
{

namespace
{

/** How many insertions, deletions and replacements make one text of the other. */
std::size_t distanceBetween(std::string_view one, std::string_view other)
{
    std::vector<std::size_t> row(other.size() + 1);
    std::iota(row.begin(), row.end(), std::size_t{0});
    for (std::size_t i = 0; i < one.size(); ++i) {
        std::size_t diagonal = row[0]++;
        for (std::size_t j = 0; j < other.size(); ++j) {
            const std::size_t replaced = diagonal + (one[i] == other[j] ? 0 : 1);
            diagonal = row[j + 1];
            row[j + 1] = std::min({row[j] + 1, row[j + 1] + 1, replaced});
        }
    }
    return row.back();
}

void wrapParagraph(std::string &out, std::string_view paragraph, std::size_t width,
                   std::size_t indent)
{
    std::size_t column = 0;
    for (const std::string &word : split(paragraph, ' ')) {
        if (word.empty())
            continue;
        const std::size_t length = columnsOf(word);
        if (column == 0) {
            out.append(indent, ' ');
            column = indent;
        } else if (column + 1 + length > width) {
            out += '\n';
            out.append(indent, ' ');
            column = indent;
        } else {
            out += ' ';
            ++column;
        }
        out += word;
        column += length;
    }
    out += '\n';
}

} // namespace

std::size_t columnsOf(std::string_view text)
{
    return static_cast<std::size_t>(std::count_if(
        text.begin(), text.end(), [](char byte) { return (byte & '\xC0') != '\x80'; }));
}

std::string joined(std::span<const std::string> pieces, std::string_view separator)
{
    std::string all;
    for (const std::string &piece : pieces) {
        if (&piece != &pieces.front())
            all += separator;
        all += piece;
    }
    return all;
}

std::string oneOf(std::span<const std::string> names)
{
    if (names.size() < 2)
        return joined(names, "");
    return joined(names.first(names.size() - 1), ", ") + " or " + names.back();
}

std::vector<std::string> split(std::string_view text, char separator)
{
    std::vector<std::string> pieces;
    for (;;) {
        const std::size_t end = text.find(separator);
        pieces.emplace_back(text.substr(0, end));
        if (end == std::string_view::npos)
            return pieces;
        text.remove_prefix(end + 1);
    }
}

std::string wrapped(std::string_view text, std::size_t width, std::size_t indent)
{
    std::string out;
    std::string paragraph;
    const auto flush = [&] {
        if (!paragraph.empty())
            wrapParagraph(out, paragraph, width, indent);
        paragraph.clear();
    };
    for (const std::string &line : split(text, '\n')) {
        if (!line.empty() && line.front() != ' ') {
            paragraph += line + ' ';
            continue;
        }
        flush();
        out += line.empty() ? "\n" : std::string(indent, ' ') + line + '\n';
    }
    flush();
    return out;
}

std::string nearest(std::string_view typed, std::span<const std::string> names)
{
    const auto distance = [typed](const std::string &name) { return distanceBetween(typed, name); };
    const auto best = std::ranges::min_element(names, {}, distance);
    return best != names.end() && distance(*best) <= 2 ? *best : std::string{};
}

} // namespace tarnex::cli
