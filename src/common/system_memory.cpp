#include "common/system_memory.h"

#include "common/page_arena.h"

#include <cstdlib>

SystemMemory systemMemory{std::malloc,  std::calloc, std::realloc, std::free,
                          acquirePages, resizePages, releasePages};
