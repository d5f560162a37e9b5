/** Random networks and requests for engines of the C++ library. */
#ifndef TARNEX_TESTS_API_NETWORKS_H
#define TARNEX_TESTS_API_NETWORKS_H

#include "support/random_network.h"

#include <tarnex/engine.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace tarnex::test
{

using property::NetworkPlan;
using property::randomInt;
using property::Rng;

inline NodeId node(Long id) { return NodeId{id}; }

/** The nodes of a network and its links, with their capacity in every class type. */
inline void build(Engine &engine, const NetworkPlan &plan)
{
    for (const Long id : plan.nodes)
        engine.addNode(node(id));
    const auto nbClasses = static_cast<std::size_t>(engine.options().classTypes);
    for (const property::PlannedLink &link : plan.links) {
        const std::vector<double> capacity(nbClasses, link.capacity);
        engine.addLink({LinkId{link.id}, node(link.src), node(link.dst), capacity});
    }
}

inline void build(Engine &engine, const std::string &text)
{
    build(engine, property::networkOf(text));
}

/** A request between any two nodes, with a bandwidth that is no round number. */
inline Request randomRequest(Rng &rng, const NetworkPlan &plan, const Options &options)
{
    const double bandwidth = 1.0 + randomInt(rng, 300) / 7.0;
    return {.ingress = node(anyOf(rng, plan.nodes)),
            .egress = node(anyOf(rng, plan.nodes)),
            .bandwidth = bandwidth,
            .classType = randomInt(rng, options.classTypes),
            .level = randomInt(rng, options.levels),
            .mayPreempt = randomInt(rng, 2) == 0,
            .id = {}};
}

/** What every link carries, to the bit. */
inline std::vector<LinkUse> uses(const Engine &engine, const NetworkPlan &plan)
{
    std::vector<LinkUse> all;
    for (const property::PlannedLink &link : plan.links)
        all.push_back(engine.use(LinkId{link.id}));
    return all;
}

inline bool areSame(const LinkUse &a, const LinkUse &b)
{
    return a.id == b.id && a.capacity == b.capacity && a.primary == b.primary &&
           a.shared == b.shared && a.total == b.total;
}

inline bool areSame(const std::vector<LinkUse> &a, const std::vector<LinkUse> &b)
{
    return std::ranges::equal(a, b,
                              [](const LinkUse &x, const LinkUse &y) { return areSame(x, y); });
}

} // namespace tarnex::test

#endif
