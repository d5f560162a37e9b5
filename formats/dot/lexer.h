/** The words of the DOT language. */
#ifndef TARNEX_FORMATS_DOT_LEXER_H
#define TARNEX_FORMATS_DOT_LEXER_H

#include "formats/cursor.h"

#include <string>
#include <string_view>

namespace tarnex::formats
{

/** An id, or a mark: "->", "--" or a single character; neither at the end. */
struct DotToken {
    std::string text;
    bool isId = false;
    bool isQuoted = false; ///< an id in quotation marks is no keyword
    std::size_t at = 0;

    bool isMark(std::string_view mark) const { return !isId && text == mark; }
    /** Whether it is a keyword, in upper or lower case. */
    bool isKeyword(std::string_view keyword) const;
};

/** Takes a text apart, one token ahead. */
class DotLexer
{
public:
    DotLexer(std::string_view text, const std::string &file) : cursor(text, file) { advance(); }

    const DotToken &peek() const { return ahead; }
    bool isAtEnd() const { return !ahead.isId && ahead.text.empty(); }
    DotToken take();
    /** Takes a mark if it is next. */
    bool takeIf(std::string_view mark);
    void expect(std::string_view mark);
    std::string takeId(std::string_view what);
    std::size_t line() { return cursor.line(); }

    [[noreturn]] void fail(const std::string &problem) const { cursor.fail(ahead.at, problem); }
    [[noreturn]] void fail(std::size_t at, const std::string &problem) const
    {
        cursor.fail(at, problem);
    }

private:
    void advance();
    void skipBlanks();
    std::string quoted();
    std::string html();

    Cursor cursor;
    DotToken ahead;
};

} // namespace tarnex::formats

#endif
