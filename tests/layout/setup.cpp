#include "common/setup.h"

#include "layout/agreed.h"

TEST(Layout, Setup)
{
    expectAgreed<DataBase_ *>(&centralDB);
    expectAgreed<TARNEXConfig>(&tarnexConfig);
    expectAgreed<int>(&NBOA, &NBPL);
    expectAgreed<double>(&COST);
    static_cast<void>(TARNEXConfig{
        .primaryComputationConfig = {.Fortz = 0.0,
                                     .loadBal = {},
                                     .load = {},
                                     .sqLoad = {},
                                     .relLoad = {},
                                     .sqRelLoad = {},
                                     .delay = {},
                                     .rerouting = {}},
        .predicateConfig = {.allowReroute = false, .capacityClause = false, .colorClause = false},
        .reroutingConfig = {.scoreCoef = {}}});
}
