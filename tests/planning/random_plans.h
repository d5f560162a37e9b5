/** Networks, demands and terms for tests of planning: drawn from a seed, the same everywhere. */
#ifndef TARNEX_TESTS_PLANNING_RANDOM_PLANS_H
#define TARNEX_TESTS_PLANNING_RANDOM_PLANS_H

#include "formats/plan.h"

#include <cstdint>
#include <optional>
#include <random>
#include <string>
#include <vector>

namespace planning_tests
{

/** Whole numbers from a seed, without the library's distributions, which differ. */
class Draw
{
public:
    explicit Draw(std::uint32_t seed) : generator(seed) {}
    /** 0 to `size` - 1. */
    int below(std::size_t size) { return static_cast<int>(generator() % size); }
    bool oneIn(std::size_t times) { return below(times) == 0; }

private:
    std::mt19937 generator;
};

/** What to draw. */
struct Shape {
    int nodes = 12;
    int chords = 12; ///< links in both directions beside the ring
    int classes = 2;
    int levels = 3;
    int capacity = 40; ///< the least; up to twice
};

/** A ring with chords, some of them in one direction only. */
tarnex::Network randomNetwork(Draw &draw, const Shape &shape);

/** Demands of 0.1 to 8.0 and now and then of 0, between any nodes, the same one included. */
std::vector<tarnex::Demand> randomDemands(Draw &draw, const tarnex::Network &network, int number);

/** Any order, rounds, weights and schemes. */
tarnex::PlanOptions randomOptions(Draw &draw, const tarnex::Network &network);

/** 120 demands placed on a network, on any terms. */
tarnex::Plan randomPlan(Draw &draw);

/** 80 demands of a seed placed on a network of that seed. */
tarnex::Plan planOf(std::uint32_t seed, const tarnex::PlanOptions &options);

/** Everything that a plan says, to the bit. */
std::string textOf(const tarnex::Plan &plan);

} // namespace planning_tests

#endif
