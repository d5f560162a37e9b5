/** A text read front to back, with the line and column of what was read last. */
#ifndef TARNEX_FORMATS_JSON_TEXT_STREAM_H
#define TARNEX_FORMATS_JSON_TEXT_STREAM_H

#include "formats/digest.h"
#include "formats/place.h"

#include <cstddef>
#include <istream>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

namespace tarnex::formats::json
{

/**
 * Characters in memory, or from a stream of which two chunks are held at a time: positions are
 * known as far back as the chunk before the current one.
 */
class TextStream
{
public:
    explicit TextStream(std::string_view text)
        : first(text.data()), next(first), last(first + text.size()), length(text.size())
    {
        read.add(text);
    }
    /** `size`: of the whole text in bytes, 0 when not known. */
    explicit TextStream(std::istream &stream, std::size_t size) : in(&stream), length(size) {}

    bool atEnd() { return next == last && !readChunk(); }
    char current() const { return *next; }
    void advance() { ++next; }

    /** How many bytes have been read. */
    std::size_t offset() const { return firstOffset + static_cast<std::size_t>(next - first); }
    /** Bytes in the whole text, 0 when not known. */
    std::size_t size() const { return length; }
    /** The digest of what has been taken from the stream, or of the text in memory. */
    std::string digest() const { return read.text(); }
    /** The first offset from `from` on that has neither a blank nor a comma or a colon. */
    std::size_t tokenFrom(std::size_t from) const;
    Place placeOf(std::size_t offset) const;

private:
    bool readChunk();
    std::string_view before() const { return {previous.data(), previous.size()}; }
    std::string_view chunk() const { return {first, static_cast<std::size_t>(last - first)}; }

    std::istream *in = nullptr;
    std::vector<char> previous;
    std::vector<char> held; // the current chunk of a stream
    const char *first = nullptr;
    const char *next = nullptr;
    const char *last = nullptr;
    std::size_t length = 0;
    std::size_t firstOffset = 0; // of `first`
    Place atPrevious;            // of the first character of `previous`
    Digest read;
};

/** An iterator over what a TextStream has left; the default one is the end. */
class TextIterator
{
public:
    using iterator_category = std::input_iterator_tag;
    using value_type = char;
    using difference_type = std::ptrdiff_t;
    using pointer = const char *;
    using reference = char;

    TextIterator() = default;
    explicit TextIterator(TextStream &from) : stream(&from) {}

    char operator*() const { return stream->current(); }
    TextIterator &operator++()
    {
        stream->advance();
        return *this;
    }
    friend bool operator==(const TextIterator &left, const TextIterator &right)
    {
        return left.isDone() == right.isDone();
    }

private:
    bool isDone() const { return stream == nullptr || stream->atEnd(); }

    TextStream *stream = nullptr;
};

} // namespace tarnex::formats::json

#endif
