#include "formats/digest.h"

#define XXH_INLINE_ALL
#include <xxhash.h>

#include <fmt/format.h>

namespace tarnex::formats
{

std::string digestOf(std::string_view bytes)
{
    const XXH128_hash_t hash = XXH3_128bits(bytes.data(), bytes.size());
    return fmt::format("{:016x}{:016x}", hash.high64, hash.low64);
}

} // namespace tarnex::formats
