/** Walks through the text of a file, character by character or word by word. */
#ifndef TARNEX_FORMATS_CURSOR_H
#define TARNEX_FORMATS_CURSOR_H

#include "formats/place.h"

#include <cstddef>
#include <string>
#include <string_view>

namespace tarnex::formats
{

/** Blanks, tabs, line ends. */
constexpr bool isBlank(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

constexpr bool isDigit(char c) { return c >= '0' && c <= '9'; }

/** A position in a text, which the cursor refers to and does not own. */
class Cursor
{
public:
    Cursor(std::string_view content, std::string fileName)
        : text(content), file(std::move(fileName)), lines(content)
    {
    }

    bool isAtEnd() const { return offset >= text.size(); }
    /** The character here, or so far ahead; 0 at the end. */
    char peek(std::size_t ahead = 0) const
    {
        return text.size() - offset > ahead ? text[offset + ahead] : '\0';
    }
    void skip(std::size_t count = 1) { offset += count < rest().size() ? count : rest().size(); }
    /** Skips to the next line. */
    void skipLine() { skipPast("\n"); }
    /** Skips everything up to and with an end mark; false when there is none: all is skipped. */
    bool skipPast(std::string_view mark);

    /** Takes characters as long as a predicate accepts them. */
    template <class Predicate>
    std::string_view takeWhile(Predicate accepts)
    {
        const std::size_t start = offset;
        while (offset < text.size() && accepts(text[offset]))
            ++offset;
        return text.substr(start, offset - start);
    }

    std::string_view rest() const { return text.substr(offset); }
    std::size_t at() const { return offset; }
    /** The line of here; a cursor that does not go back counts each line once. */
    std::size_t line() { return lines.lineOf(offset); }

    /** Throws an InputError about what stands here, or at an offset. */
    [[noreturn]] void fail(const std::string &problem) const { fail(offset, problem); }
    [[noreturn]] void fail(std::size_t where, const std::string &problem) const
    {
        failAt(file, text, where, problem);
    }

private:
    std::string_view text;
    std::string file;
    LineCounter lines;
    std::size_t offset = 0;
};

} // namespace tarnex::formats

#endif
