#include "base/heap.h"

#include <cstdlib>

namespace catalogcore {

void* GlobalLockAPI(void* block) { return block; }

void GlobalFreeAPI(void* block) { std::free(block); }

}  // namespace catalogcore
