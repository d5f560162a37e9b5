/** Small helpers for text that people read. */
#ifndef TARNEX_CLI_TEXT_H
#define TARNEX_CLI_TEXT_H

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace tarnex::cli
{

/** How many columns a UTF-8 text takes: its code points. */
std::size_t columnsOf(std::string_view text);

/** The pieces with a separator between them. */
std::string joined(std::span<const std::string> pieces, std::string_view separator);

/** "a, b or c". */
std::string oneOf(std::span<const std::string> names);

/** The pieces between separators; one empty piece for an empty text. */
std::vector<std::string> split(std::string_view text, char separator);

/** A text broken into lines of at most `width` columns, each after `indent` spaces. Paragraphs are
 * separated by empty lines; lines that begin with a space stay as they are. */
std::string wrapped(std::string_view text, std::size_t width, std::size_t indent);

/** The name among several that is at most two typing errors away; empty when there is none. */
std::string nearest(std::string_view typed, std::span<const std::string> names);

} // namespace tarnex::cli

#endif
