/** How far a long operation is, on standard error: on a terminal, and from the first second on. */
#ifndef TARNEX_CLI_PROGRESS_H
#define TARNEX_CLI_PROGRESS_H

#include "cli/interrupt.h"
#include "planning/progress.h"

#include <chrono>
#include <cstddef>

namespace tarnex::cli
{

/** Shows the progress of an operation, and stops it on Ctrl-C. */
class TerminalProgress : public planning::Progress
{
public:
    TerminalProgress();
    ~TerminalProgress() override;

    void at(planning::Phase phase, std::size_t done, std::size_t all) override;
    bool mustStop() override { return isInterrupted(); }

private:
    using Clock = std::chrono::steady_clock;

    Stoppable stoppable;
    Clock::time_point next; ///< when something is shown at the earliest
    bool isShown = false;
};

} // namespace tarnex::cli

#endif
