#include "formats/line_reader.h"

#include "formats/cursor.h"
#include "formats/number.h"

#include <fmt/format.h>

namespace tarnex::formats
{

bool LineReader::next()
{
    split.clear();
    while (split.empty() && following < text.size()) {
        const std::size_t start = following;
        const std::size_t end = std::min(text.find('\n', following), text.size());
        following = end + 1;
        ++lineNumber;
        readWords(start, end);
    }
    return !split.empty();
}

/** Splits the stretch of the text that is a line. */
void LineReader::readWords(std::size_t at, std::size_t end)
{
    const bool isTyped = commentMark != '\0';
    while (true) {
        while (at < end && isBlank(text[at]))
            ++at;
        if (at == end || (isTyped && text[at] == commentMark))
            return;
        const std::size_t start = at;
        if (isTyped && text[at] == '"') {
            at = text.find('"', start + 1);
            if (at >= end)
                failAt(file, text, start, "expected a \" that closes this one");
            split.push_back(text.substr(start + 1, at - start - 1));
            ++at;
            continue;
        }
        while (at < end && !isBlank(text[at]) && !(isTyped && text[at] == commentMark))
            ++at;
        split.push_back(text.substr(start, at - start));
    }
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
