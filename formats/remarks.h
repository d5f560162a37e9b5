/** What a reader found odd in its input, and what it did about it. Nothing is dropped silently. */
#ifndef TARNEX_FORMATS_REMARKS_H
#define TARNEX_FORMATS_REMARKS_H

#include <cstddef>
#include <stdexcept>
#include <string>
#include <vector>

namespace tarnex
{

/** Everything of one kind, e.g. "self-loops left out: 2 (Rome, Oslo)". */
struct Remark {
    std::string what;               ///< "self-loops", "parallel links"
    std::string done;               ///< "left out", "summed"
    std::size_t count = 0;          ///< 0 for a choice
    std::vector<std::string> first; ///< the first few, by name
    bool isError = false;           ///< a strict reading does not accept it
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
    /** Adds the remarks of another part of the input. */
    void append(const Remarks &others);

    const std::vector<Remark> &all() const { return remarks; }
    /** Whether there is something that a strict reading does not accept. */
    bool hasErrors() const { return firstError() != nullptr; }
    /** The first of those; null when there is none. */
    const Remark *firstError() const;

private:
    std::vector<Remark> remarks;
};

/** "1 link", "2 links". */
std::string counted(std::size_t count, const std::string &noun);

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
