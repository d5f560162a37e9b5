/** Reads a file whose lines are statements of words. */
#ifndef TARNEX_FORMATS_LINE_READER_H
#define TARNEX_FORMATS_LINE_READER_H

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace tarnex::formats
{

/** Goes through the lines that have words; refers to the text and does not own it. */
class LineReader
{
public:
    /**
     * `comment`: from where on a line is not read. In files with comments a word may stand between
     * quotation marks, and may then hold blanks and the comment mark; 0: lines are read whole.
     */
    LineReader(std::string_view content, std::string fileName, char comment = '\0')
        : text(content), file(std::move(fileName)), commentMark(comment)
    {
    }

    /** Goes to the next line that has words; false at the end of the text. InputError when a
     * quotation mark is not closed. */
    bool next();

    /** The words of the line. */
    const std::vector<std::string_view> &words() const { return split; }
    /** The number of the line, from 1. */
    std::size_t line() const { return lineNumber; }
    /** How many bytes are behind the line. */
    std::size_t sizeOfRest() const { return following < text.size() ? text.size() - following : 0; }

    /** A word as a finite number, or as a position from 0; `what` names it in the InputError. */
    double number(std::size_t word, std::string_view what) const;
    std::size_t position(std::size_t word, std::string_view what) const;

    /** Throws an InputError about a word of the line, or about the end of the line. */
    [[noreturn]] void fail(std::size_t word, const std::string &problem) const;

private:
    void readWords(std::size_t at, std::size_t end);

    std::string_view text;
    std::string file;
    char commentMark;
    std::size_t following = 0; ///< offset of the next line
    std::size_t lineNumber = 0;
    std::vector<std::string_view> split;
};

} // namespace tarnex::formats

#endif
