#include "planning/progress.h"

namespace tarnex::planning
{

void Progress::at(Phase /*phase*/, std::size_t /*done*/, std::size_t /*all*/) {}

bool Progress::mustStop() { return false; }

} // namespace tarnex::planning
