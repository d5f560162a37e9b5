/** How far a long operation is, and whether it is to go on. */
#ifndef TARNEX_PLANNING_PROGRESS_H
#define TARNEX_PLANNING_PROGRESS_H

#include <cstddef>

namespace tarnex::planning
{

/** What an operation is at. */
enum class Phase {
    placing,      ///< demands, one by one
    placingAgain, ///< LSPs that had to give way
    protecting,   ///< LSPs, one by one
    settingUp,    ///< LSPs that are known already
    failing       ///< failures, one by one
};

/** Whoever starts a long operation; this one hears nothing and never stops. */
class Progress
{
public:
    Progress() = default;
    Progress(const Progress &) = delete;
    Progress &operator=(const Progress &) = delete;
    virtual ~Progress() = default;

    /** Told before each step: so many are done, out of so many. */
    virtual void at(Phase phase, std::size_t done, std::size_t all);
    /** Asked before each step; once true, the operation ends with what it has. */
    virtual bool mustStop();
};

} // namespace tarnex::planning

#endif
