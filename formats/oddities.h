/** What settling a source finds odd: remarked, or refused in strict reading. */
#ifndef TARNEX_FORMATS_ODDITIES_H
#define TARNEX_FORMATS_ODDITIES_H

#include "formats/network.h"
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

/** Whether a demand asks for nothing. */
inline bool isVoid(const Demand &demand)
{
    return demand.ingress == demand.egress || demand.bandwidth == 0.0;
}

/** Notes such a demand, which is left out. */
inline void noteVoid(Oddities &oddities, const Demand &demand, const std::string &name,
                     std::size_t line)
{
    oddities.note(demand.ingress == demand.egress ? "demands from a node to itself"
                                                  : "demands without bandwidth",
                  "left out", name, line);
}

} // namespace tarnex::formats

#endif
