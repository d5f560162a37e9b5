/** What settling a source finds odd: remarked, or refused in strict reading. */
#ifndef TARNEX_FORMATS_ODDITIES_H
#define TARNEX_FORMATS_ODDITIES_H

#include "formats/remarks.h"

#include <cstddef>
#include <string>

namespace tarnex::formats
{

/** The remarks on one file. */
class Oddities
{
public:
    Oddities(std::string fileName, bool isStrictReading, Remarks &kept)
        : file(std::move(fileName)), isStrict(isStrictReading), remarks(kept)
    {
    }

    /** Notes an oddity; in strict reading an InputError. */
    void note(const std::string &what, const std::string &done, const std::string &name,
              std::size_t line)
    {
        if (isStrict)
            fail(line, what + ": " + name);
        remarks.note(what, done, name);
    }
    /** Notes a choice that is no error in any reading. */
    void choose(const std::string &what, const std::string &done) { remarks.choose(what, done); }

    [[noreturn]] void fail(std::size_t line, const std::string &problem) const
    {
        throw InputError(file, line, 0, problem);
    }

private:
    std::string file;
    bool isStrict;
    Remarks &remarks;
};

} // namespace tarnex::formats

#endif
