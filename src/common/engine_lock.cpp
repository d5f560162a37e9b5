#include "common/engine_lock.h"

namespace
{

constinit std::mutex engineMutex;

} // namespace

EngineLock lockEngine() { return EngineLock{engineMutex}; }
