#include "formats/line_reader.h"

#include "formats/cursor.h"
#include "formats/number.h"

#include <fmt/format.h>

namespace tarnex::formats
{

namespace
{

void splitInto(std::vector<std::string_view> &words, std::string_view line)
{
    words.clear();
    std::size_t at = 0;
    while (true) {
        while (at < line.size() && isBlank(line[at]))
            ++at;
        if (at == line.size())
            return;
        const std::size_t start = at;
        while (at < line.size() && !isBlank(line[at]))
            ++at;
        words.push_back(line.substr(start, at - start));
    }
}

} // namespace

bool LineReader::next()
{
    split.clear();
    while (split.empty() && following < text.size()) {
        const std::size_t end = std::min(text.find('\n', following), text.size());
        std::string_view line = text.substr(following, end - following);
        if (commentMark != '\0')
            line = line.substr(0, line.find(commentMark));
        splitInto(split, line);
        following = end + 1;
        ++lineNumber;
    }
    return !split.empty();
}

double LineReader::number(std::size_t word, std::string_view what) const
{
    if (word >= split.size())
        fail(word, fmt::format("expected {}, a number", what));
    const auto value = numberIn(split[word]);
    if (!value)
        fail(word, fmt::format("expected {}, a number, not '{}'", what, split[word]));
    return *value;
}

std::size_t LineReader::position(std::size_t word, std::string_view what) const
{
    if (word >= split.size())
        fail(word, fmt::format("expected {}, an integer of 0 or more", what));
    const auto value = positionIn(split[word]);
    if (!value)
        fail(word,
             fmt::format("expected {}, an integer of 0 or more, not '{}'", what, split[word]));
    return *value;
}

void LineReader::fail(std::size_t word, const std::string &problem) const
{
    const auto offsetOf = [&](std::string_view part) {
        return static_cast<std::size_t>(part.data() - text.data());
    };
    if (split.empty()) // before the first line, or after the last
        failAt(file, text, text.size(), problem);
    if (word < split.size())
        failAt(file, text, offsetOf(split[word]), problem);
    failAt(file, text, offsetOf(split.back()) + split.back().size(), problem);
}

} // namespace tarnex::formats
