/** What the command tells its caller when it ends. */
#ifndef TARNEX_CLI_EXIT_STATUS_H
#define TARNEX_CLI_EXIT_STATUS_H

namespace tarnex::cli
{

/** Exit statuses; the help pages and the man page list the same. */
enum class ExitStatus {
    done = 0,         ///< all done
    withFindings = 1, ///< done, but demands were refused, or deviations or differences found
    wrongUse = 2,     ///< wrong use or wrong input
    fault = 3,        ///< a fault of the program
    interrupted = 130 ///< stopped with Ctrl-C, as shells report it
};

} // namespace tarnex::cli

#endif
