/** Names of nodes: fit to be printed, told apart, and as single words for formats that ask so. */
#ifndef TARNEX_FORMATS_NAMES_H
#define TARNEX_FORMATS_NAMES_H

#include <string>
#include <string_view>
#include <vector>

namespace tarnex::formats
{

/** Whether a text is well-formed UTF-8. */
bool isUtf8(std::string_view text);

/** A text in ISO 8859-1 as UTF-8. */
std::string fromLatin1(std::string_view text);

/** A name without blanks at its ends; control characters, and everything above ASCII if it is not
 * UTF-8, become '_'. */
std::string cleanName(std::string_view name);
std::vector<std::string> cleanNames(const std::vector<std::string> &names);

/** A name as one word: blanks and the given marks become '_'; empty: "_". */
std::string wordOf(std::string_view name, std::string_view marks);

/** Tells names apart: a name that came before gets "#2", "#3", ... Returns how many were changed.
 */
std::size_t tellApart(std::vector<std::string> &names);

} // namespace tarnex::formats

#endif
