#include "base/heap.h"

#include <cstdlib>

void* GlobalLockAPI(void* block) { return block; }

void GlobalFreeAPI(void* block) { std::free(block); }
