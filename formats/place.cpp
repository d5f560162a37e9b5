#include "formats/place.h"

#include "formats/remarks.h"

#include <algorithm>

namespace tarnex::formats
{

namespace
{

std::size_t newlinesIn(std::string_view text)
{
    return static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n'));
}

} // namespace

Place placeOf(std::string_view text, std::size_t offset)
{
    const std::string_view before = text.substr(0, std::min(offset, text.size()));
    const std::size_t newline = before.rfind('\n');
    const std::size_t start = newline == std::string_view::npos ? 0 : newline + 1;
    return {newlinesIn(before) + 1, before.size() - start + 1};
}

void failAt(const std::string &file, std::string_view text, std::size_t offset,
            const std::string &problem)
{
    const Place place = placeOf(text, offset);
    throw InputError(file, place.line, place.column, problem);
}

std::size_t LineCounter::lineOf(std::size_t offset)
{
    if (offset > counted) {
        line += newlinesIn(text.substr(counted, offset - counted));
        counted = offset;
    }
    return line;
}

} // namespace tarnex::formats
