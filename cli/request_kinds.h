/** Requests of several kinds, put to an engine one by one and timed. */
#ifndef TARNEX_CLI_REQUEST_KINDS_H
#define TARNEX_CLI_REQUEST_KINDS_H

#include "formats/network.h"

#include <tarnex/engine.h>

#include <chrono>
#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace tarnex::cli
{

/** What is measured. */
enum class RequestKind {
    pathOnly,
    placeAndRemove,
    preemption,
    localProtection,
    globalProtection,
    refusal
};

inline constexpr std::size_t nbRequestKinds = 6;

/** "path only", "place and remove", ... */
const char *wordsFor(RequestKind kind);

/**
 * An engine that carries demands at the least important level, and requests to put to it. Every
 * request leaves the LSPs as they were. The demands go round in turn, so the same network and the
 * same number of rounds give the same requests.
 */
class RequestBench
{
public:
    using Duration = std::chrono::steady_clock::duration;

    /** Places the demands. They must not be empty. */
    RequestBench(const Network &network, const std::vector<Demand> &demands);

    std::size_t nbLsps() const { return engine.nbLsps(); }
    /** Puts the next request of a kind; none when there is nothing to measure for the demand whose
     * turn it is: its ends are not connected, or nobody would give way to it. */
    std::optional<Duration> next(RequestKind kind, std::size_t round);

private:
    Request requestFor(std::size_t round) const;
    /** The bandwidth from which on others give way to such a request. */
    std::optional<double> bandwidthThatPreempts(const Request &request);
    std::optional<Duration> propose(const Request &request);
    std::optional<Duration> placeAndRemove(const Request &request);
    std::optional<Duration> preempt(Request request, std::size_t round);
    std::optional<Duration> protect(const Request &request, Scheme scheme);
    std::optional<Duration> refuse(Request request);

    const std::vector<Demand> &all;
    Engine engine;
    /** By demand, once worked out: the bandwidth to which others give way; 0: there is none. */
    std::vector<std::optional<double>> preempting;
};

} // namespace tarnex::cli

#endif
