#include <tarnex/options.h>

namespace tarnex
{

Weights Weights::of(Objective objective)
{
    Weights weights;
    switch (objective) {
    case Objective::hops:
        weights.load = 1.0;
        break;
    case Objective::load:
        weights.squaredUtilization = 1.0;
        break;
    case Objective::balance:
        weights.loadBalance = 1.0;
        break;
    case Objective::delay:
        weights.delay = 1.0;
        break;
    case Objective::fortz:
        weights.fortz = 1.0;
        break;
    }
    return weights;
}

} // namespace tarnex
