#include "formats/digest.h"

#define XXH_INLINE_ALL
#include <xxhash.h>

#include <fmt/format.h>

namespace tarnex::formats
{

struct Digest::State {
    XXH3_state_t hash;
};

Digest::Digest() : state(std::make_unique<State>()) { XXH3_128bits_reset(&state->hash); }

Digest::~Digest() = default;

void Digest::add(std::string_view bytes)
{
    XXH3_128bits_update(&state->hash, bytes.data(), bytes.size());
}

std::string Digest::text() const
{
    const XXH128_hash_t hash = XXH3_128bits_digest(&state->hash);
    return fmt::format("{:016x}{:016x}", hash.high64, hash.low64);
}

std::string digestOf(std::string_view bytes)
{
    Digest digest;
    digest.add(bytes);
    return digest.text();
}

} // namespace tarnex::formats
