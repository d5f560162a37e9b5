/** What is at the other end of standard output and standard error. */
#ifndef TARNEX_CLI_TERMINAL_H
#define TARNEX_CLI_TERMINAL_H

#include <cstddef>
#include <string>
#include <string_view>

namespace tarnex::cli
{

/** How a piece of text stands out on a terminal. */
enum class Tone { plain, heading, good, bad };

/** One of the two streams. */
class Terminal
{
public:
    static const Terminal &output();
    static const Terminal &errors();

    bool isTerminal() const { return isOne; }
    /** Columns to write in: those of the terminal, 80 elsewhere. */
    std::size_t width() const { return columns; }
    /** The text in its colour; as it is when there is no terminal or NO_COLOR is set. */
    std::string coloured(std::string_view text, Tone tone) const;

private:
    explicit Terminal(int descriptor);

    bool isOne;
    bool hasColours;
    std::size_t columns;
};

/** Writes to standard output; std::system_error when that is not possible. */
void print(std::string_view text);
/** Writes a line to standard error. */
void remark(std::string_view line);

} // namespace tarnex::cli

#endif
