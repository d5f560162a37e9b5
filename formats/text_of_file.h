/** The text of a file. */
#ifndef TARNEX_FORMATS_TEXT_OF_FILE_H
#define TARNEX_FORMATS_TEXT_OF_FILE_H

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>

namespace tarnex::formats
{

/** Reads a file, or its head up to a length, without a byte order mark; InputError when that is not
 * possible. */
std::string textOfFile(const std::filesystem::path &file, std::size_t atMost = SIZE_MAX);

} // namespace tarnex::formats

#endif
