/** Telling files apart by their content. */
#ifndef TARNEX_FORMATS_DIGEST_H
#define TARNEX_FORMATS_DIGEST_H

#include <memory>
#include <string>
#include <string_view>

namespace tarnex::formats
{

/** 32 hexadecimal digits that differ, as good as surely, when the bytes do (XXH3, 128 bits). It
 * guards against mistakes, not against malice. */
class Digest
{
public:
    Digest();
    ~Digest();
    Digest(const Digest &) = delete;
    Digest &operator=(const Digest &) = delete;

    /** Adds bytes; in how many pieces they come makes no difference. */
    void add(std::string_view bytes);
    /** The digits for what has been added. */
    std::string text() const;

private:
    struct State;
    std::unique_ptr<State> state;
};

/** The digest of bytes that are there. */
std::string digestOf(std::string_view bytes);

} // namespace tarnex::formats

#endif
