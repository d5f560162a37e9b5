/** Telling files apart by their content. */
#ifndef TARNEX_FORMATS_DIGEST_H
#define TARNEX_FORMATS_DIGEST_H

#include <string>
#include <string_view>

namespace tarnex::formats
{

/** 32 hexadecimal digits that differ, as good as surely, when the bytes do (XXH3, 128 bits). It
 * guards against mistakes, not against malice. */
std::string digestOf(std::string_view bytes);

} // namespace tarnex::formats

#endif
