#include "formats/json/text_stream.h"

#include <ios>

namespace tarnex::formats::json
{

namespace
{

constexpr std::size_t chunkSize = std::size_t{1} << 16U;

/** Where one is after a text that begins at a position. */
Place after(Place at, std::string_view text)
{
    for (std::size_t end = text.find('\n'); end != std::string_view::npos; end = text.find('\n')) {
        ++at.line;
        at.column = 1;
        text.remove_prefix(end + 1);
    }
    at.column += text.size();
    return at;
}

} // namespace

bool TextStream::readChunk()
{
    if (in == nullptr)
        return false;
    atPrevious = after(atPrevious, before());
    firstOffset += held.size();
    previous.swap(held);
    held.resize(chunkSize);
    in->read(held.data(), static_cast<std::streamsize>(held.size()));
    held.resize(static_cast<std::size_t>(in->gcount()));
    first = next = held.data();
    last = first + held.size();
    read.add(chunk());
    if (held.empty())
        in = nullptr; // and `previous` stays what positions are told from
    return !held.empty();
}

std::size_t TextStream::tokenFrom(std::size_t from) const
{
    const std::size_t previousOffset = firstOffset - previous.size();
    constexpr std::string_view between = " \t\r\n,:";
    if (from < firstOffset) {
        const std::size_t start = from < previousOffset ? 0 : from - previousOffset;
        const std::size_t found = before().find_first_not_of(between, start);
        if (found != std::string_view::npos)
            return previousOffset + found;
        from = firstOffset;
    }
    const std::size_t found = chunk().find_first_not_of(between, from - firstOffset);
    return firstOffset + (found == std::string_view::npos ? chunk().size() : found);
}

Place TextStream::placeOf(std::size_t offset) const
{
    const std::size_t previousOffset = firstOffset - previous.size();
    if (offset < firstOffset)
        return after(atPrevious,
                     before().substr(0, offset < previousOffset ? 0 : offset - previousOffset));
    return after(after(atPrevious, before()), chunk().substr(0, offset - firstOffset));
}

} // namespace tarnex::formats::json
