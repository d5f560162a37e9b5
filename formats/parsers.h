/**
 * The parsers, one per format. Each takes the text of a file, which it does not keep, and the
 * file's name for messages; InputError with line and column when the text is damaged.
 */
#ifndef TARNEX_FORMATS_PARSERS_H
#define TARNEX_FORMATS_PARSERS_H

#include "formats/source.h"

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace tarnex::formats
{

Source parseSndlibNative(std::string_view text, const std::string &file);
Source parseSndlibXml(std::string_view text, const std::string &file);
Source parseGraphml(std::string_view text, const std::string &file);
Source parseGml(std::string_view text, const std::string &file);
Source parseRepetita(std::string_view text, const std::string &file);
Source parseDot(std::string_view text, const std::string &file);
Source parseText(std::string_view text, const std::string &file);

/** Parses any format but matrix and json, for which it throws InputError. */
Source parseSource(Format format, std::string_view text, const std::string &file);

/** One matrix, a line of a file, counted from 1: bandwidths from each of the names to each, row by
 * row. */
Source parseMatrix(std::string_view text, const std::string &file, std::size_t line,
                   std::span<const std::string> names);

/** The names of a hosts file, one a line. */
std::vector<std::string> parseHosts(std::string_view text, const std::string &file);

/** Finds out the format from the first words of a text, of which a head is enough, and, where they
 * leave it open, from the suffix of the file's name; InputError when neither tells. */
Format detectFormat(std::string_view text, const std::string &file);

} // namespace tarnex::formats

#endif
