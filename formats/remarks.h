/** What a reader found odd in its input, and what it did about it. Nothing is dropped silently. */
#ifndef TARNEX_FORMATS_REMARKS_H
#define TARNEX_FORMATS_REMARKS_H

#include <cstddef>
#include <stdexcept>
#include <string>
#include <vector>

namespace tarnex
{

/** Everything of one kind, e.g. "2 self-loops left out: Rome, Oslo". */
struct Remark {
    std::string what; ///< "self-loops", "parallel links"
    std::string done; ///< "left out", "capacities summed"
    std::size_t count = 0;
    std::vector<std::string> first; ///< the first few, by name
};

/** All remarks on one input, each kind once, in the order in which the kinds turned up. */
class Remarks
{
public:
    /** Counts one more of a kind; `isError`: one that a strict reading does not accept. */
    void note(const std::string &what, const std::string &done, const std::string &name,
              bool isError = true);
    /** Notes a choice that the input leaves open, e.g. "capacity of 14 links" "taken as 1". */
    void choose(const std::string &what, const std::string &done);

    const std::vector<Remark> &all() const { return remarks; }
    /** Whether there is something that a strict reading does not accept. */
    bool hasErrors() const { return nbErrors > 0; }

private:
    std::vector<Remark> remarks;
    std::size_t nbErrors = 0;
};

/** A remark in one line, for people. */
std::string textOf(const Remark &remark);

/** Input that cannot be read. The text of the exception is `file:line:column: what was expected`.
 */
class InputError : public std::runtime_error
{
public:
    /** `line` and `column` count from 1; 0: not known. */
    InputError(const std::string &file, std::size_t line, std::size_t column,
               const std::string &problem);

    std::size_t line;
    std::size_t column;
};

} // namespace tarnex

#endif
