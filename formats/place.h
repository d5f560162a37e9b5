/** Where in a text something stands. */
#ifndef TARNEX_FORMATS_PLACE_H
#define TARNEX_FORMATS_PLACE_H

#include <cstddef>
#include <string>
#include <string_view>

namespace tarnex::formats
{

/** Line and column, in bytes, both counted from 1. */
struct Place {
    std::size_t line = 1;
    std::size_t column = 1;
};

/** The place of an offset; costs a walk over the text before it. */
Place placeOf(std::string_view text, std::size_t offset);

/** Throws an InputError about what stands at an offset of a file's text. */
[[noreturn]] void failAt(const std::string &file, std::string_view text, std::size_t offset,
                         const std::string &problem);

/** Lines of offsets that are asked for in ascending order, all together in one walk. */
class LineCounter
{
public:
    explicit LineCounter(std::string_view content) : text(content) {}

    /** The line of an offset, from 1. */
    std::size_t lineOf(std::size_t offset);

private:
    std::string_view text;
    std::size_t counted = 0; ///< offset up to which lines are counted
    std::size_t line = 1;
};

} // namespace tarnex::formats

#endif
