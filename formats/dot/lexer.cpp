#include "formats/dot/lexer.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

namespace tarnex::formats
{

namespace
{

/** Letters, digits, '_' and everything beyond ASCII. */
bool isIdCharacter(char c)
{
    const auto byte = static_cast<unsigned char>(c);
    const auto lower = static_cast<unsigned char>(byte | 0x20U);
    return isDigit(c) || (lower >= 'a' && lower <= 'z') || c == '_' || byte >= 0x80;
}

} // namespace

bool DotToken::isKeyword(std::string_view keyword) const
{
    return isId && !isQuoted &&
           std::equal(text.begin(), text.end(), keyword.begin(), keyword.end(),
                      [](char c, char k) { return (c >= 'A' && c <= 'Z' ? c | 0x20 : c) == k; });
}

DotToken DotLexer::take()
{
    DotToken token = std::move(ahead);
    advance();
    return token;
}

bool DotLexer::takeIf(std::string_view mark)
{
    if (!ahead.isMark(mark))
        return false;
    advance();
    return true;
}

void DotLexer::expect(std::string_view mark)
{
    if (!takeIf(mark))
        fail(fmt::format("expected '{}'", mark));
}

std::string DotLexer::takeId(std::string_view what)
{
    if (!ahead.isId)
        fail(fmt::format("expected {}", what));
    return take().text;
}

void DotLexer::skipBlanks()
{
    while (true) {
        cursor.takeWhile(isBlank);
        if (cursor.peek() == '#' || cursor.rest().starts_with("//")) {
            cursor.skipLine();
        } else if (cursor.rest().starts_with("/*")) {
            const std::size_t start = cursor.at();
            if (!cursor.skipPast("*/"))
                cursor.fail(start, "expected a '*/' that closes this comment");
        } else {
            return;
        }
    }
}

void DotLexer::advance()
{
    skipBlanks();
    ahead = DotToken{"", false, false, cursor.at()};
    if (cursor.isAtEnd())
        return;
    const char c = cursor.peek();
    const bool isNumber =
        (c == '-' || c == '.') && (isDigit(cursor.peek(1)) || cursor.peek(1) == '.');
    if (c == '"') {
        ahead.isQuoted = true;
        ahead.text = quoted();
    } else if (c == '<') {
        ahead.isQuoted = true;
        ahead.text = html();
    } else if (isIdCharacter(c) || isNumber) {
        ahead.text = c;
        cursor.skip();
        const bool mayHavePoint = isDigit(c) || isNumber;
        ahead.text += cursor.takeWhile(
            [&](char next) { return isIdCharacter(next) || (mayHavePoint && next == '.'); });
    } else {
        const std::string_view rest = cursor.rest();
        const bool isEdge = rest.starts_with("->") || rest.starts_with("--");
        ahead.text = rest.substr(0, isEdge ? 2 : 1);
        cursor.skip(ahead.text.size());
        return;
    }
    ahead.isId = true;
}

std::string DotLexer::quoted()
{
    std::string text;
    do { // strings are joined by '+'
        const std::size_t start = cursor.at();
        for (cursor.skip(); cursor.peek() != '"'; cursor.skip()) {
            if (cursor.isAtEnd())
                cursor.fail(start, "expected a '\"' that closes this string");
            const char next = cursor.peek(1);
            if (cursor.peek() == '\\' && (next == '"' || next == '\\'))
                cursor.skip();
            text += cursor.peek();
        }
        cursor.skip();
        skipBlanks();
        if (cursor.peek() != '+')
            break;
        cursor.skip();
        skipBlanks();
        if (cursor.peek() != '"')
            cursor.fail("expected a string after '+'");
    } while (true);
    return text;
}

std::string DotLexer::html()
{
    const std::size_t start = cursor.at();
    std::string text;
    std::size_t depth = 0;
    do {
        if (cursor.isAtEnd())
            cursor.fail(start, "expected a '>' that closes this text");
        if (cursor.peek() == '<')
            ++depth;
        else if (cursor.peek() == '>')
            --depth;
        text += cursor.peek();
        cursor.skip();
    } while (depth > 0);
    return text;
}

} // namespace tarnex::formats
