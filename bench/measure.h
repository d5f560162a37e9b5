/**
 * Timing of single operations, and medians over as many as fit into a given time.
 */
#ifndef TARNEX_BENCH_MEASURE_H
#define TARNEX_BENCH_MEASURE_H

#include <algorithm>
#include <chrono>
#include <optional>
#include <stdexcept>
#include <vector>

inline void require(bool done, const char *otherwise)
{
    if (!done)
        throw std::runtime_error(otherwise);
}

using Clock = std::chrono::steady_clock;

template <class Work>
double secondsOf(Work work)
{
    const auto start = Clock::now();
    work();
    return std::chrono::duration<double>(Clock::now() - start).count();
}

/** Median of `seconds`, in microseconds. */
inline double medianMicroseconds(std::vector<double> seconds)
{
    require(!seconds.empty(), "nothing was measured");
    const auto middle = seconds.begin() + static_cast<std::ptrdiff_t>(seconds.size() / 2);
    std::ranges::nth_element(seconds, middle);
    return 1e6 * *middle;
}

/** What has been measured of one operation. */
struct Figure {
    double us = 0.0; ///< the median
    std::size_t done = 0;
    std::size_t refused = 0;
};

/** Repeats measurements until their time is used up, but a few in any case. */
class Sampler
{
public:
    explicit Sampler(double secondsPerFigure) : budget(secondsPerFigure) {}

    /** `measure` gives seconds, or nothing when the operation was refused. */
    template <class Measure>
    Figure operator()(Measure measure) const
    {
        std::vector<double> seconds;
        std::size_t refused = 0;
        const auto end = Clock::now() + std::chrono::duration<double>(budget);
        while (seconds.size() < fewest || (seconds.size() < most && Clock::now() < end)) {
            const std::optional<double> measured = measure();
            if (measured)
                seconds.push_back(*measured);
            else
                require(++refused < most, "nearly everything is refused");
        }
        return {medianMicroseconds(seconds), seconds.size(), refused};
    }

private:
    static constexpr std::size_t fewest = 5;
    static constexpr std::size_t most = 1000; ///< few enough to leave the load what it was
    double budget;
};

#endif
