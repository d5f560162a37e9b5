/** What failures do, as lines of JSON that processes and machines hand on. */
#ifndef TARNEX_PLANNING_FAILURE_LINES_H
#define TARNEX_PLANNING_FAILURE_LINES_H

#include "planning/sweep.h"

#include <cstddef>
#include <stdexcept>
#include <string>
#include <string_view>

namespace tarnex::planning
{

/** A line that is none of ours; the text says what is wrong with it. */
class LineError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/** A line without its end; all numbers come back as they were. */
std::string lineOf(const TriedFailure &tried);

/** What a line tells about a failure of a plan; LineError. */
TriedFailure triedIn(std::string_view line, const Plan &plan);

/** What a part of a sweep is a part of, and which part. */
struct PartHeader {
    std::string program; ///< version of what wrote it
    std::string plan;    ///< digest of the plan's file
    std::string sets;    ///< what failed, with digests of files
    Reroute reroute = Reroute::no;
    bool listsLost = false;
    std::size_t nbFailures = 0; ///< in all parts together
    Shard shard{};

    friend bool operator==(const PartHeader &, const PartHeader &) = default;
};

/** The first line of a part, without its end. */
std::string lineOf(const PartHeader &header);
/** What the first line tells; LineError. */
PartHeader headerIn(std::string_view line);

} // namespace tarnex::planning

#endif
