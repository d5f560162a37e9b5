/*
 * Prints what engines compute on generated networks, every double in full: what is the same on two
 * machines is the same bits. Networks, requests and weights follow from fixed seeds alone.
 */
#include "api/networks.h"

#include <cstdio>

namespace
{

using namespace tarnex;
using namespace tarnex::test;

void print(double value) { std::printf(" %a", value); }

void print(const Path &path)
{
    for (const NodeId id : path.nodes)
        std::printf(" %d", id.value);
}

void print(const Refusal &refusal)
{
    std::printf(" refused");
    print(refusal.largestBandwidth);
    for (const LinkInTheWay &one : refusal.inTheWay) {
        std::printf(" %d", one.link.value);
        print(one.room);
    }
}

void place(Engine &engine, const Request &request)
{
    const auto placed = engine.place(request);
    if (placed) {
        print(placed->path);
        print(placed->score.value_or(-1.0));
        for (const Lsp &victim : placed->victims)
            std::printf(" -%d", victim.id.value);
        const auto backed = engine.protect(placed->id, Scheme::localOrGlobal);
        for (std::size_t k = 0; backed && k < backed->backups.size(); ++k)
            print(backed->backups[k].path);
    } else {
        print(placed.refusal());
    }
    std::printf("\n");
}

void printUses(const Engine &engine)
{
    for (const LinkId link : engine.links()) {
        const LinkUse use = engine.use(link);
        std::printf("link %d", link.value);
        for (const PerLevel *table : {&use.primary, &use.total})
            for (const auto &row : *table)
                for (const double value : row)
                    print(value);
        std::printf("\n");
    }
}

/** Each of the seven weights alone, and mixtures of them. */
Weights weightsFor(int round, Rng &rng)
{
    Weights weights{};
    double Weights::*const all[] = {
        &Weights::fortz,       &Weights::loadBalance,        &Weights::load, &Weights::squaredLoad,
        &Weights::utilization, &Weights::squaredUtilization, &Weights::delay};
    for (int k = 0; k < 7; ++k)
        if (k == round % 14 || (round % 14 >= 7 && randomInt(rng, 2) == 0))
            weights.*all[k] = 1.0 + randomInt(rng, 100) / 7.0;
    return weights;
}

} // namespace

int main()
{
    for (int round = 0; round < 42; ++round) {
        Rng rng{static_cast<unsigned>(round)};
        Options options;
        options.classTypes = 1 + round % 3;
        options.weights = weightsFor(round, rng);
        if (round % 4 == 0)
            options.preemptionPrices.fill({1.0 / 3.0, 0.3, 0.7, 1.1, 0.0, 2.0, 5.0 / 7.0, 0.1});
        const NetworkPlan plan = property::randomNetwork(rng, 8 + 3 * round, 4, 1);
        Engine engine{options};
        build(engine, plan);
        for (int k = 0; k < 150; ++k)
            place(engine, randomRequest(rng, plan, options));
        printUses(engine);
    }
}
